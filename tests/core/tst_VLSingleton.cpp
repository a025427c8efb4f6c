#include <RunTogether.h>

#include <VLCore/VLSingleton.h>

#include <QtCore/QDeadlineTimer>
#include <QtTest/QTest>

#include <dlfcn.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

// The types have names outside of any namespace, so that their singletons' statics can be looked
// up in the program by the names that the compiler gives them.

/// Counts what happens to it.
struct Counted
{
    Counted() { ++made; }
    void initialize() { ++initialized; }

    static inline std::atomic<int> made { 0 };
    static inline std::atomic<int> initialized { 0 };
};

/// Looks at the statics of its own singleton while it is initialized.
struct Curious
{
    void initialize()
    {
        const auto* const pointer = static_cast<Curious* const*>(
            dlsym(RTLD_DEFAULT, "_ZZN11VLSingletonI7CuriousE8instanceEvE10myInstance"));
        auto* const lock = static_cast<QReadWriteLock*>(
            dlsym(RTLD_DEFAULT, "_ZZN11VLSingletonI7CuriousE8instanceEvE4lock"));
        staticsFound = pointer != nullptr && lock != nullptr;
        if (!staticsFound)
            return;
        published = *pointer;
        lockedForWriting = !lock->tryLockForRead();
        if (!lockedForWriting)
            lock->unlock();
    }

    bool staticsFound = false;
    bool lockedForWriting = false;
    const Curious* published = nullptr;
};

/// Cannot be made at first.
struct Refusing
{
    Refusing()
    {
        if (++attempts <= 2)
            throw std::runtime_error("not yet");
    }
    void initialize() { ++initialized; }

    static inline int attempts = 0;
    static inline int initialized = 0;
};

/// Is made, but its set-up fails.
struct Stumbling
{
    Stumbling() { ++made; }
    void initialize()
    {
        ++initialized;
        throw std::runtime_error("no set-up");
    }

    static inline int made = 0;
    static inline int initialized = 0;
};

/// Cannot be made at first, so that its statics are there without an instance.
struct Late
{
    Late()
    {
        if (std::exchange(failsOnce, false))
            throw std::runtime_error("not yet");
    }
    void initialize() { ++initialized; }

    static inline bool failsOnce = true;
    static inline int initialized = 0;
};

/// One type for each race, since every type has one instance per process. Takes its time.
template <int Number>
struct Slow
{
    Slow()
    {
        ++made;
        QThread::msleep(10);
    }
    void initialize()
    {
        QThread::msleep(10);
        ready = true;
        ++initialized;
    }

    bool ready = false;
    static inline std::atomic<int> made { 0 };
    static inline std::atomic<int> initialized { 0 };
};

/// Is made at once; there are many of them, since few races are close.
template <int Number>
struct Quick
{
    Quick() { ++made; }
    void initialize() { ++initialized; }

    static inline std::atomic<int> made { 0 };
    static inline std::atomic<int> initialized { 0 };
};

namespace {

template <int Number>
void raceForQuickInstance()
{
    runTogether(4, [](int) { Q_UNUSED(VLSingleton<Quick<Number>>::instance()) });
}

template <int... Numbers>
void raceForAll(std::integer_sequence<int, Numbers...> numbers)
{
    (raceForQuickInstance<Numbers>(), ...);
    const int rounds = int(numbers.size());
    QCOMPARE((Quick<Numbers>::made.load() + ...), rounds);
    QCOMPARE((Quick<Numbers>::initialized.load() + ...), rounds);
}

template <int Number>
void raceForInstance()
{
    constexpr int threads = 16;
    std::vector<const void*> instances(threads);
    std::atomic<int> ready { 0 };
    runTogether(threads, [&](int thread) {
        const auto* const instance = VLSingleton<Slow<Number>>::instance();
        instances[size_t(thread)] = instance;
        ready += instance->ready ? 1 : 0;
    });
    QCOMPARE(Slow<Number>::made.load(), 1);
    QCOMPARE(Slow<Number>::initialized.load(), 1);
    QVERIFY(instances.front() != nullptr);
    QCOMPARE(instances, std::vector<const void*>(threads, instances.front()));
    QCOMPARE(ready.load(), threads);
}

template <typename T>
bool instanceThrows()
{
    try {
        Q_UNUSED(VLSingleton<T>::instance())
    } catch (const std::runtime_error&) {
        return true;
    }
    return false;
}

} // namespace

static_assert(!std::is_default_constructible_v<VLSingleton<Counted>>);
static_assert(!std::is_copy_constructible_v<VLSingleton<Counted>>);
static_assert(std::has_virtual_destructor_v<VLSingleton<Counted>>);
static_assert(std::is_same_v<decltype(VLSingleton<Counted>::instance()), Counted*>);

class tst_VLSingleton : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void instance_is_made_and_initialized_once();
    void each_type_has_its_own_instance();
    void published_under_the_write_lock_before_initialize();
    void threads_get_one_initialized_instance();
    void close_races_make_one_instance();
    void instance_made_meanwhile_is_taken();
    void lock_is_not_recursive();
    void failed_constructor_is_tried_again();
    void failed_initialize_is_not_tried_again();
};

void tst_VLSingleton::instance_is_made_and_initialized_once()
{
    Counted* const instance = VLSingleton<Counted>::instance();
    QVERIFY(instance != nullptr);
    for (int call = 0; call < 100; ++call)
        QCOMPARE(VLSingleton<Counted>::instance(), instance);
    QCOMPARE(Counted::made.load(), 1);
    QCOMPARE(Counted::initialized.load(), 1);
}

void tst_VLSingleton::each_type_has_its_own_instance()
{
    QVERIFY(static_cast<const void*>(VLSingleton<Counted>::instance())
            != static_cast<const void*>(VLSingleton<Curious>::instance()));
}

void tst_VLSingleton::published_under_the_write_lock_before_initialize()
{
    const Curious* const instance = VLSingleton<Curious>::instance();
    QVERIFY(instance->staticsFound);
    QCOMPARE(instance->published, instance);
    QVERIFY(instance->lockedForWriting);
}

void tst_VLSingleton::threads_get_one_initialized_instance()
{
    raceForInstance<0>();
    raceForInstance<1>();
    raceForInstance<2>();
    raceForInstance<3>();
    raceForInstance<4>();
    raceForInstance<5>();
    raceForInstance<6>();
    raceForInstance<7>();
}

void tst_VLSingleton::close_races_make_one_instance()
{
    raceForAll(std::make_integer_sequence<int, 60>());
}

// Of two threads that have both found no instance, the second one looks again under the lock.
void tst_VLSingleton::instance_made_meanwhile_is_taken()
{
    QVERIFY(instanceThrows<Late>());
    auto** const pointer = static_cast<Late**>(
        dlsym(RTLD_DEFAULT, "_ZZN11VLSingletonI4LateE8instanceEvE10myInstance"));
    auto* const lock = static_cast<QReadWriteLock*>(
        dlsym(RTLD_DEFAULT, "_ZZN11VLSingletonI4LateE8instanceEvE4lock"));
    QVERIFY(pointer != nullptr && lock != nullptr);

    Late madeMeanwhile;
    Late* found = nullptr;
    lock->lockForRead();
    std::thread second([&found] { found = VLSingleton<Late>::instance(); });
    // No more readers are let in once a writer waits.
    const QDeadlineTimer deadline(10'000);
    while (!deadline.hasExpired() && lock->tryLockForRead()) {
        lock->unlock();
        QThread::yieldCurrentThread();
    }
    *pointer = &madeMeanwhile;
    lock->unlock();
    second.join();
    *pointer = nullptr;
    QCOMPARE(found, &madeMeanwhile);
    QCOMPARE(Late::initialized, 0);
}

void tst_VLSingleton::lock_is_not_recursive()
{
    Q_UNUSED(VLSingleton<Counted>::instance())
    auto* const lock = static_cast<QReadWriteLock*>(
        dlsym(RTLD_DEFAULT, "_ZZN11VLSingletonI7CountedE8instanceEvE4lock"));
    QVERIFY(lock != nullptr);
    lock->lockForWrite();
    const bool lockedAgain = lock->tryLockForWrite();
    if (lockedAgain)
        lock->unlock();
    lock->unlock();
    QVERIFY(!lockedAgain);
}

void tst_VLSingleton::failed_constructor_is_tried_again()
{
    QVERIFY(instanceThrows<Refusing>());
    QVERIFY(instanceThrows<Refusing>());
    Refusing* const instance = VLSingleton<Refusing>::instance();
    QVERIFY(instance != nullptr);
    QCOMPARE(VLSingleton<Refusing>::instance(), instance);
    QCOMPARE(Refusing::attempts, 3);
    QCOMPARE(Refusing::initialized, 1);
}

void tst_VLSingleton::failed_initialize_is_not_tried_again()
{
    QVERIFY(instanceThrows<Stumbling>());
    QVERIFY(VLSingleton<Stumbling>::instance() != nullptr);
    QCOMPARE(Stumbling::made, 1);
    QCOMPARE(Stumbling::initialized, 1);
}

QTEST_GUILESS_MAIN(tst_VLSingleton)
#include "tst_VLSingleton.moc"

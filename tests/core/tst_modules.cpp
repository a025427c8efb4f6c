#include <QtTest/QTest>

#include <dlfcn.h>

#include <array>

/// A program that knows nothing of the libraries loads two modules that do, their symbols hidden
/// from each other as those of plugins are. They share one of each object all the same, and stay
/// loaded until the process ends, since these objects do so, too.
class tst_modules : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void modulesShare_data();
    void modulesShare();
    void serviceThatOneSetsIsSeenByTheOther();

private:
    using Function = const void* (*)();

    /// What the function of that name returns in each of the modules.
    [[nodiscard]] std::array<const void*, 2> call(const char* first, const char* second) const
    {
        return { reinterpret_cast<Function>(dlsym(m_first, first))(),
                 reinterpret_cast<Function>(dlsym(m_second, second))() };
    }

    void* m_first = dlopen(FIRST_MODULE, RTLD_NOW | RTLD_LOCAL);
    void* m_second = dlopen(SECOND_MODULE, RTLD_NOW | RTLD_LOCAL);
};

void tst_modules::initTestCase()
{
    QVERIFY2(m_first != nullptr && m_second != nullptr, dlerror());
    QVERIFY2(dlsym(RTLD_DEFAULT, "_ZN8VLLogger10initializeEv") == nullptr,
             "this program links the libraries");
}

void tst_modules::modulesShare_data()
{
    QTest::addColumn<QByteArray>("function");

    QTest::newRow("logger") << QByteArray("moduleLogger");
    QTest::newRow("table_of_type_names") << QByteArray("moduleTypeTable");
    QTest::newRow("platform_service") << QByteArray("modulePlatform");
}

void tst_modules::modulesShare()
{
    QFETCH(const QByteArray, function);
    const auto [ofFirst, ofSecond] = call(function.constData(), function.constData());
    QVERIFY(ofFirst != nullptr);
    QCOMPARE(ofSecond, ofFirst);
}

void tst_modules::serviceThatOneSetsIsSeenByTheOther()
{
    const auto [ofFirst, seenBySecond] = call("moduleSetPlatform", "modulePlatform");
    QVERIFY(ofFirst != nullptr);
    QCOMPARE(seenBySecond, ofFirst);
}

QTEST_GUILESS_MAIN(tst_modules)
#include "tst_modules.moc"

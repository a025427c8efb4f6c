// Qt is not compiled for the thread sanitizer, so that its locks keep threads apart unseen. These
// take the place of what the libraries call of them, tell the sanitizer and do the same. Without
// them every access under a lock of Qt's would be reported. The last one concerns Qt's processes.

#include <QtCore/QMutex>
#include <QtCore/QReadWriteLock>

#include <cstdarg>

#include <dlfcn.h>
#include <sched.h>
#include <sys/types.h>

extern "C" void __tsan_acquire(void* address);
extern "C" void __tsan_release(void* address);

namespace {

// The function of Qt's that the one of this file stands in front of. Each is a member without
// arguments or results, which is called like a function of the object's address.
using Function = void (*)(void*);

Function next(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

void QReadWriteLock::lockForRead()
{
    static const Function function = next("_ZN14QReadWriteLock11lockForReadEv");
    function(this);
    __tsan_acquire(this);
}

void QReadWriteLock::lockForWrite()
{
    static const Function function = next("_ZN14QReadWriteLock12lockForWriteEv");
    function(this);
    __tsan_acquire(this);
}

void QReadWriteLock::unlock()
{
    static const Function function = next("_ZN14QReadWriteLock6unlockEv");
    __tsan_release(this);
    function(this);
}

// Only where two threads meet; the rest is in Qt's header, where the sanitizer sees it.
void QBasicMutex::lockInternal() QT_MUTEX_LOCK_NOEXCEPT
{
    static const Function function = next("_ZN11QBasicMutex12lockInternalEv");
    function(this);
    __tsan_acquire(this);
}

void QBasicMutex::unlockInternal() noexcept
{
    static const Function function = next("_ZN11QBasicMutex14unlockInternalEv");
    __tsan_release(this);
    function(this);
}

#if defined(Q_OS_LINUX)

// QProcess starts a program as vfork() does, in the memory of the caller. Clang's sanitizer takes
// every clone() for a fork(): it would begin anew in that memory, and then stop at what it finds.
extern "C" int clone(int (*function)(void*), void* stack, int flags, void* argument, ...)
{
    va_list rest;
    va_start(rest, argument);
    pid_t* const parentThread = va_arg(rest, pid_t*);
    void* const threadStorage = va_arg(rest, void*);
    pid_t* const childThread = va_arg(rest, pid_t*);
    va_end(rest);
    static const auto original = reinterpret_cast<decltype(&clone)>(dlsym(RTLD_NEXT, "clone"));
    return original(function, stack, flags, argument, parentThread, threadStorage, childThread);
}

#endif

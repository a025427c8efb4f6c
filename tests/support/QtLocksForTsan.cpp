// Qt is not compiled for the thread sanitizer, so that its locks keep threads apart unseen. These
// take the place of what the libraries call of them, tell the sanitizer and do the same. Without
// them every access under a lock of Qt's would be reported.

#include <QtCore/QMutex>
#include <QtCore/QReadWriteLock>

#include <dlfcn.h>

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

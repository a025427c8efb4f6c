#pragma once

/// \file

#include "VLGlobal.h"

#include <QtCore/QReadLocker>
#include <QtCore/QReadWriteLock>
#include <QtCore/QWriteLocker>

/// Gives access to the one object of a class that the whole process shares, made on first use.
///
/// \code
/// VLSingleton<VLLogger>::instance()->logFolioService(u"message"_s);
/// \endcode
///
/// \tparam T a class with a default constructor and a function `initialize()`.
template <typename T>
class VL_TEMPLATE_EXPORT VLSingleton
{
public:
    /// There are no objects of this class.
    VLSingleton() = delete;
    virtual ~VLSingleton() = default; // GCOV_EXCL_LINE: there are no objects
    Q_DISABLE_COPY_MOVE(VLSingleton)

    /// Returns the object, never null. The first call makes it and then calls its `initialize()`,
    /// which must not call instance(), because the lock is not recursive. If the constructor (but
    /// not `initialize()`) throws, the next call tries again. The object is never deleted. May be
    /// called from any thread, and waits while another makes the object.
    [[nodiscard]] static T* instance();
};

// An inline function would be compiled into every module, with statics of its own.
template <typename T>
T* VLSingleton<T>::instance()
{
    static QReadWriteLock lock;
    static T* myInstance = nullptr;
    {
        const QReadLocker reader(&lock);
        if (myInstance != nullptr)
            return myInstance;
    }
    const QWriteLocker writer(&lock);
    if (myInstance == nullptr) {
        myInstance = new T;
        myInstance->initialize();
    }
    return myInstance;
}

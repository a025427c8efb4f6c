#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/qglobal.h>

#include <dlfcn.h>

/// A module opened with dlopen() as a plugin would be, its symbols hidden from everybody else. It
/// stays loaded until the process ends, since the shared objects that it may have made do so, too.
class LoadedModule
{
public:
    explicit LoadedModule(const char* path)
        : m_handle(dlopen(path, RTLD_NOW | RTLD_LOCAL))
        , m_error(m_handle == nullptr ? QString::fromLocal8Bit(dlerror()) : QString())
    {
    }
    Q_DISABLE_COPY_MOVE(LoadedModule)

    [[nodiscard]] QByteArray error() const { return m_error.toLocal8Bit(); }

    /// Calls the module's function of that name; null when there is none.
    [[nodiscard]] const void* call(const char* function) const
    {
        auto* const symbol = dlsym(m_handle, function);
        return symbol == nullptr ? nullptr : reinterpret_cast<const void* (*)()>(symbol)();
    }

private:
    void* m_handle;
    QString m_error;
};

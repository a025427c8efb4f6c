#pragma once

#include <QtCore/qglobal.h>

#include <csignal>

#include <sys/resource.h>

/// Lowers a limit of this process for as long as it lives, RLIMIT_NOFILE or RLIMIT_FSIZE for
/// instance. A file that would outgrow its limit is an error for whoever writes it, no signal.
class ResourceLimit
{
public:
    /// An enumeration or a number, as the system has it.
    using Resource = decltype(RLIMIT_NOFILE);

    ResourceLimit(Resource resource, rlim_t limit)
        : m_resource(resource)
        , m_previousHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        m_active = getrlimit(resource, &m_previous) == 0;
        rlimit lowered = m_previous;
        lowered.rlim_cur = limit;
        m_active = m_active && setrlimit(resource, &lowered) == 0;
    }
    ~ResourceLimit()
    {
        if (m_active && setrlimit(m_resource, &m_previous) != 0)
            qFatal("The limit cannot be lifted again");
        std::signal(SIGXFSZ, m_previousHandler);
    }
    Q_DISABLE_COPY_MOVE(ResourceLimit)

    /// False where the system does not admit the change.
    [[nodiscard]] bool isActive() const { return m_active; }

private:
    using SignalHandler = void (*)(int);

    Resource m_resource;
    SignalHandler m_previousHandler;
    rlimit m_previous {};
    bool m_active = false;
};

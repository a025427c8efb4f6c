#pragma once

#include <QtCore/qglobal.h>

#include <unistd.h>

/// Gives up the rights of the superuser for as long as it lives, so that the permissions of files
/// count. Does nothing for any other user.
class UnprivilegedUser
{
public:
    UnprivilegedUser()
        : m_previous(geteuid())
    {
        constexpr uid_t nobody = 65534;
        m_active = m_previous != 0 || seteuid(nobody) == 0;
    }
    ~UnprivilegedUser()
    {
        if (geteuid() != m_previous && seteuid(m_previous) != 0)
            qFatal("The rights of the superuser do not come back");
    }
    Q_DISABLE_COPY_MOVE(UnprivilegedUser)

    /// False where the system does not admit the change of user.
    [[nodiscard]] bool isActive() const { return m_active; }

private:
    uid_t m_previous;
    bool m_active = false;
};

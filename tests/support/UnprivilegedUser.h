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
        // Some calls ask for the rights of the real user.
        m_active = m_previous != 0 || (setreuid(nobody, uid_t(-1)) == 0 && seteuid(nobody) == 0);
    }
    ~UnprivilegedUser()
    {
        if (geteuid() != m_previous
            && (seteuid(m_previous) != 0 || setreuid(m_previous, uid_t(-1)) != 0))
            qFatal("The rights of the superuser do not come back");
    }
    Q_DISABLE_COPY_MOVE(UnprivilegedUser)

    /// False where the system does not admit the change of user.
    [[nodiscard]] bool isActive() const { return m_active; }

private:
    uid_t m_previous;
    bool m_active = false;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <unistd.h>

// For as long as it lives this process has the rights of a user who owns nothing, where it has those of root otherwise.
// For what must stay in one process, as everything with windows; see also becomePlainUser().
class PlainUser
{
public:
    PlainUser() : m_bWasRoot(::geteuid() == 0)
    {
        constexpr uid_t nobody = 65534;
        m_bPlain = !m_bWasRoot || ::setresuid(nobody, nobody, 0) == 0;
    }
    ~PlainUser()
    {
        if (m_bWasRoot && ::setresuid(0, 0, 0) != 0) {
            ::_exit(1); // what follows would test as somebody else
        }
    }
    PlainUser(const PlainUser&) = delete;
    PlainUser& operator=(const PlainUser&) = delete;

    // Whether it worked.
    bool isPlain() const { return m_bPlain; }

private:
    bool m_bWasRoot;
    bool m_bPlain;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

namespace orv {
class MessageResponder;
}

// While it lives the questions of the libraries below are answered on behalf of a command: Yes where the user has
// agreed beforehand by an option; otherwise the user is asked on a terminal, and without one the default stands.
// Messages go to standard error.
class Questions
{
public:
    explicit Questions(bool bAgreed);
    ~Questions();
    Questions(const Questions&) = delete;
    Questions& operator=(const Questions&) = delete;

private:
    std::unique_ptr<orv::MessageResponder> m_pEarlier;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <exception>
#include <iostream>
#include <string>
#include <utility>

namespace XTNT {

// The toolkit's exception. `what` is not overridden: it yields the text of std::exception, never the message.
class M_Exception : public std::exception
{
public:
    explicit M_Exception(std::string text) : m_strMessage(std::move(text)) {}
    ~M_Exception() override = default;

    // A copy of the message.
    virtual std::string message() const { return m_strMessage; }
    // Writes the message and a line end to standard output.
    virtual void print() const { std::cout << m_strMessage << std::endl; }

private:
    std::string m_strMessage;
};

} // namespace XTNT

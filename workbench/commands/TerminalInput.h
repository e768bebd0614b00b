// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <functional>
#include <streambuf>
#include <utility>

// What is typed at standard input, which ends once the program is asked to stop: a read that waits would not notice a
// signal that another thread gets, or that comes just ahead of it.
class TerminalInput : public std::streambuf
{
public:
    explicit TerminalInput(std::function<bool()> isStopped) : m_isStopped(std::move(isStopped)) {}

protected:
    int_type underflow() override;

private:
    const std::function<bool()> m_isStopped;
    std::array<char, 1024> m_bytes{};
};

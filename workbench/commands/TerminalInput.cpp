// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/TerminalInput.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace {

// Between two looks at whether a signal has come, in milliseconds.
constexpr int pauseMilliseconds = 50;

} // namespace

std::streambuf::int_type TerminalInput::underflow()
{
    while (!m_isStopped()) {
        pollfd input = {STDIN_FILENO, POLLIN, 0};
        if (::poll(&input, 1, pauseMilliseconds) < 1) {
            continue;
        }
        const ssize_t count = ::read(STDIN_FILENO, m_bytes.data(), m_bytes.size());
        if (count > 0) {
            setg(m_bytes.data(), m_bytes.data(), m_bytes.data() + count);
            return traits_type::to_int_type(m_bytes[0]);
        }
        if (count == 0 || errno != EINTR) {
            break;
        }
    }
    return traits_type::eof();
}

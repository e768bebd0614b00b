// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <iostream>
#include <sstream>
#include <string>

namespace testsupport {

// Takes what goes to std::cout while it lives.
class CapturedOutput
{
public:
    CapturedOutput() : m_before(std::cout.rdbuf(&m_buffer)) {}
    ~CapturedOutput() { std::cout.rdbuf(m_before); }
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;

    std::string text() const { return m_buffer.str(); }
    // What had been written when the stream was flushed last.
    std::string flushedText() const { return m_buffer.flushed; }

private:
    struct Buffer : std::stringbuf
    {
        int sync() override
        {
            flushed = str();
            return 0;
        }
        std::string flushed;
    };

    Buffer m_buffer;
    std::streambuf* m_before;
};

} // namespace testsupport

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace testsupport {

// A pattern for EXPECT_DEATH: the standard assertion report of `expression`, word for word, from `file` as it is seen
// from the root.
inline std::string assertionReport(const std::string& file, const std::string& expression)
{
    std::string pattern;
    for (const char c : file + ":\n Assertion `" + expression + "' failed") {
        if (c == '\n') {
            pattern += "[0-9]+: .*:";
        } else if (std::string("\\^$.|?*+()[]{}").find(c) != std::string::npos) {
            pattern += std::string("\\") + c;
        } else {
            pattern += c;
        }
    }
    return pattern;
}

} // namespace testsupport

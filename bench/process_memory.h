// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>

#include <malloc.h>

namespace bench {

// A figure of this process in bytes, from the system: "VmRSS:" what is held now, "VmHWM:" the highest. 0 when the
// system tells none.
inline double processBytes(const std::string& name)
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.compare(0, name.size(), name) == 0) {
            double kilobytes = 0;
            std::istringstream(line.substr(name.size())) >> kilobytes;
            return kilobytes * 1024.0;
        }
    }
    return 0.0;
}

// Lets the system's record of the highest memory begin anew.
inline void forgetPeak()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

// The highest memory during `path`, above that of before, in bytes. What earlier work let go of is given back to the
// system first.
template <class Path>
double peakBytes(const Path& path)
{
    malloc_trim(0);
    forgetPeak();
    const double before = processBytes("VmRSS:");
    path();
    return std::max(0.0, processBytes("VmHWM:") - before);
}

} // namespace bench

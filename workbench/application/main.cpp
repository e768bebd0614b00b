// SPDX-License-Identifier: GPL-3.0-or-later
// This file alone is compiled for any processor of the architecture, so that it can say what the rest needs.
#include "workbench/application/Workbench.h"

#include <cstdio>

namespace {

// Whether the processor has what the build relies on.
bool processorSuffices()
{
#ifdef ORV_NEEDS_V3
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0 &&
           __builtin_cpu_supports("bmi2") != 0;
#else
    return true;
#endif
}

} // namespace

int main(int argc, char** argv)
{
    if (!processorSuffices()) {
        std::fputs("spum-workbench: this build needs a processor of level x86-64-v3 (AVX2, FMA, BMI2); "
                   "build it with cmake -DORV_ARCH=x86-64 for this one\n",
                   stderr);
        return 1;
    }
    return runWorkbench(argc, argv);
}

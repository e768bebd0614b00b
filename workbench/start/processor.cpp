// SPDX-License-Identifier: GPL-3.0-or-later
// Compiled for any processor of the architecture, so that it can say what the rest needs.
#include "workbench/start/processor.h"

#include <cstdio>

bool processorSuffices(const char* pProgram)
{
#ifdef ORV_NEEDS_V3
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx2") == 0 || __builtin_cpu_supports("fma") == 0 ||
        __builtin_cpu_supports("bmi2") == 0) {
        std::fprintf(stderr,
                     "%s: this build needs a processor of level x86-64-v3 (AVX2, FMA, BMI2); build it with cmake "
                     "-DORV_ARCH=x86-64 for this one\n",
                     pProgram);
        return false;
    }
#else
    static_cast<void>(pProgram);
#endif
    return true;
}

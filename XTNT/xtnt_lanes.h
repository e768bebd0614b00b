// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstring>

namespace XTNT {

// Four doubles side by side; the compiler maps them to the registers that the processor level has. A variable of this
// type is aligned to its size; rows of a matrix are not, so they are read and written by the functions below alone.
constexpr long long lanes = 4;
typedef double Lanes __attribute__((vector_size(lanes * sizeof(double))));

// The four doubles from p on, at any alignment of a double.
inline Lanes lanesAt(const double* p)
{
    Lanes values;
    std::memcpy(&values, p, sizeof values);
    return values;
}

inline void putLanes(double* p, const Lanes& values)
{
    std::memcpy(p, &values, sizeof values);
}

} // namespace XTNT

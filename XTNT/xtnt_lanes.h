// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace XTNT {

// Four doubles side by side; the compiler maps them to the registers that the processor level has.
constexpr long long lanes = 4;
typedef double Lanes __attribute__((vector_size(lanes * sizeof(double)), aligned(sizeof(double)), may_alias));

// The four doubles from p on, at any alignment of a double.
inline const Lanes& lanesAt(const double* p)
{
    return *reinterpret_cast<const Lanes*>(p);
}

inline Lanes& lanesAt(double* p)
{
    return *reinterpret_cast<Lanes*>(p);
}

} // namespace XTNT

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace orv {

// The fewest digits that read back as the same number, in the C locale: "0.1", "1e-05".
QString shortestText(double dValue);

// Order by name in which runs of digits compare by value, so that 9 stands before 10.
bool numberAwareLess(const QString& strA, const QString& strB);

} // namespace orv

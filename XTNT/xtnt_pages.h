// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

namespace XTNT {

// Asks the system to back the elements of a large, freshly made matrix by large pages. A pass that writes tens of
// megabytes for the first time otherwise spends more time on page faults than on its sums. Only a hint: a small matrix
// and a system that knows no such pages leave all as it is; contents never change. Defined in the mathematics library.
void preferLargePages(Matrix<double>& matrix);

} // namespace XTNT

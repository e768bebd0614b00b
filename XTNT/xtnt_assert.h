// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cassert>

// Contract assertion of the toolkit. Active in every build type (NDEBUG does not touch it): a failed contract ends the
// process with the standard assertion report, which shows the expression as written, the file relative to the root and
// the line. For programming errors only; user input is checked before it gets here.
#define XTNT_ASSERT(expression)                                                                                        \
    ((expression) ? static_cast<void>(0) : __assert_fail(#expression, __FILE__, __LINE__, __PRETTY_FUNCTION__))

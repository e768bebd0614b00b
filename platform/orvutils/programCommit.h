// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace orv {

// The commit that the program was built from, forty hexadecimal digits, with a "+" behind them where the sources had
// changes; empty where that is not known. It stands in a file beside the program's data, which the build writes anew
// when it changes: no program has to be linked again for it, and the bytes of programs do not depend on it.
QString programCommit();

} // namespace orv

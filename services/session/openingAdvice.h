// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// What to tell whoever wants to open as a sequence what is none: that there is nothing, or how images become one. Empty
// where a folder is a sequence and something else is wrong with it.
QString openingAdvice(const QString& strPath);

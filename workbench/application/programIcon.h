// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>

// The icon of the program: three lights that overlap.
QIcon programIcon();

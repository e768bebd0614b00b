// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// A hash of what makes results beside images and options: the running program, its own libraries, and the reference
// tables that come with it. The same wherever they lie.
QString programHash();

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

// Writes all of it to a descriptor; false when that fails.
bool writeAll(int descriptor, const QByteArray& bytes);

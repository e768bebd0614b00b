// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Writes a line to the host's log: level 1 note, 2 warning, 3 error, 16 progress. Safe from any thread.
void logLine(const QString& strMessage, long nLevel);

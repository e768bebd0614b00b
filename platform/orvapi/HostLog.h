// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QString;

// A line in the host's log, with the time, at the level of a warning or an error.
void logWarning(const QString& strMessage);
void logError(const QString& strMessage);

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QString;

// A line in the host's log, with the time, at the level of an error.
void logError(const QString& strMessage);

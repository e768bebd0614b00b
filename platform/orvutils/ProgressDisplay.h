// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

namespace orv {

// Shows the progress of a long operation: the message, the share of work done (0 to 1, or -1 when it is not known) and
// the seconds since the operation began. A null message tells that the operation is over and the display can be
// cleared.
using ProgressDisplay = std::function<void(const QString& strMessage, double dFraction, double dSeconds)>;

// Installs the display that every CAutoProgressUpdate calls, on the updater's own thread, one call at a time, several
// times a second and on each change; an empty function (the state at start) shows nothing. Returns when no call of the
// earlier display is under way. Not to be called from a display.
void setProgressDisplay(ProgressDisplay display);

} // namespace orv

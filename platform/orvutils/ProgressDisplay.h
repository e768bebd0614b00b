// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

namespace orv {

// Shows the state of a long operation: its message and the seconds since it began. Called on the thread of
// CAutoProgressUpdate, at a change of message and about five times a second. An empty function ends that; it returns when
// no call is under way any more.
void setProgressDisplay(std::function<void(const QString& strMessage, double dElapsedSeconds)> display);

} // namespace orv

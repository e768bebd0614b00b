// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QRect>

class CORVSettings;
class QMainWindow;

// Where windows and panels are, from one start to the next.
namespace windowPlaces {

// A window's place moved so that it can be reached: it is on the screen where most of it was, or on the first when it
// was on none (a screen that is gone), no larger than that, and its upper edge can be seen. Unchanged where it is seen
// well enough: a title bar's height and 100 pixels of the width.
QRect reachable(const QRect& place, const QList<QRect>& screens);

void save(CORVSettings& settings, const QMainWindow& window);
// False when nothing is stored; the window is then as it was.
bool restore(const CORVSettings& settings, QMainWindow& window);

} // namespace windowPlaces

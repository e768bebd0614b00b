// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QPainter;
class QPalette;
class QRect;
class QWidget;

// A frame of two lines along the edge of a control, so that one of them stands off whatever the control shows. `around`
// is the palette of what it lies on.
void paintFocusFrame(QPainter& painter, const QRect& control, const QPalette& around);

// Lets a push button have that frame while it has the focus. Styles mark the focus as they mark the button that Return
// presses, so that one would look the same with it and without.
void frameFocusOf(QWidget& button);

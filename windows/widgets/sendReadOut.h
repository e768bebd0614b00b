// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QWidget;

// Tells what lies below the pointer in a view (see host/ReadOut.h), empty once there is nothing. It goes as a status
// tip to the view and from there outwards, until a window of the host shows it in its status bar.
void sendReadOut(QWidget& view, const QString& strText);

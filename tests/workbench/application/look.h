// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/screen.h"

namespace look {

// Keeps a picture of a widget whose layout has settled.
inline void keep(QWidget& widget, const char* name)
{
    for (int i = 0; i < 3; ++i) {
        QApplication::sendPostedEvents();
        QApplication::processEvents();
    }
    screen::keep(screen::grab(widget), name);
}

} // namespace look

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFont>

namespace orvimage {

// The font of the texts in pictures, in pixels; never below 6, where nothing can be read any more.
QFont pictureFont(int pixels);
// Whether texts can be drawn: that takes a QGuiApplication, which a library's caller need not have.
bool canDrawText();

} // namespace orvimage

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPalette>

namespace screen {

inline QPalette darkPalette()
{
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(43, 43, 48));
    dark.setColor(QPalette::WindowText, QColor(230, 230, 230));
    dark.setColor(QPalette::Base, QColor(30, 30, 34));
    dark.setColor(QPalette::Text, QColor(230, 230, 230));
    dark.setColor(QPalette::Button, QColor(60, 60, 66));
    dark.setColor(QPalette::ButtonText, QColor(230, 230, 230));
    dark.setColor(QPalette::Highlight, QColor(80, 140, 220));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        dark.setColor(QPalette::Disabled, role, QColor(125, 125, 125));
    }
    return dark;
}

} // namespace screen

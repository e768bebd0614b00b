// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/PictureFont.h"

#include <QGuiApplication>

#include <algorithm>

namespace orvimage {

QFont pictureFont(int pixels)
{
    constexpr int smallest = 6;
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(std::max(smallest, pixels));
    return font;
}

bool canDrawText()
{
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

} // namespace orvimage

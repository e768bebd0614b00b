// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/darkPalette.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QTest>

#include <gtest/gtest.h>

// Pictures of widgets, kept in the build folder to be looked at: pictures/orvwidgets for the program test_orvwidgets.
namespace screen {

inline QImage grab(QWidget& widget)
{
    return widget.grab().toImage();
}

// Shows a window and waits until it is drawn.
inline void show(QWidget& widget)
{
    widget.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&widget));
    QApplication::processEvents();
}

inline void keep(const QImage& picture, const char* name)
{
    const QString room = QCoreApplication::applicationName().remove(QStringLiteral("test_"));
    const QString folder = QStringLiteral(ORV_BINARY_DIR "/pictures/") + room;
    QDir().mkpath(folder);
    const int ratio = qRound(picture.devicePixelRatio());
    picture.save(QStringLiteral("%1/%2_%3x.png").arg(folder, QString::fromLatin1(name)).arg(ratio));
}

} // namespace screen

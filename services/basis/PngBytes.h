// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

class QImage;

// A picture as a PNG file, weakly compressed: a stronger compression takes longer than a fit and saves a quarter of the
// bytes.
QByteArray pngBytes(const QImage& picture);

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QString>

namespace orvimage {

// Writes a picture as PNG, beside the target first and renamed when all is on disk: after a failure the target is as it
// was and `error` (may be null) holds "file: reason".
bool savePng(const QString& path, const QImage& picture, QString* error);

} // namespace orvimage

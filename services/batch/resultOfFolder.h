// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QJsonObject>
#include <QSize>
#include <QString>

// What a folder of results tells the overall files. All take the folder without a separator at its end, follow no name
// out of it, and give nothing where a file is missing or broken.

// Its "summary.json".
QJsonObject summaryOfFolder(const QString& strResults);
// Its composite, of a scan that of the first spot, no larger than that. Null without one.
QImage thumbnailOfFolder(const QString& strResults, const QJsonObject& summary, const QSize& most);

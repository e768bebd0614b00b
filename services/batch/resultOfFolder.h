// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QJsonObject>
#include <QList>
#include <QSize>
#include <QString>
#include <QStringList>

// What a folder of results tells the overall files. All take the folder without a separator at its end, follow no name
// out of it, and give nothing where a file is missing or broken.

// Its "summary.json".
QJsonObject summaryOfFolder(const QString& strResults);
// The rows of its "summary.csv", brought to those columns; empty where it lacks one.
QList<QStringList> summaryRowsOfFolder(const QString& strResults, const QStringList& columns);
// Its composite, of a scan that of the first spot, no larger than that. Null without one.
QImage thumbnailOfFolder(const QString& strResults, const QJsonObject& summary, const QSize& most);

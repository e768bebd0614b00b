// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tagROIInfo.h"

#include <QList>
#include <QLocale>
#include <QString>
#include <QStringList>

// The numbers of regions of interest as texts.
namespace regionTexts {

// Name, pixels, pixels without a value, area, mean, minimum, maximum, deviation, sum.
QStringList titles();
constexpr int kInvalidColumn = 2;
// The cells of a region under these titles; empty where nothing is known.
QStringList cells(const tagROIInfo& region, const QLocale& locale = QLocale());
// For a spreadsheet: titles and regions a line, tabs between, with all digits and the decimal point of C; behind them
// unit and shape.
QString table(const QList<tagROIInfo>& regions);
// "ROI 1", or the next number that no region has.
QString freeName(const QList<tagROIInfo>& regions);

} // namespace regionTexts

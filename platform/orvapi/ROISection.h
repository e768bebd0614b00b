// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tagROIInfo.h"

#include <QList>
#include <QPair>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

class CPLSection;

// Regions of interest as entries of a section: "ROI 1 Name", "ROI 1 Shape", "ROI 1 Pixels", "ROI 2 Name" and so on.
// docs/formats.md lists them.
namespace ROISection {

// What is beyond is left out, with a message.
constexpr int kMaximumRegions = 1000;
constexpr int kMaximumMessages = 50;
constexpr int kLongestName = 200;

using Entries = QList<QPair<QString, QString>>;

struct Reading
{
    QList<tagROIInfo> regions; // ordered by number
    QSet<int> numbers;         // of the keys that these regions came from
    QStringList messages;      // what was left out or changed
};

// Keys may have lost their blanks; case does not count. A region needs a shape; without a fit name it is called "ROI 1"
// after its number, and of two with one name the later gets a number behind. Of a key that comes twice the first
// counts.
Reading read(const Entries& entries);
Entries entriesOf(const CPLSection& section);

// The number of the region that an entry belongs to; nothing for a key of another kind.
std::optional<int> regionNumber(const QString& strKey);

// Appends the entries of a region.
void write(const tagROIInfo& region, int nNumber, CPLSection& section);

// Why a text is no name for a region; empty for a good one.
QString reasonAgainstName(const QString& strName);

// The name itself or, while `isTaken(name)`, with the smallest number from 2 behind it that is free.
template <typename Predicate>
QString freeName(const QString& strName, Predicate&& isTaken)
{
    QString name = strName;
    for (int number = 2; isTaken(name); ++number) {
        name = strName + QLatin1Char(' ') + QString::number(number);
    }
    return name;
}

} // namespace ROISection

// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/regions/RoiStore.h"

#include "files/AtomicFile.h"
#include "host/CORVSequenceDataset.h"
#include "host/CROIManager.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ROIShape.h"
#include "platform/orvutils/InputFile.h"
#include "services/basis/Failure.h"

#include <QHash>

#include <algorithm>

namespace {

constexpr int largestClickInfo = 64; // MiB

QByteArray contentOf(const QString& strPath)
{
    QByteArray bytes;
    QString error;
    if (!orv::readInput(strPath, largestClickInfo, QStringLiteral("click info"), &bytes, &error)) {
        throw Failure(error);
    }
    return bytes;
}

} // namespace

QList<RoiStore::Entry> RoiStore::distinct() const
{
    QList<Entry> entries;
    QHash<QString, int> places;
    for (auto* dataset : m_sequence.getDatasets()) {
        for (const tagROIInfo& region : dataset->roiManager()->regions()) {
            // A name holds no line end.
            const QString identity = region.name + QLatin1Char('\n') + ROIShape::toText(region);
            if (!places.contains(identity)) {
                places.insert(identity, entries.size());
                entries.append({region, 0});
            }
            ++entries[places.value(identity)].images;
        }
    }
    return entries;
}

QStringList RoiStore::names() const
{
    QStringList names;
    for (const Entry& entry : distinct()) {
        names.append(entry.region.name);
    }
    names.removeDuplicates();
    return names;
}

QString RoiStore::freeName() const
{
    const QStringList taken = names();
    int number = 1;
    while (taken.contains(QStringLiteral("ROI %1").arg(number))) {
        ++number;
    }
    return QStringLiteral("ROI %1").arg(number);
}

void RoiStore::add(const tagROIInfo& region)
{
    for (auto* dataset : m_sequence.getDatasets()) {
        QString reason;
        if (!dataset->roiManager()->addRegion(region, &reason)) {
            throw Failure(QStringLiteral("%1: %2").arg(dataset->getClickNumber(), reason));
        }
    }
}

int RoiStore::remove(const QString& strName)
{
    int removed = 0;
    for (auto* dataset : m_sequence.getDatasets()) {
        removed += dataset->roiManager()->removeRegion(strName) ? 1 : 0;
    }
    return removed;
}

void RoiStore::removeAll()
{
    m_bRemoveAll = true;
    for (auto* dataset : m_sequence.getDatasets()) {
        dataset->roiManager()->clearAllLists();
    }
}

int RoiStore::rename(const QString& strOld, const QString& strNew)
{
    int renamed = 0;
    for (auto* dataset : m_sequence.getDatasets()) {
        QString reason;
        const bool isThere = dataset->roiManager()->hasRegion(strOld);
        if (isThere && !dataset->roiManager()->renameRegion(strOld, strNew, &reason)) {
            throw Failure(QStringLiteral("%1: %2").arg(dataset->getClickNumber(), reason));
        }
        renamed += isThere ? 1 : 0;
    }
    return renamed;
}

QList<RegionFiles::Change> RoiStore::changes() const
{
    QList<RegionFiles::Change> changes;
    for (auto* dataset : m_sequence.getDatasets()) {
        RegionFiles::Change change;
        change.path = dataset->folderPath() + QLatin1String(SequenceFiles::kClickInfo);
        change.before = contentOf(change.path);
        CPLClickInfo info;
        QStringList warnings;
        info.parse(change.before, change.path, &warnings);
        if (!warnings.isEmpty()) {
            throw Failure(
                QStringLiteral("%1; mend this first, to store regions writes the file anew").arg(warnings.first()));
        }
        if (m_bRemoveAll) {
            info.removeSection(QString::fromLatin1(ClickKeys::kROIs));
        }
        dataset->roiManager()->saveROIData(&info);
        change.after = info.toText();
        if (change.after != change.before) {
            changes.append(change);
        }
    }
    return changes;
}

void RoiStore::save(RegionFiles& files) const
{
    files.write(changes());
}

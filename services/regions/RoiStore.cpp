// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/regions/RoiStore.h"

#include "files/AtomicFile.h"
#include "host/CORVSequenceDataset.h"
#include "host/CROIManager.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ROIShape.h"
#include "services/basis/Failure.h"

#include <QFile>
#include <QHash>

#include <algorithm>

namespace {

QByteArray contentOf(const QString& strPath)
{
    QFile file(strPath);
    if (!file.open(QIODevice::ReadOnly)) {
        throw Failure(QStringLiteral("%1: cannot be read: %2").arg(strPath, file.errorString()));
    }
    return file.readAll();
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

QList<RoiStore::File> RoiStore::changedFiles() const
{
    QList<File> files;
    for (auto* dataset : m_sequence.getDatasets()) {
        File file;
        file.path = dataset->folderPath() + QLatin1String(SequenceFiles::kClickInfo);
        file.before = contentOf(file.path);
        CPLClickInfo info;
        QStringList warnings;
        info.parse(file.before, file.path, &warnings);
        if (!warnings.isEmpty()) {
            throw Failure(
                QStringLiteral("%1; mend this first, to store regions writes the file anew").arg(warnings.first()));
        }
        if (m_bRemoveAll) {
            info.removeSection(QString::fromLatin1(ClickKeys::kROIs));
        }
        dataset->roiManager()->saveROIData(&info);
        file.after = info.toText();
        if (file.after != file.before) {
            files.append(file);
        }
    }
    return files;
}

void RoiStore::save() const
{
    const QList<File> files = changedFiles();
    for (int i = 0; i < files.size(); ++i) {
        QString error;
        if (orv::writeFileAtomically(files[i].path, files[i].after, &error)) {
            continue;
        }
        for (int j = 0; j < i; ++j) {
            if (!orv::writeFileAtomically(files[j].path, files[j].before)) {
                throw Failure(QStringLiteral("%1; %2 has been written already and cannot be taken back")
                                  .arg(error, files[j].path));
            }
        }
        throw Failure(error);
    }
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/SequenceTiles.h"

#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"

#include <QDir>

SequenceTiles::SequenceTiles(const CORVSequenceDataset& sequence)
{
    const bool temporal = sequence.isKyvoSequence();
    QVector<TileKey> keys;
    CORVDataset* pPhotographed = nullptr;
    const auto addLeftOut = [&](int before) {
        for (const CORVSequenceDataset::LeftOut& left : sequence.leftOut()) {
            if (left.before != before) {
                continue;
            }
            CPLClickInfo info;
            info.loadClickInfo(left.folder + QLatin1String(SequenceFiles::kClickInfo));
            keys.append(TileKey::of(info, temporal, QDir(left.folder).dirName()));
            m_tiles.append({nullptr, false, left.reason});
        }
    };
    const QList<CORVDataset*> datasets = sequence.getDatasets();
    for (int i = 0; i < datasets.size(); ++i) {
        CORVDataset* pDataset = datasets.at(i);
        addLeftOut(i);
        keys.append(TileKey::of(pDataset->clickInfo, temporal, pDataset->getClickNumber()));
        m_tiles.append({pDataset, false, QString()});
        if (pPhotographed == nullptr && pDataset->hasImage(IMAGETYPE_PHOTOGRAPH)) {
            pPhotographed = pDataset;
        }
    }
    addLeftOut(datasets.size());
    if (pPhotographed != nullptr) {
        m_tiles.prepend({pPhotographed, true, QString()});
    }
    m_grid = SequenceGrid(keys, pPhotographed != nullptr);
}

QList<CORVDataset*> SequenceTiles::datasets() const
{
    QList<CORVDataset*> datasets;
    for (const Tile& tile : m_tiles) {
        if (tile.dataset != nullptr && !tile.photograph) {
            datasets.append(tile.dataset);
        }
    }
    return datasets;
}

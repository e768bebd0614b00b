// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/imageChoice.h"

#include "engine/EngineEnums.h"

#include <QtGlobal>

#include <limits>

namespace {

QString joinedKey(const QString& strSpot, const QString& strFirst, const QString& strSecond, int eSeqKind)
{
    const QString strPair = strFirst + ',' + strSecond;
    return eSeqKind == SEQKIND_TRANSILLUMINATION ? strSpot + ',' + strPair : strPair;
}

QMap<QString, QString> clickNumbersByKey(const QMap<QString, ImageRecord>& records, int eSeqKind)
{
    QMap<QString, QString> clickNumbers;
    for (auto it = records.cbegin(); it != records.cend(); ++it) {
        const ImageRecord& record = it.value();
        const QString strKey = eSeqKind == SEQKIND_TEMPORAL
                                   ? joinedKey(record.spot, record.interval, record.time, eSeqKind)
                                   : joinedKey(record.spot, record.excitation, record.emission, eSeqKind);
        clickNumbers.insert(strKey, it.key());
    }
    return clickNumbers;
}

} // namespace

bool imagesOfSelection(const QMap<QString, ImageRecord>& records, const QList<KeyPair>& selection,
                       const QStringList& spots, int eSeqKind, QVector<QString>& list)
{
    const QMap<QString, QString> clickNumbers = clickNumbersByKey(records, eSeqKind);
    const int nSpots = qMax(1, spots.size());
    list.clear();
    list.resize(nSpots * selection.size());
    int nPlace = 0;
    for (int s = 0; s < nSpots; ++s) {
        for (const KeyPair& pair : selection) {
            const auto found = clickNumbers.constFind(joinedKey(spots.value(s), pair.first, pair.second, eSeqKind));
            if (found == clickNumbers.constEnd()) {
                return false;
            }
            list[nPlace++] = found.value();
        }
    }
    return true;
}

void BinningChoice::count(int nBinning)
{
    const int nCount = ++m_counts[nBinning];
    if (nCount > m_nBest) {
        m_nBest = nCount;
        m_nBinning = nBinning;
    } else if (nCount == m_nBest && nBinning > m_nBinning) {
        m_nBinning = nBinning;
    }
}

int sideAtBinning(int nSide, int nFrom, int nTo)
{
    const long long nUnbinned = static_cast<long long>(nFrom) * nSide;
    return static_cast<int>(qMin<long long>(nUnbinned / nTo, std::numeric_limits<int>::max()));
}

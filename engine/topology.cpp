// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/topology.h"

#include "engine/EngineEnums.h"
#include "engine/keySelection.h"

int wavelengthTopology(const QList<KeyPair>& selection, int eAxis, const QStringList& primaryKeys,
                       const QStringList& secondaryKeys, XTNT::Matrix<int>& layout)
{
    if (selection.size() == primaryKeys.size()) {
        layout = XTNT::Matrix<int>(1, primaryKeys.size(), 1);
        return 0;
    }
    layout = XTNT::Matrix<int>(secondaryKeys.size(), primaryKeys.size());
    int nMissing = 0;
    for (const KeyPair& pair : selection) {
        QString strPrimary = eAxis == SPECTRUMAXIS_EXCITATION ? pair.first : pair.second;
        const QString& strSecondary = eAxis == SPECTRUMAXIS_EXCITATION ? pair.second : pair.first;
        wavelengthDigits(strPrimary);
        const int nColumn = primaryKeys.indexOf(strPrimary);
        const int nRow = secondaryKeys.indexOf(strSecondary);
        if (nColumn < 0 || nRow < 0) {
            ++nMissing;
        } else {
            layout[nRow][nColumn] = 1;
        }
    }
    return nMissing;
}

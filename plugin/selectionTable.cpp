// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/selectionTable.h"

#include "spectra/SpectrumAxis.h"

#include <QTime>

namespace selectionTable {

QStringList typeTexts(int eAxis)
{
    switch (eAxis) {
    case SPECTRUMAXIS_TIME:
        return {"Time(hh:mm:ss)", "Time Point"};
    case SPECTRUMAXIS_EXCITATION:
        return {"Excitation"};
    default:
        return {"Emission"};
    }
}

QString rowText(int eAxis, int nRowNames, const QString& strKey, int nRow)
{
    if (eAxis != SPECTRUMAXIS_TIME) {
        return strKey;
    }
    if (nRowNames == RowTimes) {
        return QTime(0, 0).addSecs(strKey.toInt()).toString(QStringLiteral("hh:mm:ss"));
    }
    return QString::number(nRow + 1);
}

QString cellName(int eAxis, const QString& strColumnKey, const QString& strRowText)
{
    const QString pattern = eAxis == SPECTRUMAXIS_TIME ? QStringLiteral("interval %1, time %2")
                                                       : QStringLiteral("excitation %1, emission %2");
    return pattern.arg(strColumnKey, strRowText);
}

} // namespace selectionTable

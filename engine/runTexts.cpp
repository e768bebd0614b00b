// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/runTexts.h"

#include "engine/EngineEnums.h"

#include <QStringList>

QString runModeText(int nMode)
{
    static const QStringList texts{"Library", "Guided", "Automatic", "Manual"};
    return texts.value(nMode);
}

int runModeFromText(const QString& strText)
{
    for (int nMode : {RUNMODE_LIBRARY, RUNMODE_GUIDED, RUNMODE_AUTOMATIC}) {
        if (strText.contains(runModeText(nMode))) {
            return nMode;
        }
    }
    return RUNMODE_MANUAL;
}

QList<int> runModesForKind(int eSeqKind, int nSpots)
{
    switch (eSeqKind) {
    case SEQKIND_3D_SCENE:
        return {};
    case SEQKIND_TEMPORAL:
        return {RUNMODE_AUTOMATIC, RUNMODE_MANUAL};
    case SEQKIND_TRANSILLUMINATION:
        if (nSpots > 1) {
            return {RUNMODE_AUTOMATIC};
        }
        break;
    default:
        break;
    }
    return {RUNMODE_LIBRARY, RUNMODE_GUIDED, RUNMODE_AUTOMATIC, RUNMODE_MANUAL};
}

QString axisText(int eAxis)
{
    static const QStringList texts{"Emission", "Excitation", "Time"};
    return texts.value(eAxis);
}

QString unitText(int eUnit)
{
    static const QStringList texts{"Counts", "Radiance", "Radiant Efficiency", "Efficiency"};
    return texts.value(eUnit);
}

QString errorText(int nError)
{
    static const QStringList texts{QString(),
                                   "Wavelength table has a data mismatch!",
                                   "Too many components to resolve!",
                                   "Incorrect initial guess settings!",
                                   "Incorrect constraint settings!",
                                   "Invalid data mask or matrix!",
                                   "No solution! Please adjust the setup!",
                                   "No enough memory! Please reduce the binning or the size of the mask!"};
    return texts.value(nError);
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/ModeNames.h"

#include "engine/EngineEnums.h"
#include "engine/runTexts.h"

QString ModeNames::option(int nMode)
{
    return runModeText(nMode).toLower();
}

int ModeNames::fromText(const QString& strText)
{
    const QString wanted = strText.trimmed().toLower();
    for (int mode = RUNMODE_LIBRARY; mode <= RUNMODE_MANUAL; ++mode) {
        if (option(mode) == wanted) {
            return mode;
        }
    }
    return -1;
}

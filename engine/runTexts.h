// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

// "Library", "Guided", "Automatic", "Manual"; empty for any other mode.
QString runModeText(int nMode);
// The mode whose word the text holds ("Library", "Guided", "Automatic", looked for in this order), else Manual.
int runModeFromText(const QString& strText);
// The modes that a sequence of that kind with that many scan spots allows, ascending.
QList<int> runModesForKind(int eSeqKind, int nSpots);
// "Emission", "Excitation", "Time"; empty for any other axis.
QString axisText(int eAxis);
// "Counts", "Radiance", "Radiant Efficiency", "Efficiency"; empty for any other unit.
QString unitText(int eUnit);
// What went wrong, by error code; empty outside 1 to 7.
QString errorText(int nError);

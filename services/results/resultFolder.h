// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class JobMonitor;

// The folder with results that is meant by a name: as it stands, or else in the sequence's folder (with a separator at
// its end). One that a killed program has left aside while it replaced it goes back to its place first, or the user is
// told where it lies.
QString resultFolder(const QString& strName, const QString& strSequenceFolder, JobMonitor& monitor);

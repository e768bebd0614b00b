// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// Writes a new sequence into the folder `strTarget`, which must not exist, from datasets that lie anywhere, such as the
// maps of an analysis in the temporary directory; `clickInfos` are the files of their click infos. The sequence is of
// the kind of the sequence that the first dataset's click info names as its source, as long as that is open. It appears
// as a whole or not at all; false with file and reason.
bool writeSequenceOfDatasets(const QString& strTarget, const QStringList& clickInfos, QString* pError);

// Where such a sequence is proposed: beside the one that it was made from, or in `strFolder`.
QString proposedPlace(const QStringList& clickInfos, const QString& strFolder);

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/StagedFolder.h"
#include "host/orv_types.h"

#include <QSet>
#include <QString>

class CILImage;
class CPLClickInfo;

// The folder of a dataset that is being saved: built beside its target, in place as a whole or not at all. A status
// other than success comes with one sentence in *pReason: the file and what is wrong. Names are those of files inside
// the folder.
class DatasetFolder
{
public:
    // `strOwn` is the folder that the dataset lives in; empty without one. Given as the target it may hold folders.
    ESTATUS begin(const QString& strTarget, const QString& strOwn, QString* pReason);

    ESTATUS addImage(const QString& strName, const CILImage& image, QString* pReason);
    // A copy of a file, byte by byte.
    ESTATUS addFile(const QString& strPath, const QString& strName, QString* pReason);
    ESTATUS addClickInfo(const QString& strName, const CPLClickInfo& info, QString* pReason);
    // When the target is the dataset's own folder: whatever it holds that has not been added.
    ESTATUS keepOtherFiles(QString* pReason);

    ESTATUS commit(QString* pReason);

    QString target() const { return m_folder.target(); }

private:
    // The sentence with the target's name for that of the place where the folder is built.
    ESTATUS unwritable(const QString& strReason, QString* pReason) const;

    StagedFolder m_folder;
    bool m_bOwn = false;
    QSet<QString> m_added; // in lower case
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QString>

#include <utility>

// One image of a dataset: what it is and where it lies.
class CORVImageDetails
{
public:
    CORVImageDetails() = default;
    CORVImageDetails(tag_eimagetype eType, QString strFileName, QString strPath)
        : m_eType(eType), m_strFileName(std::move(strFileName)), m_strPath(std::move(strPath))
    {
    }
    tag_eimagetype imageType() const { return m_eType; }
    // Name of the file inside the dataset's folder, and the whole path.
    const QString& fileName() const { return m_strFileName; }
    const QString& path() const { return m_strPath; }

private:
    tag_eimagetype m_eType = IMAGETYPE_PHOTOGRAPH;
    QString m_strFileName;
    QString m_strPath;
};

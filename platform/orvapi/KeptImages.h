// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QList>
#include <QMap>
#include <QSharedPointer>

#include <mutex>

class CILImage;

// The images that a dataset keeps in memory, one a type. Any thread may ask and give.
class KeptImages
{
public:
    // Null when there is none.
    QSharedPointer<CILImage> image(tag_eimagetype eType) const;
    QList<QSharedPointer<CILImage>> all() const;
    // Keeps the image, unless there is one of that type by then; gives the one that is kept.
    QSharedPointer<CILImage> keep(tag_eimagetype eType, const QSharedPointer<CILImage>& pImage);
    void clear();

private:
    mutable std::mutex m_mutex;
    QMap<int, QSharedPointer<CILImage>> m_images;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVImageDetails.h"

#include <QList>

// The images of a dataset by type.
class CORVImageList
{
public:
    // Owned by the list; null when the dataset has no image of that type.
    CORVImageDetails* getImage(tag_eimagetype eType);
    const CORVImageDetails* getImage(tag_eimagetype eType) const;
    // Replaces an image of the same type.
    void add(const CORVImageDetails& details);
    int count() const { return m_images.size(); }

    void clear() { m_images.clear(); }
    const QList<CORVImageDetails>& images() const { return m_images; }

private:
    QList<CORVImageDetails> m_images;
};

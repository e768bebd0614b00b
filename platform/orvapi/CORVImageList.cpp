// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVImageList.h"

#include <algorithm>

CORVImageDetails* CORVImageList::getImage(tag_eimagetype eType)
{
    const auto it = std::find_if(m_images.begin(), m_images.end(),
                                 [eType](const CORVImageDetails& details) { return details.imageType() == eType; });
    return it == m_images.end() ? nullptr : &*it;
}

const CORVImageDetails* CORVImageList::getImage(tag_eimagetype eType) const
{
    const auto it = std::find_if(m_images.begin(), m_images.end(),
                                 [eType](const CORVImageDetails& details) { return details.imageType() == eType; });
    return it == m_images.end() ? nullptr : &*it;
}

void CORVImageList::add(const CORVImageDetails& details)
{
    if (CORVImageDetails* pExisting = getImage(details.imageType())) {
        *pExisting = details;
    } else {
        m_images.append(details);
    }
}

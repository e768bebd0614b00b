// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/KeptImages.h"

#include "host/CILImage.h"

QSharedPointer<CILImage> KeptImages::image(tag_eimagetype eType) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_images.value(eType);
}

QList<QSharedPointer<CILImage>> KeptImages::all() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_images.values();
}

QSharedPointer<CILImage> KeptImages::keep(tag_eimagetype eType, const QSharedPointer<CILImage>& pImage)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    QSharedPointer<CILImage>& pKept = m_images[eType];
    if (pKept.isNull()) {
        pKept = pImage;
    }
    return pKept;
}

void KeptImages::clear()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_images.clear();
}

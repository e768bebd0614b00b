// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVOverlayImage.h"
#include "platform/orvimage/Layer.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace {

orvimage::LayerPointer layerOf(const CILImage* image)
{
    return image == nullptr ? nullptr : image->layer();
}

} // namespace

void CORVOverlayImage::setBackground(const CILImage* image, tag_eimagetype)
{
    m_background = layerOf(image);
}

void CORVOverlayImage::setForeground(const CILImage* image, tag_eimagetype)
{
    m_foreground = layerOf(image);
}

EILSTATUS CORVOverlayImage::blend(float opacity, int smooth)
{
    if (m_background == nullptr && m_foreground == nullptr) {
        return EIL_FAILURE;
    }
    const double share = std::isnan(opacity) ? 0.0 : std::clamp(static_cast<double>(opacity), 0.0, 1.0);
    try {
        showLayer(orvimage::Layer::blend(m_foreground, m_background, share, smooth != 0));
    } catch (const std::bad_alloc&) {
        return EIL_NO_MEMORY;
    }
    return EIL_SUCCESS;
}

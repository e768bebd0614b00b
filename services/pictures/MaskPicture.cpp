// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/pictures/MaskPicture.h"

#include "engine/CORVSpumKyvo.h"
#include "services/basis/ImageExtent.h"

QImage maskPicture(const CORVSpumKyvo& engine)
{
    QImage mask(engine.m_nWidth, engine.m_nHeight, QImage::Format_Grayscale8);
    mask.fill(engine.m_cube.m_bHasMask ? 0 : 255);
    for (const int index : engine.m_cube.m_maskIndices) {
        mask.scanLine(index / engine.m_nWidth)[index % engine.m_nWidth] = 255;
    }
    const QSize extent = analysedExtent(engine);
    return mask.copy(0, 0, extent.width(), extent.height());
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/cli/MaskFile.h"

#include "platform/orvimage/TiffIo.h"
#include "workbench/cli/CliFailure.h"

CILImage readMaskFile(const QString& strPath, int nSide, int nBinning)
{
    CILImage mask;
    QString error;
    if (!readTiff(strPath, 0, mask, &error))
        throw CliFailure(error);
    if (mask.m_lWidth != mask.m_lHeight || mask.m_lWidth % nSide != 0)
        throw CliFailure(
            QStringLiteral("%1: the mask has %2 x %3 pixels; the analysis needs %4 x %4 or a multiple of it")
                .arg(strPath)
                .arg(mask.m_lWidth)
                .arg(mask.m_lHeight)
                .arg(nSide));
    mask.ChangeType(ORVTYPE_FLOAT);
    // A mask may hold anything above 0; ones make the sums of a rebinning harmless.
    bool any = false;
    float* pixels = mask.floats();
    for (std::size_t i = 0; i < mask.pixelCount(); ++i) {
        pixels[i] = pixels[i] > 0.0F ? 1.0F : 0.0F;
        any = any || pixels[i] > 0.0F;
    }
    if (!any)
        throw CliFailure(QStringLiteral("%1: the mask has no pixel above 0").arg(strPath));
    mask.m_fBinning = static_cast<float>(nBinning) * static_cast<float>(nSide) / static_cast<float>(mask.m_lWidth);
    return mask;
}

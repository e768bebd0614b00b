// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "host/tagROIInfo.h"

#include <QString>

#include <vector>

// What is taken for the background of an image: one number for all of its pixels, which is subtracted from them.
class BackgroundRule
{
public:
    // "percentile:1", or a region of the images in which there is nothing but background, as ROIShape has it
    // ("rect:x,y,width,height", "ellipse:...", "polygon:..."). False with the reason; the rule is then as it was.
    bool parse(const QString& strText, QString* pReason);

    bool isEmpty() const { return m_eKind == Kind::None; }
    // As parse() reads it; empty without a rule.
    QString text() const;

    // The background of an image whose pixels that `invalid` marks (empty: none) have no value. Those, and pixels that
    // are not finite, are left out. Of a percentile the value between the two nearest pixels, linearly (Hyndman and Fan
    // 1996, definition 7); of a region the mean. False with the reason where the region reaches beyond the image or no
    // pixel is left; false with an empty reason without memory.
    bool level(const CILImage& image, const std::vector<bool>& invalid, double* pLevel, QString* pReason) const;

private:
    enum class Kind
    {
        None,
        Percentile,
        Region
    };
    std::vector<double> pixelsOf(const CILImage& image, const std::vector<bool>& invalid) const;

    Kind m_eKind = Kind::None;
    double m_dPercent = 0.0;
    tagROIInfo m_region;
};

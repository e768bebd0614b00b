// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class CILImage;

// Segmentation helpers of the image library. Thresholds are taken on 256 bins between the smallest and the largest
// finite pixel, for every pixel type; a constant image gives the lower end (0 percent, or the constant), one without
// finite pixels, an empty one and null give 0.
class CSLComposite
{
public:
    // Threshold that best separates two classes (N. Otsu, A threshold selection method from gray-level histograms,
    // 1979), in percent (0 to 100) of the image's range.
    static float AutomaticThresholdOtsu(const CILImage* image);
    // Threshold at the minimum between the two modes of the smoothed histogram (J. M. S. Prewitt, M. L. Mendelsohn, The
    // analysis of cell images, 1966), in the image's own values. A histogram that does not become bimodal falls back on
    // Otsu's.
    static float AutomaticThresholdBimodal(const CILImage* image);
    // Sets every zero pixel that no path of zero pixels (4 neighbours) joins to the border to the image's largest value
    // (1 in a mask of bytes).
    static void closeHolesInBinaryImage(CILImage& image);
};

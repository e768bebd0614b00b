// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

// How many components stand above the noise of the images, and what the noise leaves unexplained. It is an estimate
// from the data alone, with noise taken to be of one size in all images: weak components among few images may be
// missed.
struct NoiseEstimate
{
    int components = 0;     // 0: it cannot be told
    double lackOfFit = 0.0; // percent of the data's norm that so many principal components leave

    // From the squares of the data's singular values, one an image, descending: the number at which the indicator
    // function is smallest (E. R. Malinowski, Determination of the number of factors and the experimental error in a
    // data matrix, Anal. Chem. 49 (1977) 612). It takes three images and values that are numbers.
    static NoiseEstimate ofEigenvalues(const std::vector<double>& eigenvalues);
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <QJsonObject>
#include <QString>

#include <vector>

// How many components stand above the noise of a set of images, and how large that noise is. The noise may differ from
// image to image and grow with the light of a pixel; it is not told but estimated, in any unit.
//
// Rows are divided by the square root of their mean, which levels the noise of counted light (M. R. Keenan, P. G.
// Kotula, Accounting for Poisson noise in the multivariate analysis of ToF-SIMS spectrum images, Surf. Interface Anal.
// 36 (2004) 203). Then, for k = 0, 1, ..., the noise of each image is fitted beside k components by maximum likelihood
// (K. G. Joereskog, Some contributions to maximum likelihood factor analysis, Psychometrika 32 (1967) 443), until the
// largest eigenvalue that is left is one that noise alone may have (I. M. Johnstone, On the distribution of the largest
// eigenvalue in principal components analysis, Ann. Statist. 29 (2001) 295; the test in turn as in S. Kritchman, B.
// Nadler, IEEE Trans. Signal Process. 57 (2009) 3930).
//
// Above the noise of real images stand errors, too, that their images share and that grow with the light (a
// measurement's error has two parts, one that does and one that does not: D. M. Rocke, S. Lorenzato, A two-component
// model for measurement error in analytical chemistry, Technometrics 37 (1995) 176). Likely are those components
// without which more than such a part of the light would be left in some of the pixels, or that end abruptly where the
// errors would fall off gradually; the others only may be there.
struct ComponentNumber
{
    int likely = 0; // 0: it cannot be told
    // Those that stand clearly above the noise and such errors, and those that may.
    int least = 0;
    int most = 0;
    bool open = false; // as many as the number of images lets tell: there may be more
    // Part of the data's norm that noise of that size makes up; NaN without.
    double noise = 0.0;
    // Standard deviation of each image's noise over the analysed pixels; empty where it cannot be told.
    std::vector<double> noiseOfImages;

    // Whether it was looked for with success.
    bool isKnown() const { return likely > 0 || !noiseOfImages.empty(); }
    // "componentsAboveNoise" and its ends, and "noise", where they can be told.
    void addTo(QJsonObject& json) const;
    // "4 (3 to 5)", "at least 5", "unknown".
    QString text() const;

    // An estimate takes no more elements than that, of rows that it takes evenly.
    static constexpr long long enoughElements = 4000000;

    // `data` is P x N, a row a pixel. Passes cancellation points.
    static ComponentNumber of(const XTNT::Matrix<double>& data, long long mostElements = enoughElements);
};

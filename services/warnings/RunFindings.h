// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <limits>

// What was found out about a run, as far as a warning may come of it. A number that is not known is a NaN; what was not
// looked for is left as it is here.
struct RunFindings
{
    static constexpr double notKnown = std::numeric_limits<double>::quiet_NaN();

    struct Component
    {
        QString name;
        double amplification = notKnown; // of the noise, against a fit of this spectrum alone
        // Cosine of the resolved spectrum with the known one of its name, and with the other source that is most like
        // it.
        double knownCosine = notKnown;
        QString nearest;
        double nearestCosine = notKnown;
    };
    QList<Component> components;
    bool resolved = false; // the spectra came from the images; else they were given

    int images = 0; // of the selection
    // Components above the noise: those that clearly are, those that may be, and the likely number; 0: not known.
    int leastComponents = 0;
    int mostComponents = 0;
    int likelyComponents = 0;
    // Norm of what the fit leaves, and of what noise alone would leave, of that of the data; the images in which it is
    // most beyond the noise; a source of the database that the rest looks like.
    double residual = notKnown;
    double floor = notKnown;
    QStringList unexplainedImages;
    QString restLooksLike;
    bool restInFiles = false; // residual.png and residual.csv show it

    long long pixels = 0; // analysed, over all spots
    // Pixels at the top of the camera's range, the images that they are in, and the component that most of them show.
    long long saturatedPixels = 0;
    QStringList saturatedImages;
    QString saturatedComponent;

    // Elements below 0 that became 0, as a part of all, their mean size over the noise of their images, and the images
    // with most of them.
    double cutElements = notKnown;
    double cutOverNoise = notKnown;
    QStringList cutImages;

    // Of images in counts without a mask: the smallest and the largest of their dark levels, and their mean light.
    double darkestLevel = notKnown;
    double brightestLevel = notKnown;
    double meanLight = notKnown;
    double offsetTakenOff = notKnown; // all images, as they had it alike

    // The mask's part of the images' light and of their pixels, 0 to 1; whether a photograph chose it, and not the
    // user.
    double maskLight = notKnown;
    double maskArea = notKnown;
    bool maskOfPhotograph = false;

    // The two spectra most like each other.
    QString alikeFirst;
    QString alikeSecond;
    double alikeCosine = notKnown;

    int binning = 0;
    int smallestBinning = 0; // of the images, 0: not known

    double decaySpan = 1.0; // largest factor of the isotope's decay over the smallest, where it was not corrected for
    QString isotope;

    bool iterationLimit = false;
    QStringList askedNames; // by the user
    QStringList givenNames; // by the engine
};

// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/warnings/runWarnings.h"

#include <algorithm>
#include <cmath>

namespace {

// A thousandth of the pixels changes spectra that are resolved from all of them.
constexpr double manySaturated = 1e-3;
// The noise of a map is ten times what it would be for that source alone: a signal-to-noise ratio of 10, enough to see
// a source by, becomes 1.
constexpr double largestAmplification = 10.0;
// At a cosine c the part 1 - c^2 of a spectrum's square is not of the source: more than a third at 0.8.
constexpr double smallestKnownCosine = 0.8;
// Two sources of the database tell a spectrum apart when their cosines with it differ by more than filters and tissue
// change either.
constexpr double clearlyNearer = 0.02;
// A map that is the sum over times in which the light fades by a twentieth is off by about as much.
constexpr double smallestDecay = 1.05;
// At twice the noise three quarters of the square of what is left are light that no component explains; from four times
// on it is nearly all, and the maps have taken up as much of it as they could.
constexpr double timesTheFloor = 2.0;
constexpr double wrongFrom = 4.0;
// What images without noise leave is the rounding of files, and the end of a resolution at 0.1 %.
constexpr double smallestRest = 2e-3;
// Where there is no light half of the pixels are below 0, by eight tenths of the noise in the mean: that is no more
// than noise. What is cut beyond was taken off the light: a background or a dark image that was too bright.
constexpr double manyCut = 0.01;
constexpr double beyondNoise = 1.5;
// Light differs from image to image; what is the same in the dark of all, and a tenth of the light or more, is the
// camera's. Noise shifts the dark level of an image a little.
constexpr double sameLevel = 0.85;
constexpr double largeLevel = 0.1;
// A mask that leaves half of the light out leaves out more than stray light.
constexpr double smallestMaskLight = 0.5;
constexpr int listed = 6;

QString listText(const QStringList& names)
{
    if (names.size() <= listed) {
        return names.join(QStringLiteral(", "));
    }
    return QStringList(names.mid(0, listed)).join(QStringLiteral(", ")) +
           QStringLiteral(" and %1 more").arg(names.size() - listed);
}

QString number(double dValue)
{
    return QString::number(dValue, 'g', 3);
}

QString counted(long long nCount, const char* pOne, const char* pMany)
{
    return QStringLiteral("%1 %2").arg(nCount).arg(QLatin1String(nCount == 1 ? pOne : pMany));
}

using Severity = RunWarning::Severity;

void addSaturation(const RunFindings& findings, QList<RunWarning>& warnings)
{
    if (findings.saturatedPixels < 1) {
        return;
    }
    RunWarning warning;
    const bool many =
        static_cast<double>(findings.saturatedPixels) > manySaturated * static_cast<double>(findings.pixels);
    warning.severity = many ? Severity::Error : Severity::Warning;
    warning.code = QStringLiteral("saturated");
    const auto images = findings.saturatedImages.size();
    warning.text = QStringLiteral("%1 at the top of the camera's range in %2 (%3)")
                       .arg(counted(findings.saturatedPixels, "analysed pixel is", "analysed pixels are"),
                            counted(images, "image", "images"), listText(findings.saturatedImages));
    if (!findings.saturatedComponent.isEmpty()) {
        warning.text += QStringLiteral(", most of them where \"%1\" is brightest").arg(findings.saturatedComponent);
    }
    warning.advice = QStringLiteral("take these images with a shorter exposure, or leave them out by --select");
    warnings.append(warning);
}

void addUnexplained(const RunFindings& findings, QList<RunWarning>& warnings)
{
    for (const RunFindings::Component& component : findings.components) {
        // Comparisons with what is not known are false.
        if (!(component.knownCosine < smallestKnownCosine)) {
            continue;
        }
        RunWarning warning;
        const bool nearer = component.nearestCosine > component.knownCosine + clearlyNearer;
        warning.severity = nearer ? Severity::Error : Severity::Warning;
        warning.code = QStringLiteral("not-its-name");
        warning.text = QStringLiteral("the spectrum of \"%1\" is not that of its name (cosine %2)")
                           .arg(component.name, number(component.knownCosine));
        if (nearer) {
            warning.text += QStringLiteral("; it is more like that of %1 (%2)")
                                .arg(component.nearest, number(component.nearestCosine));
        }
        warning.advice = nearer ? QStringLiteral("name %1 among --components, or do not take this map for %2")
                                      .arg(component.nearest, component.name)
                                : QStringLiteral("do not take this map for %1").arg(component.name);
        warnings.append(warning);
    }
}

void addAlike(const RunFindings& findings, QList<RunWarning>& warnings)
{
    // More spectra than images depend on each other in any case, which is told before the run.
    if (findings.components.size() > findings.images) {
        return;
    }
    QStringList names;
    double worst = 0.0;
    for (const RunFindings::Component& component : findings.components) {
        if (component.amplification > largestAmplification) {
            names.append(QStringLiteral("\"%1\"").arg(component.name));
            worst = std::max(worst, component.amplification);
        }
    }
    if (names.isEmpty()) {
        return;
    }
    RunWarning warning;
    warning.code = QStringLiteral("spectra-alike");
    const QString factor =
        std::isfinite(worst) ? QStringLiteral("up to %1 times").arg(number(worst)) : QStringLiteral("without limit");
    warning.text = QStringLiteral("the spectra can hardly be told apart: the noise of %1 is amplified %2")
                       .arg(listText(names), factor);
    if (!findings.alikeFirst.isEmpty()) {
        warning.text +=
            QStringLiteral(", and \"%1\" and \"%2\" are most alike (cosine %3)")
                .arg(findings.alikeFirst, findings.alikeSecond, QString::number(findings.alikeCosine, 'f', 4));
    }
    warning.advice = QStringLiteral("leave one of them out, or take images at more wavelengths");
    warnings.append(warning);
}

QString percent(double dPart)
{
    return QStringLiteral("%1 %").arg(number(100.0 * dPart));
}

void addCut(const RunFindings& findings, QList<RunWarning>& warnings)
{
    if (!(findings.cutElements >= manyCut && findings.cutOverNoise >= beyondNoise)) {
        return;
    }
    warnings.append(
        {Severity::Warning, QStringLiteral("clipped"),
         QStringLiteral("%1 of the elements were below 0, by %2 times the noise in the mean, and became 0; "
                        "most of them are in %3")
             .arg(percent(findings.cutElements), number(findings.cutOverNoise), listText(findings.cutImages)),
         QStringLiteral("the background or dark image that was taken off is too bright: take less off, or "
                        "leave these pixels out by --mask")});
}

void addOffset(const RunFindings& findings, QList<RunWarning>& warnings)
{
    if (std::isfinite(findings.offsetTakenOff)) {
        warnings.append({Severity::Warning, QStringLiteral("offset"),
                         QStringLiteral("the dark pixels of all images have about the same %1 counts, which were taken "
                                        "off all images as the offset of the camera")
                             .arg(number(findings.offsetTakenOff)),
                         QStringLiteral("an image without light, taken off at the import (--dark), is better; "
                                        "--no-refinement takes nothing off")});
        return;
    }
    if (!tellsOfOffset(findings)) {
        return;
    }
    warnings.append({Severity::Warning, QStringLiteral("offset"),
                     QStringLiteral("the darkest pixels of all images have about the same %1 counts, %2 of the mean "
                                    "light: an offset of the camera is taken for light")
                         .arg(number(findings.darkestLevel), percent(findings.darkestLevel / findings.meanLight)),
                     QStringLiteral("take it off at the import (--dark), or ask for one component more")});
}

void addMask(const RunFindings& findings, QList<RunWarning>& warnings)
{
    const bool darker = findings.maskLight < findings.maskArea;
    if (!findings.maskOfPhotograph || !(darker || findings.maskLight < smallestMaskLight)) {
        return;
    }
    warnings.append({darker ? Severity::Error : Severity::Warning, QStringLiteral("mask-off-light"),
                     QStringLiteral("the mask that was found in the photograph has %1 of the light on %2 of the pixels")
                         .arg(percent(findings.maskLight), percent(findings.maskArea)),
                     QStringLiteral("look at mask.png: it may lie over the bed; --threshold sets another limit, --mask "
                                    "takes a shape, a file or none")});
}

void addUpsampling(const RunFindings& findings, QList<RunWarning>& warnings)
{
    if (findings.smallestBinning < 1 || findings.binning >= findings.smallestBinning) {
        return;
    }
    warnings.append({Severity::Warning, QStringLiteral("upsampled"),
                     QStringLiteral("images of binning %1 were brought to binning %2, which adds pixels and no detail")
                         .arg(findings.smallestBinning)
                         .arg(findings.binning),
                     QStringLiteral("--binning %1 takes them as they are").arg(findings.smallestBinning)});
}

void addDecay(const RunFindings& findings, QList<RunWarning>& warnings)
{
    if (!(findings.decaySpan > smallestDecay)) {
        return;
    }
    warnings.append({Severity::Warning, QStringLiteral("decay"),
                     QStringLiteral("%1 decays by a factor of %2 from the first image to the last, which was not "
                                    "corrected for")
                         .arg(findings.isotope.isEmpty() ? QStringLiteral("the isotope") : findings.isotope,
                              number(findings.decaySpan)),
                     QStringLiteral("--decay corrects for it")});
}

void addNames(const RunFindings& findings, QList<RunWarning>& warnings)
{
    QStringList lost;
    for (const QString& name : findings.askedNames) {
        if (!findings.givenNames.contains(name)) {
            lost.append(QStringLiteral("\"%1\"").arg(name));
        }
    }
    if (lost.isEmpty()) {
        return;
    }
    warnings.append({Severity::Warning, QStringLiteral("names-replaced"),
                     QStringLiteral("the given names %1 are not those of the components, which are called %2: "
                                    "nothing tells which is which")
                         .arg(listText(lost), listText(findings.givenNames)),
                     QStringLiteral("compare their spectra")});
}

void addIterationLimit(const RunFindings& findings, QList<RunWarning>& warnings)
{
    if (findings.iterationLimit) {
        warnings.append({Severity::Warning, QStringLiteral("iteration-limit"),
                         QStringLiteral("Maximum iteration number is reached!"), QString()});
    }
}

bool isRestLarge(const RunFindings& findings)
{
    return findings.residual > timesTheFloor * findings.floor && findings.residual > smallestRest;
}

void addNumber(const RunFindings& findings, QList<RunWarning>& warnings)
{
    const int given = findings.components.size();
    const QString advice = QStringLiteral("try %1 components").arg(findings.likelyComponents);
    // Known spectra that leave little are enough for what they are to explain, whatever else shows in real images.
    const bool enough = !findings.resolved && !isRestLarge(findings);
    if (findings.likelyComponents > 0 && given < findings.leastComponents && !enough) {
        warnings.append({Severity::Warning, QStringLiteral("too-few-components"),
                         QStringLiteral("%1 were unmixed, and %2 stand clearly above the noise of the images")
                             .arg(counted(given, "component", "components"))
                             .arg(findings.leastComponents),
                         advice});
    }
    if (findings.likelyComponents > 0 && findings.resolved && given > findings.mostComponents) {
        warnings.append({Severity::Warning, QStringLiteral("too-many-components"),
                         QStringLiteral("%1 were unmixed, and not more than %2 stand above the noise of the images: a "
                                        "map may be one of noise, or a part of another")
                             .arg(counted(given, "component", "components"))
                             .arg(findings.mostComponents),
                         advice});
    }
}

void addRest(const RunFindings& findings, QList<RunWarning>& warnings)
{
    if (!isRestLarge(findings)) {
        return;
    }
    RunWarning warning;
    warning.severity = findings.residual > wrongFrom * findings.floor ? Severity::Error : Severity::Warning;
    warning.code = QStringLiteral("unexplained");
    warning.text = QStringLiteral("the components leave %1 % of the images unexplained, where noise would leave %2 %")
                       .arg(number(100.0 * findings.residual), number(100.0 * findings.floor));
    if (!findings.unexplainedImages.isEmpty()) {
        warning.text += QStringLiteral(", most in %1").arg(listText(findings.unexplainedImages));
    }
    if (findings.restLooksLike.isEmpty()) {
        warning.advice = QStringLiteral("a source is missing, or the spectra are of another unit or other filters");
    } else {
        warning.text += QStringLiteral("; what is left looks like %1").arg(findings.restLooksLike);
        warning.advice = QStringLiteral("add %1").arg(findings.restLooksLike);
    }
    if (findings.restInFiles) {
        warning.advice += QStringLiteral("; residual.png shows where, residual.csv in which images");
    }
    warnings.append(warning);
}

} // namespace

bool tellsOfOffset(const RunFindings& findings)
{
    return findings.darkestLevel > sameLevel * findings.brightestLevel &&
           findings.darkestLevel > largeLevel * findings.meanLight && findings.images > 2;
}

QList<RunWarning> runWarnings(const RunFindings& findings)
{
    QList<RunWarning> warnings;
    addSaturation(findings, warnings);
    addMask(findings, warnings);
    addUnexplained(findings, warnings);
    addRest(findings, warnings);
    addNumber(findings, warnings);
    addOffset(findings, warnings);
    addCut(findings, warnings);
    addAlike(findings, warnings);
    addIterationLimit(findings, warnings);
    addNames(findings, warnings);
    addDecay(findings, warnings);
    addUpsampling(findings, warnings);
    std::stable_sort(warnings.begin(), warnings.end(), [](const RunWarning& a, const RunWarning& b) {
        return a.severity == Severity::Error && b.severity != Severity::Error;
    });
    return warnings;
}

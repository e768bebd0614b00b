// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/warnings/runWarnings.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Severity = RunWarning::Severity;

RunFindings::Component component(const QString& strName)
{
    RunFindings::Component result;
    result.name = strName;
    return result;
}

// A run that nothing is to be said of.
RunFindings quietRun()
{
    RunFindings findings;
    findings.images = 18;
    findings.pixels = 10000;
    findings.binning = findings.smallestBinning = 4;
    for (const char* name : {"TissueAF", "AlexaFluor 750"}) {
        RunFindings::Component part = component(name);
        part.amplification = 2.0;
        part.knownCosine = 0.99;
        part.nearest = "Food";
        part.nearestCosine = 0.6;
        findings.components.append(part);
        findings.askedNames.append(name);
        findings.givenNames.append(name);
    }
    return findings;
}

// The only warning of a quiet run that `change` was made to.
template <typename Change>
RunWarning onlyWarning(const Change& change)
{
    RunFindings findings = quietRun();
    change(findings);
    const QList<RunWarning> warnings = runWarnings(findings);
    EXPECT_EQ(warnings.size(), 1);
    return warnings.value(0);
}

template <typename Change>
bool isQuiet(const Change& change)
{
    RunFindings findings = quietRun();
    change(findings);
    return runWarnings(findings).isEmpty();
}

} // namespace

TEST(RunWarningsTest, AGoodRunIsQuietAndSoIsOneOfWhichNothingIsKnown)
{
    EXPECT_TRUE(runWarnings(quietRun()).isEmpty());
    EXPECT_TRUE(runWarnings(RunFindings()).isEmpty());
    RunFindings unknown;
    unknown.components = {component("A"), component("B")};
    EXPECT_TRUE(runWarnings(unknown).isEmpty());
}

TEST(RunWarningsTest, SaturationIsAnErrorFromAThousandthOfThePixelsOn)
{
    for (const auto& [pixels, severity] :
         {std::pair<long long, Severity>{1, Severity::Warning}, {10, Severity::Warning}, {11, Severity::Error}}) {
        const RunWarning warning = onlyWarning([pixels = pixels](RunFindings& findings) {
            findings.saturatedPixels = pixels;
            findings.saturatedImages = QStringList({"605/640"});
            findings.saturatedComponent = "Food";
        });
        EXPECT_EQ(warning.code, "saturated");
        EXPECT_EQ(warning.severity, severity) << pixels;
    }
    const RunWarning warning = onlyWarning([](RunFindings& findings) {
        findings.saturatedPixels = 12;
        findings.saturatedImages = QStringList({"605/640", "605/660"});
        findings.saturatedComponent = "Food";
    });
    EXPECT_EQ(warning.text, "12 analysed pixels are at the top of the camera's range in 2 images (605/640, 605/660), "
                            "most of them where \"Food\" is brightest");
    EXPECT_FALSE(warning.advice.isEmpty());
}

TEST(RunWarningsTest, LongListsAreCut)
{
    const RunWarning warning = onlyWarning([](RunFindings& findings) {
        findings.saturatedPixels = 1;
        findings.saturatedImages = QStringList({"1", "2", "3", "4", "5", "6", "7", "8"});
    });
    EXPECT_EQ(warning.text, "1 analysed pixel is at the top of the camera's range in 8 images (1, 2, 3, 4, 5, 6 and 2 "
                            "more)");
}

TEST(RunWarningsTest, ASpectrumThatIsNotThatOfItsNameIsToldAndAnErrorWhereAnotherIsNearer)
{
    const RunWarning wrong = onlyWarning([](RunFindings& findings) {
        findings.components[1].knownCosine = 0.33;
        findings.components[1].nearestCosine = 0.95;
    });
    EXPECT_EQ(wrong.code, "not-its-name");
    EXPECT_EQ(wrong.severity, Severity::Error);
    EXPECT_EQ(wrong.text, "the spectrum of \"AlexaFluor 750\" is not that of its name (cosine 0.33); it is more like "
                          "that of Food (0.95)");
    EXPECT_TRUE(wrong.advice.contains("Food"));
    const RunWarning far = onlyWarning([](RunFindings& findings) { findings.components[1].knownCosine = 0.7; });
    EXPECT_EQ(far.severity, Severity::Warning);
    EXPECT_FALSE(far.text.contains("Food"));
    // A likeness that filters and tissue explain is none of another source.
    EXPECT_TRUE(isQuiet([](RunFindings& findings) { findings.components[1].nearestCosine = 0.999; }));
    EXPECT_TRUE(isQuiet([](RunFindings& findings) { findings.components[1].knownCosine = 0.8; }));
}

TEST(RunWarningsTest, SpectraThatAmplifyTheNoiseTenTimesAreToldWithThePair)
{
    const auto alike = [](double dAmplification) {
        return [dAmplification](RunFindings& findings) {
            findings.components[0].amplification = findings.components[1].amplification = dAmplification;
            findings.alikeFirst = "TissueAF";
            findings.alikeSecond = "AlexaFluor 750";
            findings.alikeCosine = 0.9961;
        };
    };
    EXPECT_TRUE(isQuiet(alike(10.0)));
    // Told ahead of the run.
    EXPECT_TRUE(isQuiet([&](RunFindings& findings) {
        alike(1e9)(findings);
        findings.images = 1;
    }));
    const RunWarning warning = onlyWarning(alike(11.4));
    EXPECT_EQ(warning.code, "spectra-alike");
    EXPECT_EQ(warning.text,
              "the spectra can hardly be told apart: the noise of \"TissueAF\", \"AlexaFluor 750\" is amplified up to "
              "11.4 times, and \"TissueAF\" and \"AlexaFluor 750\" are most alike (cosine 0.9961)");
    EXPECT_TRUE(onlyWarning(alike(INFINITY)).text.contains("is amplified without limit, and"));
}

TEST(RunWarningsTest, TooFewAndTooManyComponentsAreTold)
{
    const auto above = [](int nLeast, int nLikely, int nMost) {
        return [=](RunFindings& findings) {
            findings.leastComponents = nLeast;
            findings.likelyComponents = nLikely;
            findings.mostComponents = nMost;
            findings.resolved = true;
        };
    };
    EXPECT_TRUE(isQuiet(above(2, 2, 2)));
    EXPECT_TRUE(isQuiet(above(2, 3, 4)));
    EXPECT_TRUE(isQuiet(above(1, 1, 2)));
    const RunWarning few = onlyWarning(above(3, 4, 5));
    EXPECT_EQ(few.code, "too-few-components");
    EXPECT_EQ(few.sentence(), "2 components were unmixed, and 3 stand clearly above the noise of the images; try 4 "
                              "components");
    EXPECT_EQ(onlyWarning(above(1, 1, 1)).code, "too-many-components");
    // Known spectra that leave little are enough.
    EXPECT_TRUE(isQuiet([&](RunFindings& findings) {
        above(3, 4, 5)(findings);
        findings.resolved = false;
        findings.residual = findings.floor = 0.01;
    }));
    // Known spectra may well be more than there are.
    EXPECT_TRUE(isQuiet([&](RunFindings& findings) {
        above(1, 1, 1)(findings);
        findings.resolved = false;
    }));
}

TEST(RunWarningsTest, ARestFarAboveTheNoiseIsToldWithWhereAndWhatItLooksLike)
{
    const auto rest = [](double dResidual, const QString& strLike = QString()) {
        return [=](RunFindings& findings) {
            findings.residual = dResidual;
            findings.floor = 0.01;
            findings.unexplainedImages = QStringList{"605/660", "605/640"};
            findings.restLooksLike = strLike;
        };
    };
    EXPECT_TRUE(isQuiet(rest(0.02)));
    const RunWarning some = onlyWarning(rest(0.03));
    EXPECT_EQ(some.code, "unexplained");
    EXPECT_EQ(some.severity, Severity::Warning);
    EXPECT_EQ(some.text, "the components leave 3 % of the images unexplained, where noise would leave 1 %, most in "
                         "605/660, 605/640");
    const RunWarning food = onlyWarning(rest(0.085, "Food"));
    EXPECT_EQ(food.severity, Severity::Error);
    EXPECT_TRUE(food.text.endsWith("; what is left looks like Food"));
    EXPECT_EQ(food.advice, "add Food");
    // Exact images leave the rounding of files.
    EXPECT_TRUE(isQuiet([&](RunFindings& findings) {
        rest(1e-3)(findings);
        findings.floor = 1e-7;
    }));
}

TEST(RunWarningsTest, OnlyPixelsThatWereAddedAreUpsampled)
{
    const RunWarning warning = onlyWarning([](RunFindings& findings) { findings.binning = 1; });
    EXPECT_EQ(warning.code, "upsampled");
    EXPECT_EQ(warning.advice, "--binning 4 takes them as they are");
    EXPECT_TRUE(isQuiet([](RunFindings& findings) { findings.binning = 8; }));
    EXPECT_TRUE(isQuiet([](RunFindings& findings) { findings.smallestBinning = 0; }));
}

TEST(RunWarningsTest, DecayMattersFromATwentiethOn)
{
    EXPECT_TRUE(isQuiet([](RunFindings& findings) { findings.decaySpan = 1.05; }));
    const RunWarning warning = onlyWarning([](RunFindings& findings) {
        findings.decaySpan = 2.0;
        findings.isotope = "F-18";
    });
    EXPECT_EQ(warning.code, "decay");
    EXPECT_TRUE(warning.text.startsWith("F-18 decays by a factor of 2 "));
}

TEST(RunWarningsTest, NamesThatVanishAreTold)
{
    const RunWarning warning = onlyWarning([](RunFindings& findings) {
        findings.givenNames = QStringList({"Unmixed 1", "Unmixed 2"});
    });
    EXPECT_EQ(warning.code, "names-replaced");
    EXPECT_TRUE(warning.text.contains("\"TissueAF\", \"AlexaFluor 750\""));
    EXPECT_TRUE(warning.text.contains("Unmixed 1, Unmixed 2"));
    EXPECT_TRUE(isQuiet([](RunFindings& findings) { findings.askedNames.clear(); }));
    EXPECT_TRUE(isQuiet([](RunFindings& findings) {
        findings.givenNames = QStringList({"AlexaFluor 750", "TissueAF"});
    }));
}

TEST(RunWarningsTest, TheLimitOfIterationsIsToldInTheEnginesWords)
{
    const RunWarning warning = onlyWarning([](RunFindings& findings) { findings.iterationLimit = true; });
    EXPECT_EQ(warning.code, "iteration-limit");
    EXPECT_EQ(warning.sentence(), "Maximum iteration number is reached!");
}

TEST(RunWarningsTest, ErrorsComeFirst)
{
    RunFindings findings = quietRun();
    findings.iterationLimit = true;
    findings.binning = 1;
    findings.components[1].knownCosine = 0.3;
    findings.components[1].nearestCosine = 0.9;
    EXPECT_EQ(codesOf(runWarnings(findings)), (QStringList{"not-its-name", "iteration-limit", "upsampled"}));
}

TEST(RunWarningsTest, CutElementsAreToldWhereTheyAreManyAndMoreThanNoise)
{
    const auto cut = [](double dElements, double dOverNoise) {
        return [=](RunFindings& findings) {
            findings.cutElements = dElements;
            findings.cutOverNoise = dOverNoise;
            findings.cutImages = QStringList({"605/640", "605/660"});
        };
    };
    const RunWarning warning = onlyWarning(cut(0.04, 3.0));
    EXPECT_EQ(warning.code, "clipped");
    EXPECT_EQ(warning.severity, Severity::Warning);
    EXPECT_EQ(warning.text, "4 % of the elements were below 0, by 3 times the noise in the mean, and became 0; most of "
                            "them are in 605/640, 605/660");
    EXPECT_FALSE(warning.advice.isEmpty());
    EXPECT_TRUE(isQuiet(cut(0.009, 3.0)));
    // Half of the pixels of a dark background.
    EXPECT_TRUE(isQuiet(cut(0.4, 0.8)));
    EXPECT_TRUE(isQuiet(cut(0.4, std::nan(""))));
}

TEST(RunWarningsTest, AMaskOfThePhotographThatLeavesTheLightOutIsTold)
{
    const auto mask = [](double dLight, double dArea) {
        return [=](RunFindings& findings) {
            findings.maskLight = dLight;
            findings.maskArea = dArea;
            findings.maskOfPhotograph = true;
        };
    };
    const RunWarning beside = onlyWarning(mask(0.08, 0.3));
    EXPECT_EQ(beside.code, "mask-off-light");
    EXPECT_EQ(beside.severity, Severity::Error);
    EXPECT_EQ(beside.text, "the mask that was found in the photograph has 8 % of the light on 30 % of the pixels");
    EXPECT_EQ(onlyWarning(mask(0.4, 0.3)).severity, Severity::Warning);
    EXPECT_TRUE(isQuiet(mask(0.5, 0.3)));
    // Whoever draws a mask wants those pixels.
    EXPECT_TRUE(isQuiet([&](RunFindings& findings) {
        mask(0.08, 0.3)(findings);
        findings.maskOfPhotograph = false;
    }));
}

TEST(RunWarningsTest, TheFilesThatShowWhatIsLeftAreNamedWhereThereAreSome)
{
    const auto rest = [](bool bFiles) {
        return [bFiles](RunFindings& findings) {
            findings.residual = 0.1;
            findings.floor = 0.01;
            findings.restInFiles = bFiles;
        };
    };
    EXPECT_TRUE(onlyWarning(rest(true)).advice.endsWith("; residual.png shows where, residual.csv in which images"));
    EXPECT_FALSE(onlyWarning(rest(false)).advice.contains("residual."));
}

TEST(RunWarningsTest, AnOffsetThatIsTheSameInAllImagesIsTold)
{
    const auto levels = [](double dDarkest, double dBrightest) {
        return [=](RunFindings& findings) {
            findings.darkestLevel = dDarkest;
            findings.brightestLevel = dBrightest;
            findings.meanLight = 1000.0;
        };
    };
    const RunWarning warning = onlyWarning(levels(490.0, 505.0));
    EXPECT_EQ(warning.code, "offset");
    EXPECT_EQ(warning.text, "the darkest pixels of all images have about the same 490 counts, 49 % of the mean light: "
                            "an offset of the camera is taken for light");
    EXPECT_TRUE(isQuiet(levels(90.0, 95.0)));
    // Light that is everywhere differs from image to image.
    EXPECT_TRUE(isQuiet(levels(200.0, 500.0)));
    EXPECT_TRUE(isQuiet(levels(0.0, 0.0)));
}

TEST(RunWarningsTest, AnOffsetThatWasTakenOffIsToldAsSuch)
{
    const RunWarning warning = onlyWarning([](RunFindings& findings) { findings.offsetTakenOff = 99.5; });
    EXPECT_EQ(warning.code, "offset");
    EXPECT_EQ(warning.text, "the dark pixels of all images have about the same 99.5 counts, which were taken off all "
                            "images as the offset of the camera");
}

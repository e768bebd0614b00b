// SPDX-License-Identifier: GPL-3.0-or-later
// Results that are saved, loaded and saved again.
#include "ResultFixture.h"

#include <rapidcheck/gtest.h>

#include <numeric>

namespace {

QString anyName()
{
    static const QStringList pieces{
        "a", "B",      "7",      "\"",           "'",          "&",  "<", ">", " ", "\n", "\t",
        ";", "&quot;", "\u00e4", "\u65e5\u672c", "\U0001F600", "\\", "%1"};
    QString strName;
    const int nPieces = *rc::gen::inRange(0, 8);
    for (int i = 0; i < nPieces; ++i) {
        strName += pieces.at(*rc::gen::inRange(0, pieces.size()));
    }
    return strName;
}

// Empty, full, of one pixel, or any.
std::vector<int> anyMask(int nPixels)
{
    const int eKind = *rc::gen::inRange(0, 4);
    if (eKind == 0) {
        return {};
    }
    if (eKind == 1) {
        return {*rc::gen::inRange(0, nPixels)};
    }
    std::vector<int> mask(static_cast<std::size_t>(nPixels));
    std::iota(mask.begin(), mask.end(), 0);
    if (eKind == 3) {
        const auto nStep = static_cast<std::size_t>(*rc::gen::inRange(1, 5));
        std::vector<int> some;
        for (std::size_t i = 0; i < mask.size(); i += nStep) {
            some.push_back(mask[i]);
        }
        return some;
    }
    return mask;
}

double anyNumber()
{
    return *rc::gen::element(0.0, 0.1, 0.9, 1.0 / 3.0, -2.5e-7, 1e300, 5e-324, 123456789.123456789);
}

void decorate(ResultEngine& engine)
{
    for (SpectrumPlotParams* pSpectrum : qAsConst(engine->m_spectrumPlots)) {
        pSpectrum->settings.name = anyName();
        pSpectrum->settings.color = *rc::gen::element<QString>("red", "lime", "#102030", "");
        pSpectrum->settings.shape = *rc::gen::inRange(0, 3);
        pSpectrum->settings.selected = *rc::gen::arbitrary<bool>();
        pSpectrum->origin = anyName();
    }
    for (ScaleRatio& ratio : engine->m_scaleRatios) {
        ratio.MinRatio = *rc::gen::element(0.0, 0.05, 1.0 / 3.0, 0.1);
        ratio.MaxRatio = *rc::gen::element(0.5, 2.0 / 3.0, 0.95, 1.0);
    }
    engine->resultView().setNote(anyName());
    engine->m_bReverse = *rc::gen::arbitrary<bool>();
    engine->m_bLogScale = *rc::gen::arbitrary<bool>();
    const int nRegions = *rc::gen::inRange(0, 3);
    for (int i = 0; i < nRegions; ++i) {
        engine->m_roiResults.append({{"ROI 1 Name", "ROI 1 Shape"}, {anyName(), "rect:1,2,3,4"}, QString::number(i)});
    }
}

} // namespace

RC_GTEST_PROP(ResultRoundTrip, ALoadedResultIsSavedAsTheSameText, ())
{
    const int eAxis = *rc::gen::inRange(0, 3);
    LogCapture log;
    TestSequence sequence;
    addImages(sequence, eAxis);
    sequence->isFluorescence = *rc::gen::arbitrary<bool>();
    ResultEngine first(sequence);
    RC_ASSERT(first->m_eAxis == eAxis);
    first->m_eMode = *rc::gen::element<int>(RUNMODE_LIBRARY, RUNMODE_GUIDED, RUNMODE_MANUAL);
    if (*rc::gen::arbitrary<bool>()) {
        first.useMask(anyMask(resultSide * resultSide));
    }
    // There is no solution for more spectra than pixels.
    first.analyse(first->m_maskIndices.size() == 1 ? 1 : resultSpectra);
    decorate(first);
    const QString strFirst = first->resultToXml();

    ResultEngine second(sequence);
    RC_ASSERT(second->loadResult(strFirst));
    RC_ASSERT(log.reports().empty());
    RC_ASSERT(second->m_maskIndices == first->m_maskIndices);
    RC_ASSERT(second->m_concentrations.num_cols() == first->m_concentrations.num_cols());
    RC_ASSERT(withoutMoment(second->resultToXml()) == withoutMoment(strFirst));
}

// Whatever the members say, in every mode and unit, whether or not a run could have left them so.
RC_GTEST_PROP(ResultRoundTrip, AnyStateIsReadAsItWasWritten, ())
{
    LogCapture log;
    TestSequence sequence;
    addImages(sequence, 0);
    ResultEngine first(sequence);
    ResultEngine second(sequence);
    first.takeSpectra();
    for (SpectrumPlotParams* pSpectrum : qAsConst(first->m_spectrumPlots)) {
        pSpectrum->axis = *rc::gen::inRange(0, 3);
        for (SpectrumPoint& point : pSpectrum->points) {
            point.value = anyNumber();
        }
    }
    first->m_scaleRatios = {{anyNumber(), anyNumber(), 1.0}, {anyNumber(), anyNumber(), 1.0}};
    decorate(first);
    first->m_eMode = *rc::gen::inRange(0, 4);
    first->m_eUnit = *rc::gen::inRange(0, 4);
    first->m_eSeqKind = *rc::gen::inRange(0, 3);
    first->m_nColorMap = *rc::gen::arbitrary<int>();
    first->m_nBinning = *rc::gen::inRange(0, 17);
    first->m_nWidth = *rc::gen::inRange(0, 5000);
    first->m_nHeight = *rc::gen::inRange(0, 5000);
    first.useMask(anyMask(1000));
    first->updateResultProperties(true);
    first->m_bCherenkov = second->m_bCherenkov = *rc::gen::arbitrary<bool>();
    first->m_strIsotope = anyName();
    first->m_dHalfLifeSec = *rc::gen::element(0.0, 6588.0, 6586.242, 599999994.0, 75.0);
    first->m_bDecayApplied = *rc::gen::arbitrary<bool>();
    const QString strFirst = first->resultToXml();

    QDomDocument document;
    RC_ASSERT(document.setContent(strFirst));
    RC_ASSERT(second->readResultV2(document.documentElement()));
    RC_ASSERT(log.reports().empty());
    RC_ASSERT(second->m_bHasLoadedDecay == first->m_bCherenkov);
    // What the dispatcher does with the rest.
    second->resultView().setNote(document.documentElement().attribute("Note"));
    if (second->m_bHasLoadedDecay) {
        second->m_strIsotope = second->m_strLoadedIsotope;
        second->m_dHalfLifeSec = second->m_dLoadedHalfLife * 60.0;
        second->m_bDecayApplied = second->m_bLoadedDecayApplied;
    }
    RC_ASSERT(second->m_maskIndices == first->m_maskIndices);
    RC_ASSERT(second->m_properties == first->m_properties);
    RC_ASSERT(withoutMoment(second->resultToXml()) == withoutMoment(strFirst));
}

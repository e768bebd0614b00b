// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/AnalysisSetUp.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "host/CORVLog.h"
#include "host/CORVSequenceDataset.h"
#include "services/analysis/MaskImage.h"
#include "services/basis/Failure.h"
#include "services/basis/ImageExtent.h"
#include "services/basis/JobMonitor.h"
#include "services/basis/ModeNames.h"
#include "services/basis/UnitNames.h"
#include "services/session/PairSelection.h"
#include "services/session/UnitForecast.h"
#include "spectra/logLine.h"

#include <utility>

namespace {

QStringList imagesOf(const CORVSpumKyvo& engine)
{
    QStringList images;
    for (const auto& click : engine.m_imageList) {
        images.append(click);
    }
    return images;
}

} // namespace

void refuseUnusableImages(const CORVSpumKyvo& engine)
{
    const ImageFindings& findings = engine.m_imageFindings;
    if (!findings.refusal().isEmpty()) {
        throw Failure(findings.refusal(), findings.isUnreadable() ? QStringLiteral("--verbose tells more") : QString());
    }
}

AnalysisSetUp::AnalysisSetUp(const AnalysisRequest& request, JobMonitor& monitor)
    : m_request(request), m_monitor(monitor), m_opened(request.sequence)
{
    m_monitor.warnAll(m_opened.warnings());
    if (!m_opened.canBeAnalysed()) {
        throw Failure(QStringLiteral("%1 cannot be analysed: %2").arg(m_request.sequence, m_opened.reasonAgainst()));
    }
    // A photograph that was made of the images shows where they are bright, not where the body is.
    if (!m_request.mask.asked && !m_opened.hasPhotographOfCamera()) {
        m_request.mask.kind = MaskRequest::Kind::None;
    }
}

ResultPlace AnalysisSetUp::outPlace(const QString& strDefaultName) const
{
    return resultPlace(m_request.out, m_opened.folder(), strDefaultName);
}

void AnalysisSetUp::checkMode(int nMode)
{
    const QList<int> modes = engine().availableModes();
    if (modes.contains(nMode)) {
        return;
    }
    QStringList names;
    for (const int mode : modes) {
        names.append(ModeNames::option(mode));
    }
    throw Failure(QStringLiteral("this sequence cannot be unmixed by the method %1; it takes %2")
                      .arg(ModeNames::option(nMode), names.join(QStringLiteral(", "))));
}

void AnalysisSetUp::select()
{
    QList<KeyPair> selection = engine().getAllKeyPairs();
    if (!m_request.select.isEmpty()) {
        selection = selectPairs(m_request.select, selection);
    }
    QList<KeyPair> trial = selection;
    int axis = 0;
    if (engine().validateSelection(trial, &axis, false) == 0) {
        throw Failure(QStringLiteral("the selection %1 cannot be unmixed: it takes two %2 at least")
                          .arg(pairsText(selection), engine().m_eSeqKind == SEQKIND_TEMPORAL
                                                         ? QStringLiteral("time points")
                                                         : QStringLiteral("wavelengths")));
    }
    // As in the palette: a selection of which a part was taken away is analysed without it.
    const int asked = selection.size();
    if (!engine().applySelection(selection)) {
        engine().updateKeys();
        logLine(QStringLiteral("SpumKyvo: image selection got adjusted"), CORVLOG_WARNING);
        m_monitor.warn(QStringLiteral("image selection got adjusted: %1 of %2 images are used")
                           .arg(engine().getSelectedKeyPairs().size())
                           .arg(asked));
    }
}

void AnalysisSetUp::reset(int nMode)
{
    engine().resetAnalysis(nMode);
    if (!engine().createImageList()) {
        throw Failure(QStringLiteral("an image of the selection is missing in the sequence"));
    }
    if (m_request.binning > 0) {
        engine().m_bAutoBinning = false;
        engine().m_nBinning = m_request.binning;
    }
    if (!engine().setBinningAndSize(engine().m_bAutoBinning) || engine().m_nWidth < 1) {
        throw Failure(m_request.binning > 0
                          ? QStringLiteral("at binning %1 nothing is left of the images").arg(m_request.binning)
                          : QStringLiteral("the binning and size of the images cannot be found"));
    }
}

void AnalysisSetUp::takeMask(int nPixelsNeeded)
{
    qint64 pixels = static_cast<qint64>(engine().m_nWidth) * engine().m_nHeight;
    CILImage mask = m_request.mask.kind == MaskRequest::Kind::None ? CILImage() : maskImageOf(m_request.mask, engine());
    mask = withoutPadding(mask, engine());
    if (!mask.isEmpty()) {
        engine().m_analysisInput.maskImage = std::move(mask);
        if (!engine().takeDataMask()) {
            throw Failure(unusableMaskText(m_request.mask, engine()));
        }
        pixels = static_cast<qint64>(engine().m_maskIndices.size());
        if (pixels == 0) {
            throw Failure(QStringLiteral("the mask leaves no pixel"));
        }
    }
    if (pixels < nPixelsNeeded) {
        throw Failure(QStringLiteral("only %1 %2 left for the analysis; it takes %3 at least")
                          .arg(pixels)
                          .arg(pixels == 1 ? QStringLiteral("pixel is") : QStringLiteral("pixels are"))
                          .arg(nPixelsNeeded));
    }
}

int AnalysisSetUp::checkUnit()
{
    m_unitLimit.set(m_request.unit);
    const UnitForecast forecast = forecastUnit(m_opened.sequence(), imagesOf(engine()));
    const QString why = forecast.refusals.join(QStringLiteral("; "));
    if (forecast.unit < 0) {
        throw Failure(QStringLiteral("the images can be had in no unit: %1").arg(why));
    }
    if (m_request.unit >= 0 && forecast.unit != m_request.unit) {
        throw Failure(QStringLiteral("the unit %1 cannot be reached; the analysis would end in %2%3")
                          .arg(UnitNames::options()[m_request.unit], UnitNames::options()[forecast.unit],
                               why.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(why)));
    }
    return forecast.unit;
}

void AnalysisSetUp::checkMemory(const SystemMemory& memory)
{
    const CORVSpumKyvo& analysis = engine();
    RunSize size;
    size.pixels = static_cast<double>(analysis.m_nWidth) * analysis.m_nHeight;
    size.elements = analysis.m_imageList.size() *
                    (analysis.m_maskIndices.empty() ? size.pixels : static_cast<double>(analysis.m_maskIndices.size()));
    size.automatic = analysis.m_eMode == RUNMODE_AUTOMATIC;
    size.keepsRaw = analysis.m_bCherenkov;
    const qint64 bytes = unmixMemory(size);
    const QString text = tooMuchMemoryText(bytes, memory);
    const QString advice = QStringLiteral("a coarser --binning, a --mask or fewer images (--select) take less");
    if (text.isEmpty()) {
        return;
    }
    if (memory.whole > 0 && bytes > memory.whole) {
        throw Failure(text, advice);
    }
    m_monitor.warn(text + QStringLiteral("; ") + advice);
}

void AnalysisSetUp::readImages(double dFraction)
{
    // Where it fails without a word about an image, the run says why.
    engine().buildImageCube([&](double dShare) {
        m_monitor.stopIfRequested();
        m_monitor.showProgress(QStringLiteral("Looking at the images"), dFraction * dShare);
    });
    refuseUnusableImages(engine());
}

bool AnalysisSetUp::allImagesConstant()
{
    return constantImages().size() == engine().m_imageList.size();
}

// SPDX-License-Identifier: GPL-3.0-or-later
// A result as a document, and an engine brought back to it.
#include "engine/CORVSpumKyvo.h"

#include "storage/ResultReaderV1.h"
#include "storage/ResultReaderV2.h"
#include "storage/documentText.h"
#include "storage/resultElements.h"
#include "storage/resultRegions.h"

#include "host/CORVLog.h"
#include "spectra/SpectrumPlotParams.h"
#include "spectra/logLine.h"

#include <QDateTime>
#include <QDomDocument>
#include <QLocale>
#include <QtAlgorithms>

#include <algorithm>

namespace {

constexpr double oldestVersion = 1.1;
constexpr double presentVersion = 2.0;
constexpr double secondsAMinute = 60.0;

// What the decay controls say of a result whose file tells nothing: no isotope, a half life so long that nothing
// decays.
constexpr const char* unknownIsotope = "Undefined";
constexpr double unknownHalfLifeSeconds = 599999994.0;

// Date and time of one moment, as this computer writes them.
QString momentText()
{
    const QDateTime now = QDateTime::currentDateTime();
    const QLocale system = QLocale::system();
    return system.toString(now.date(), QLocale::ShortFormat) + QLatin1String(", ") +
           system.toString(now.time(), QLocale::ShortFormat);
}

void appendSpectra(QDomElement& root, QDomDocument& document, const QList<SpectrumPlotParams*>& spectra)
{
    QDomElement list = resultElements::appendElement(root, "SpectrumList");
    for (const SpectrumPlotParams* pSpectrum : spectra) {
        pSpectrum->writeXml(list, document);
    }
}

void appendRegions(QDomElement& root, CORVSpumKyvo& engine)
{
    const ResultRegions regions = collectResultRegions(engine.m_strSeqId);
    engine.m_roiResults += regions.records;
    if (engine.m_roiResults.isEmpty() && !regions.hasResultImage) {
        return;
    }
    const QStringList leftOut = resultElements::appendRegions(root, engine.m_roiResults);
    for (const QString& strKey : leftOut) {
        logLine(
            QStringLiteral("SpumKyvo: the region entry \"%1\" has a name that a result file cannot hold.").arg(strKey),
            CORVLOG_WARNING);
    }
}

void parseDocument(const QString& content, QDomDocument* pDocument)
{
    QString strReason;
    if (!documentText::parse(content, pDocument, &strReason)) {
        logLine("SpumKyvo: the result file is damaged: " + strReason, CORVLOG_WARNING);
    }
}

// The present settings of the engine are its user's to change.
void showLoadedDecay(CORVSpumKyvo& engine)
{
    if (!engine.m_bCherenkov) {
        return;
    }
    if (engine.m_bHasLoadedDecay) {
        engine.resultView().setDecayState(engine.m_strLoadedIsotope, engine.m_dLoadedHalfLife * secondsAMinute,
                                          engine.m_bLoadedDecayApplied);
    } else {
        engine.resultView().setDecayState(unknownIsotope, unknownHalfLifeSeconds, false);
    }
}

// The view shows the loaded spectra; the engine goes on with the list that the view then has.
void showLoadedSpectra(CORVSpumKyvo& engine)
{
    ResultView& view = engine.resultView();
    view.setImageCube(engine.m_selectedKeyPairs, engine.m_eAxis, engine.m_cube);
    view.setBackgroundMode(false);
    view.setSpectra(engine.m_spectrumPlots);
    QList<SpectrumPlotParams*> shown;
    for (const SpectrumPlotParams* pSpectrum : view.getSpectra()) {
        shown.append(new SpectrumPlotParams(*pSpectrum));
    }
    engine.m_spectrumPlots.swap(shown);
    qDeleteAll(shown);
}

void recomputeConcentrations(CORVSpumKyvo& engine)
{
    // Rows of the cube, and so of the concentrations, follow the indices in ascending order.
    std::sort(engine.m_maskIndices.begin(), engine.m_maskIndices.end());
    // Maps of an earlier result must not be taken for those of this one, should there be no solution.
    engine.m_concentrations.reshape(0, 0);
    engine.solveConcentrations();
    if (engine.m_spectrumPlots.size() != engine.m_scaleRatios.size()) {
        for (int i = 0; i < engine.m_spectrumPlots.size(); ++i) {
            engine.m_scaleRatios.append(ScaleRatio());
        }
    }
}

} // namespace

QString CORVSpumKyvo::resultToXml()
{
    QDomDocument document(documentText::documentType());
    QDomElement root = document.appendChild(document.createElement("SpectralUnmixingResults")).toElement();
    root.setAttribute("Date.Time", momentText());
    root.setAttribute("Version", resultElements::numberText(presentVersion));
    root.setAttribute("Note", m_pResultView->getNote());

    resultElements::appendElement(root, "SeqDataset").setAttribute("id", m_strSeqId);
    const QList<SpectrumPlotParams*> spectra = m_pResultView->getSpectra();
    resultElements::appendPairs(root, resultElements::pairsOfResult(m_selectedKeyPairs, spectra));
    appendSpectra(root, document, spectra);
    resultElements::appendMask(root, {m_nBinning, m_nWidth, m_nHeight, m_bUseMask != 0}, m_maskIndices);
    resultElements::appendProperties(root, m_properties);
    appendRegions(root, *this);
    resultElements::appendDisplay(root, {m_nColorMap, m_bReverse, m_bLogScale, m_scaleRatios});
    if (m_bCherenkov) {
        resultElements::appendDecay(root, {m_strIsotope, m_dHalfLifeSec / secondsAMinute, m_bDecayApplied});
    }
    const QString strText = documentText::prologue() + documentText::toText(document);
    m_roiResults.clear();
    return strText;
}

bool CORVSpumKyvo::loadResult(QString content)
{
    // A file without a mask means every pixel.
    m_bUseMask = 0;
    m_maskIndices.clear();
    QDomDocument document;
    parseDocument(content, &document);
    const QDomElement root = document.documentElement();
    const double dVersion = root.attribute("Version").toDouble();
    if (!(dVersion >= oldestVersion)) {
        logLine("SpumKyvo: this result file is not supported by current version!", CORVLOG_ERROR);
        logLine("SpumKyvo: failed to load the result!", CORVLOG_ERROR);
        return false;
    }
    const bool bPresent = dVersion >= presentVersion;
    bool bRead = false;
    if (bPresent) {
        if (root.hasAttribute("Note")) {
            m_pResultView->setNote(root.attribute("Note"));
        }
        bRead = readResultV2(root);
    } else {
        bRead = readResultV1(root);
        updateResultProperties(false);
    }
    if (!bRead) {
        logLine("SpumKyvo: failed to load the result!", CORVLOG_ERROR);
        return false;
    }

    // The binning of the file holds, as the mask is made for it.
    m_bAutoBinning = false;
    m_bCubeValid = false;
    m_cube.clear();
    m_imageList.clear();
    showLoadedDecay(*this);
    if (!createPseudoColorImage()) {
        // Told to the listeners, but not as a failure of the load.
        logLine("SpumKyvo: unable to create pseudo color image.", CORVLOG_ERROR);
        Q_EMIT cancelRun();
        return true;
    }
    showLoadedSpectra(*this);
    if (bPresent) {
        recomputeConcentrations(*this);
    }
    if (!updateUnmixedImages(true)) {
        logLine("SpumKyvo: unable to update the unmixed images", CORVLOG_ERROR);
        return false;
    }
    return true;
}

bool CORVSpumKyvo::readResultV1(QDomElement root)
{
    return ResultReaderV1(*this).readAll(root);
}

bool CORVSpumKyvo::readResultV2(QDomElement root)
{
    return ResultReaderV2(*this).read(root);
}

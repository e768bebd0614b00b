// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/CORVSpumKyvoPalettePlugin.h"

#include "plugin/CORVSpumBrowseDlg.h"
#include "plugin/CORVSpumKyvoPalette.h"
#include "plugin/isUnmixingTab.h"

#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "host/CORVUtilityFns.h"

namespace {

constexpr int typeCode = 6; // the host's, for palettes of this kind

} // namespace

CORVSpumKyvoPalettePlugin::CORVSpumKyvoPalettePlugin(QObject* pParent) : CORVToolPalettePluginBase(pParent) {}

CORVSpumKyvoPalettePlugin::~CORVSpumKyvoPalettePlugin() = default;

QWidget* CORVSpumKyvoPalettePlugin::paletteWidget()
{
    if (!m_pPalette) {
        m_pPalette.reset(new CORVSpumKyvoPalette);
        connectPalette();
        // Of sequences that came ahead of the palette.
        for (CORVSequenceDataset* pSequence : CORVSequenceDataset::openSequences()) {
            wire(*pSequence);
        }
    }
    return m_pPalette.data();
}

void CORVSpumKyvoPalettePlugin::connectPalette()
{
    const CORVSpumKyvoPalette* pPalette = m_pPalette.data();
    connect(pPalette, &CORVSpumKyvoPalette::updateValidity, this, &CORVSpumKyvoPalettePlugin::onSignalUpdateValidity);
    // By text: pointers to members would want to see the host's structure.
    connect(pPalette, SIGNAL(loadSpumResult(QString, bool, ESTATUS*, downloaded_save_data*)), this,
            SLOT(onSignalLoadFile(QString, bool, ESTATUS*, downloaded_save_data*)));
    connect(pPalette, &CORVSpumKyvoPalette::askToSaveExistingResult, this,
            &CORVSpumKyvoPalettePlugin::onSignalAskToSaveResults);
    connect(pPalette, &CORVSpumKyvoPalette::changeSequenceWindowUnit, this,
            &CORVSpumKyvoPalettePlugin::signalChangeSeqWndUnit);
    connect(pPalette, &CORVSpumKyvoPalette::createSpumKyvoSequence, this,
            qOverload<QStringList, bool>(&CORVSpumKyvoPalettePlugin::signalCreateSequence));
    connect(pPalette, &CORVSpumKyvoPalette::printPixmap, this, &CORVSpumKyvoPalettePlugin::onSignalPrintPixmap);
    connect(pPalette, &CORVSpumKyvoPalette::restoreWindows, this, &CORVSpumKyvoPalettePlugin::onRestoreWindows);
}

QString CORVSpumKyvoPalettePlugin::pluginName()
{
    return QStringLiteral("Spectral Unmixing and KyVo");
}

int CORVSpumKyvoPalettePlugin::pluginTypeCode()
{
    return typeCode;
}

QString CORVSpumKyvoPalettePlugin::shortName()
{
    return QStringLiteral("Spectral Unmixing");
}

bool CORVSpumKyvoPalettePlugin::isEnabledByDefault()
{
    return true;
}

void CORVSpumKyvoPalettePlugin::wire(CORVSequenceDataset& sequence)
{
    connect(&sequence, &CORVSequenceDataset::sequencePropertyChanged, this,
            &CORVSpumKyvoPalettePlugin::onSequencePropertyChanged, Qt::UniqueConnection);
    if (m_pPalette) {
        connect(&sequence, &CORVSequenceDataset::updateSpumProperties, m_pPalette.data(),
                &CORVSpumKyvoPalette::updateProperties, Qt::UniqueConnection);
        connect(&sequence, &CORVSequenceDataset::saveExistingAnalysisResult, m_pPalette.data(),
                &CORVSpumKyvoPalette::askToSaveExistingResults, Qt::UniqueConnection);
    }
}

void CORVSpumKyvoPalettePlugin::onSignalSequenceAdded(CORVSequenceDataset* pSequence)
{
    if (pSequence != nullptr) {
        wire(*pSequence);
    }
}

void CORVSpumKyvoPalettePlugin::onSignalSequenceRemoved(CORVSequenceDataset* pSequence)
{
    if (m_pPalette && pSequence != nullptr) {
        m_pPalette->onCloseSequenceDataset(pSequence);
    }
}

void CORVSpumKyvoPalettePlugin::onSignalDatasetChanged(CORVDataset* pDataset)
{
    if (m_pPalette) {
        m_pPalette->onDatasetChanged(pDataset);
        onSignalUpdateValidity(m_pPalette.data(), m_pPalette->getSequenceValidity());
    }
}

bool CORVSpumKyvoPalettePlugin::isValidFor(CORVSequenceDataset* pSequence) const
{
    const bool bValid = m_pPalette->getSequenceValidity();
    const CORVSequenceWindow* pWindow = CORVSequenceWindow::getSequenceWindow(pSequence);
    return bValid && (pWindow == nullptr || isUnmixingTab(pWindow->getCurrentTabName(), false));
}

void CORVSpumKyvoPalettePlugin::onSignalSequenceChanged(CORVSequenceDataset* pSequence)
{
    if (m_pPalette) {
        m_pPalette->onSequenceChanged(pSequence);
        onSignalUpdateValidity(m_pPalette.data(), isValidFor(pSequence));
    }
}

void CORVSpumKyvoPalettePlugin::onSequencePropertyChanged(CORVSequenceDataset* pSeqDataset)
{
    if (m_pPalette) {
        onSignalUpdateValidity(m_pPalette.data(), isValidFor(pSeqDataset));
    }
}

void CORVSpumKyvoPalettePlugin::onSignalUpdatePluginPalette(QString strTabName)
{
    if (m_pPalette) {
        onSignalUpdateValidity(m_pPalette.data(), isUnmixingTab(strTabName, true) && m_pPalette->getSequenceValidity());
    }
}

void CORVSpumKyvoPalettePlugin::onSignalDatasetRemoved(CORVDataset* pDataset)
{
    if (m_pPalette) {
        m_pPalette->saveROIsFromClosingResultDataset(pDataset);
    }
}

void CORVSpumKyvoPalettePlugin::onSignalROIModified(QString /*strName*/) {}

void CORVSpumKyvoPalettePlugin::onSignalROIDeleted() {}

void CORVSpumKyvoPalettePlugin::onSignalupdateROIList() {}

void CORVSpumKyvoPalettePlugin::onAdvancedOptionChanged(bool bVal)
{
    if (m_pPalette) {
        m_pPalette->advanced_mode_options(bVal);
    }
}

void CORVSpumKyvoPalettePlugin::onSignalUpdateValidity(QWidget* pWidget, bool bVisible)
{
    Q_EMIT updatePluginValidity(pWidget, bVisible);
}

void CORVSpumKyvoPalettePlugin::onSignalAskToSaveResults()
{
    if (m_pPalette) {
        m_pPalette->askToSaveResults(true);
    }
}

void CORVSpumKyvoPalettePlugin::onSignalLoadFile(QString strFilePath, bool bShow, ESTATUS* pStatus,
                                                 downloaded_save_data* pDownloadData)
{
    Q_EMIT signalLoadFile(strFilePath, bShow, pStatus, pDownloadData);
}

void CORVSpumKyvoPalettePlugin::onSignalLoadFile(QString strFilePath, bool bShow, ESTATUS* pStatus)
{
    Q_EMIT signalLoadFile(strFilePath, bShow, pStatus, nullptr);
}

void CORVSpumKyvoPalettePlugin::signalChangeSeqWndUnit(const QString& strSequenceId, EDISPLAYUNIT eUnit)
{
    Q_EMIT changeSeqWndUnit(strSequenceId, eUnit);
}

void CORVSpumKyvoPalettePlugin::onSignalBinningChanged(bool bChanged)
{
    if (m_pPalette) {
        m_pPalette->setBinningChanged(bChanged);
    }
}

void CORVSpumKyvoPalettePlugin::onSignalUpdateSPUMTools(SSpecUnmixControls* /*pControls*/) {}

void CORVSpumKyvoPalettePlugin::onSignalCopyToClipboard(QString strTabName)
{
    if (m_pPalette) {
        m_pPalette->CopyToClipboard(strTabName);
    }
}

void CORVSpumKyvoPalettePlugin::onSignalGetPrintPixmap(bool bPrintPreview)
{
    const QPixmap pixmap = m_pPalette ? m_pPalette->getPrintPreviewPixmap() : QPixmap();
    if (pixmap.isNull()) {
        return;
    }
    if (bPrintPreview) {
        Q_EMIT printPreview(pixmap, true);
    } else {
        Q_EMIT printPixmap(pixmap, true);
    }
}

void CORVSpumKyvoPalettePlugin::onRestoreWindows(bool bValue)
{
    Q_EMIT restoreWindowsToMain(bValue);
}

void CORVSpumKyvoPalettePlugin::onLoadUnmixDlg()
{
    if (!m_pPalette) {
        return;
    }
    m_pPalette->setUpBatch();
    if (CORVUtilityFns::getSpumBatchStatus()) {
        onSignalLoadBrowseWindow();
    }
}

void CORVSpumKyvoPalettePlugin::onSignalLoadBrowseWindow()
{
    if (m_pPalette) {
        Q_EMIT signalLoadBrowseWindow(m_pPalette->batchExcitation(), m_pPalette->batchEmission());
    }
}

void CORVSpumKyvoPalettePlugin::onStartUnmixing()
{
    if (m_pBrowseDlg) {
        m_pBrowseDlg->m_pUnmixBtn->setText(tr("Apply"));
    }
}

void CORVSpumKyvoPalettePlugin::onSignalDisableSpumBatchProcessing()
{
    if (m_pPalette) {
        m_pPalette->endBatch();
    }
}

void CORVSpumKyvoPalettePlugin::signalCreateSequence(QStringList folders, bool bShow)
{
    Q_EMIT createSequence(folders, bShow);
}

void CORVSpumKyvoPalettePlugin::onSignalPrintPixmap(QPixmap pixmap)
{
    Q_EMIT printPixmap(pixmap, true);
}

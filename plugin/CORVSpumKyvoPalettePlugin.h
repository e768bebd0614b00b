// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVToolPalettePluginBase.h"

#include <QList>
#include <QSharedPointer>

class CORVSpumBrowseDlg;
class CORVSpumKyvoPalette;

// What the host loads: makes the palette when it is asked for, hands the host's notifications to it and its requests to
// the base, which passes them on. Without a palette none of that does anything. All on the user-interface thread.
class CORVSpumKyvoPalettePlugin : public CORVToolPalettePluginBase
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "hal.orvia.orvspum")
    Q_INTERFACES(CORVToolPalettePluginBase)

public:
    explicit CORVSpumKyvoPalettePlugin(QObject* pParent = nullptr);
    ~CORVSpumKyvoPalettePlugin() override;

    QWidget* paletteWidget() override;
    QString pluginName() override;
    int pluginTypeCode() override;
    QString shortName() override;
    bool isEnabledByDefault() override;

    // The base's, which that of this class would hide.
    using CORVToolPalettePluginBase::signalCreateSequence;

public Q_SLOTS:
    void onSignalDatasetChanged(CORVDataset* pDataset) override;
    void onSignalSequenceChanged(CORVSequenceDataset* pSequence) override;
    void onSignalDatasetRemoved(CORVDataset* pDataset) override;
    void onSignalSequenceAdded(CORVSequenceDataset* pSequence) override;
    void onSignalSequenceRemoved(CORVSequenceDataset* pSequence) override;
    // Regions of interest are read when a result is saved; until then their changes are of no interest.
    void onSignalROIModified(QString strName) override;
    void onSignalROIDeleted() override;
    void onSignalupdateROIList() override;
    void onSignalUpdatePluginPalette(QString strTabName) override;
    void onAdvancedOptionChanged(bool bVal) override;
    void onSignalUpdateValidity(QWidget* pWidget, bool bVisible) override;
    void onSignalAskToSaveResults() override;
    void onSignalLoadFile(QString strFilePath, bool bShow, ESTATUS* pStatus,
                          downloaded_save_data* pDownloadData) override;
    void onSignalLoadFile(QString strFilePath, bool bShow, ESTATUS* pStatus) override;
    void signalChangeSeqWndUnit(const QString& strSequenceId, EDISPLAYUNIT eUnit) override;
    void onSignalBinningChanged(bool bChanged) override;
    // The host's controls for spectral tools are none of this one's.
    void onSignalUpdateSPUMTools(SSpecUnmixControls* pControls) override;
    void onSignalCopyToClipboard(QString strTabName) override;
    void onSignalGetPrintPixmap(bool bPrintPreview) override;
    void onRestoreWindows(bool bValue) override;
    void onLoadUnmixDlg() override;
    void signalCreateSequence(QStringList folders, bool bShow) override;
    void onSignalPrintPixmap(QPixmap pixmap) override;

    // The sequence's properties are other ones; the palette takes no notice, its validity may change.
    void onSequencePropertyChanged(CORVSequenceDataset* pSeqDataset);
    // Has the host let the user pick the datasets of a batch.
    void onSignalLoadBrowseWindow();
    // The first button of the browse dialog, if there is one, reads "Apply".
    void onStartUnmixing();
    void onSignalDisableSpumBatchProcessing();

public:
    // Null: the host lets its users pick the datasets of a batch in a window of its own.
    QSharedPointer<CORVSpumBrowseDlg> m_pBrowseDlg;

Q_SIGNALS:
    void signalLoadBrowseWindow(QList<QString> excitationList, QList<QString> emissionList);

private:
    void connectPalette();
    void wire(CORVSequenceDataset& sequence);
    // Whether the palette belongs beside the current tab of the sequence's window.
    bool isValidFor(CORVSequenceDataset* pSequence) const;

    QSharedPointer<CORVSpumKyvoPalette> m_pPalette;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QIcon>
#include <QObject>
#include <QPixmap>
#include <QString>
#include <QStringList>
#include <QtPlugin>

class CORVDataset;
class CORVSequenceDataset;
class QAction;
class QMenu;
class QWidget;

// Structures of the host that tool palettes hand on without looking into them.
struct SSpecUnmixControls;
struct downloaded_save_data;

// What the host loads: a plug-in that brings one tool palette. The host calls the operations below on the
// user-interface thread as datasets, sequences and tabs come, change and go, and listens to the signals at the end.
// Only what a palette cannot do without is pure; everything else does nothing until a plug-in overrides it.
//
// The order of the virtual operations is that of the table through which the host calls plug-ins: new ones go to the
// end.
class CORVToolPalettePluginBase : public QObject
{
    Q_OBJECT

public:
    explicit CORVToolPalettePluginBase(QObject* pParent = nullptr);
    ~CORVToolPalettePluginBase() override;

    // The palette, made at the first call; it stays the plug-in's.
    virtual QWidget* paletteWidget() = 0;
    virtual QString pluginName() = 0;
    virtual int pluginTypeCode() = 0;
    virtual void executePlugin();
    virtual QString shortName() = 0;
    virtual bool isEnabledByDefault() = 0;
    // Whether the palette shows at the first start.
    virtual bool defaultVisibilityForPluggin();
    // A plug-in that shows in a menu instead of as a palette.
    virtual bool hasMenuBasedAction();
    virtual QMenu* pluginMenu();
    virtual QAction* pluginAction();
    virtual QIcon pluginIcon();
    // The menu in which the action goes, and the entry ahead of which.
    virtual QString PluginMenuItem();
    virtual QString MenuItemBefore();

public Q_SLOTS:
    // Null when nothing is current.
    virtual void onSignalDatasetChanged(CORVDataset* pDataset);
    virtual void onSignalSequenceChanged(CORVSequenceDataset* pSequence);
    // Ahead of the deletion.
    virtual void onSignalDatasetRemoved(CORVDataset* pDataset);
    virtual void onSignalSequenceAdded(CORVSequenceDataset* pSequence);
    virtual void onSignalSequenceRemoved(CORVSequenceDataset* pSequence);
    virtual void onSignalROIModified(QString strName);
    virtual void onSignalROIDeleted();
    virtual void onSignalupdateROIList();
    // The current tab of the sequence's window is another one.
    virtual void onSignalUpdatePluginPalette(QString strTabName);
    virtual void onAdvancedOptionChanged(bool bVal);
    // Whether the host shows the palette.
    virtual void onSignalUpdateValidity(QWidget* pWidget, bool bVisible);
    virtual void onSignalSelectOrganDatabase(QString strDatabase);
    virtual void onSignalAskToSaveResults();
    virtual void onSignalLoadFile(QString strFilePath, bool bShow, ESTATUS* pStatus,
                                  downloaded_save_data* pDownloadData);
    virtual void onSignalLoadFile(QString strFilePath, bool bShow, ESTATUS* pStatus);
    virtual void signalChangeSeqWndUnit(const QString& strSequenceId, EDISPLAYUNIT eUnit);
    virtual void signalCreateSequence(QString strFolder, bool bShow);
    virtual void onSignalBinningChanged(bool bChanged);
    virtual void onSignalUpdateSPUMTools(SSpecUnmixControls* pControls);
    virtual void onSignalAddWidgetToWorkspace(QWidget* pWidget);
    virtual void onSignalMakeMeasurement();
    virtual void onSignalCopyToClipboard(QString strTabName);
    virtual void onSignal3DViewChanged();
    virtual void onSignalApplyQuantificationResult();
    virtual void onSignalDatabaseChanged();
    virtual void onSignalGetPrintPixmap(bool bPrintPreview);
    virtual void onHideAllGraphWindows();
    virtual void onSignal3DSceneChanged();
    virtual void onSignalTransformObjectChanged();
    // False while a run keeps everything but its abort out of reach.
    virtual void onRestoreWindows(bool bValue);
    virtual void onLoadUnmixDlg();
    virtual void onDatasetSavedSignal();
    virtual void onLoadResultsSignal();
    virtual void onToolPalettePluginStatusModified();
    virtual void signalCreateSequence(QStringList folders, bool bShow);
    virtual void onSignalPrintPixmap(QPixmap pixmap);

Q_SIGNALS:
    void updatePluginValidity(QWidget* pWidget, bool bVisible);
    // The host opens the dataset of that click info as its own, with CORVDataset::openMade(), and shows it in an image
    // window when bShow. *pStatus (may be null) receives how it went.
    void signalLoadFile(QString strFilePath, bool bShow, ESTATUS* pStatus, downloaded_save_data* pDownloadData);
    void changeSeqWndUnit(QString strSequenceId, EDISPLAYUNIT eUnit);
    void createSequence(QStringList folders, bool bShow);
    void printPixmap(QPixmap pixmap, bool bShow);
    void printPreview(QPixmap pixmap, bool bShow);
    void restoreWindowsToMain(bool bValue);
};

Q_DECLARE_INTERFACE(CORVToolPalettePluginBase, "com.Halden.Orvia.CORVToolPalettePluginBase/1.0")

// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVToolPalettePluginBase.h"

// A plug-in takes up what it cares for; what it leaves to the base has no effect.

CORVToolPalettePluginBase::CORVToolPalettePluginBase(QObject* pParent) : QObject(pParent) {}

CORVToolPalettePluginBase::~CORVToolPalettePluginBase() = default;

void CORVToolPalettePluginBase::executePlugin() {}

bool CORVToolPalettePluginBase::defaultVisibilityForPluggin()
{
    return true;
}

bool CORVToolPalettePluginBase::hasMenuBasedAction()
{
    return false;
}

QMenu* CORVToolPalettePluginBase::pluginMenu()
{
    return nullptr;
}

QAction* CORVToolPalettePluginBase::pluginAction()
{
    return nullptr;
}

QIcon CORVToolPalettePluginBase::pluginIcon()
{
    return QIcon();
}

QString CORVToolPalettePluginBase::PluginMenuItem()
{
    return QString();
}

QString CORVToolPalettePluginBase::MenuItemBefore()
{
    return QString();
}

void CORVToolPalettePluginBase::onSignalDatasetChanged(CORVDataset*) {}

void CORVToolPalettePluginBase::onSignalSequenceChanged(CORVSequenceDataset*) {}

void CORVToolPalettePluginBase::onSignalDatasetRemoved(CORVDataset*) {}

void CORVToolPalettePluginBase::onSignalSequenceAdded(CORVSequenceDataset*) {}

void CORVToolPalettePluginBase::onSignalSequenceRemoved(CORVSequenceDataset*) {}

void CORVToolPalettePluginBase::onSignalROIModified(QString) {}

void CORVToolPalettePluginBase::onSignalROIDeleted() {}

void CORVToolPalettePluginBase::onSignalupdateROIList() {}

void CORVToolPalettePluginBase::onSignalUpdatePluginPalette(QString) {}

void CORVToolPalettePluginBase::onAdvancedOptionChanged(bool) {}

void CORVToolPalettePluginBase::onSignalUpdateValidity(QWidget*, bool) {}

void CORVToolPalettePluginBase::onSignalSelectOrganDatabase(QString) {}

void CORVToolPalettePluginBase::onSignalAskToSaveResults() {}

void CORVToolPalettePluginBase::onSignalLoadFile(QString, bool, ESTATUS*, downloaded_save_data*) {}

void CORVToolPalettePluginBase::onSignalLoadFile(QString, bool, ESTATUS*) {}

void CORVToolPalettePluginBase::signalChangeSeqWndUnit(const QString&, EDISPLAYUNIT) {}

void CORVToolPalettePluginBase::signalCreateSequence(QString, bool) {}

void CORVToolPalettePluginBase::onSignalBinningChanged(bool) {}

void CORVToolPalettePluginBase::onSignalUpdateSPUMTools(SSpecUnmixControls*) {}

void CORVToolPalettePluginBase::onSignalAddWidgetToWorkspace(QWidget*) {}

void CORVToolPalettePluginBase::onSignalMakeMeasurement() {}

void CORVToolPalettePluginBase::onSignalCopyToClipboard(QString) {}

void CORVToolPalettePluginBase::onSignal3DViewChanged() {}

void CORVToolPalettePluginBase::onSignalApplyQuantificationResult() {}

void CORVToolPalettePluginBase::onSignalDatabaseChanged() {}

void CORVToolPalettePluginBase::onSignalGetPrintPixmap(bool) {}

void CORVToolPalettePluginBase::onHideAllGraphWindows() {}

void CORVToolPalettePluginBase::onSignal3DSceneChanged() {}

void CORVToolPalettePluginBase::onSignalTransformObjectChanged() {}

void CORVToolPalettePluginBase::onRestoreWindows(bool) {}

void CORVToolPalettePluginBase::onLoadUnmixDlg() {}

void CORVToolPalettePluginBase::onDatasetSavedSignal() {}

void CORVToolPalettePluginBase::onLoadResultsSignal() {}

void CORVToolPalettePluginBase::onToolPalettePluginStatusModified() {}

void CORVToolPalettePluginBase::signalCreateSequence(QStringList, bool) {}

void CORVToolPalettePluginBase::onSignalPrintPixmap(QPixmap) {}

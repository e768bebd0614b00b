// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/PluginHost.h"

#include "host/CORVMessageBox.h"
#include "host/CORVToolPalettePluginBase.h"
#include "workbench/application/pluginFile.h"

#include <QWidget>

// The host's own; what comes from a plug-in is handed on unseen.
struct downloaded_save_data
{
};

using Plugin = CORVToolPalettePluginBase;

PluginHost::~PluginHost()
{
    delete m_pPlugin;
}

bool PluginHost::load(const QStringList& folders)
{
    const pluginFile::Loaded loaded = pluginFile::load(folders);
    if (loaded.plugin == nullptr && m_pPlugin) {
        return false;
    }
    m_strFile = loaded.path;
    m_strReason = loaded.reason;
    if (loaded.plugin != nullptr) {
        take(loaded.plugin);
    }
    return loaded.plugin != nullptr;
}

void PluginHost::take(CORVToolPalettePluginBase* pPlugin)
{
    if (m_pPlugin != pPlugin) {
        delete m_pPlugin;
    }
    m_pPlugin = pPlugin;
    connectPlugin();
}

void PluginHost::connectPlugin()
{
    Plugin* pPlugin = m_pPlugin;
    connect(pPlugin, &Plugin::updatePluginValidity, this, [this](QWidget*, bool bVisible) {
        m_bValid = bVisible;
        Q_EMIT validityTold(bVisible);
    });
    connect(pPlugin, &Plugin::signalLoadFile, this,
            [this](const QString& strPath, bool bShow, ESTATUS* pStatus, downloaded_save_data*) {
                Q_EMIT loadFileWanted(strPath, bShow, pStatus);
            });
    connect(pPlugin, &Plugin::changeSeqWndUnit, this, &PluginHost::unitWanted);
    connect(pPlugin, &Plugin::createSequence, this, &PluginHost::sequenceWanted);
    connect(pPlugin, &Plugin::printPixmap, this, [this](const QPixmap& pixmap, bool) { Q_EMIT printWanted(pixmap); });
    connect(pPlugin, &Plugin::printPreview, this,
            [this](const QPixmap& pixmap, bool) { Q_EMIT previewWanted(pixmap); });
    connect(pPlugin, &Plugin::restoreWindowsToMain, this, &PluginHost::windowsWanted);
}

bool PluginHost::isLoaded() const
{
    return !m_pPlugin.isNull();
}

QWidget* PluginHost::palette()
{
    return m_pPlugin ? m_pPlugin->paletteWidget() : nullptr;
}

QString PluginHost::name()
{
    return m_pPlugin ? m_pPlugin->pluginName() : QString();
}

void PluginHost::tellSequenceAdded(CORVSequenceDataset* pSequence)
{
    if (m_pPlugin) {
        m_pPlugin->onSignalSequenceAdded(pSequence);
    }
}

void PluginHost::tellSequenceRemoved(CORVSequenceDataset* pSequence)
{
    if (m_pPlugin) {
        m_pPlugin->onSignalSequenceRemoved(pSequence);
    }
}

void PluginHost::tellDatasetRemoved(CORVDataset* pDataset)
{
    if (m_pPlugin) {
        m_pPlugin->onSignalDatasetRemoved(pDataset);
    }
}

void PluginHost::tellSequence(CORVSequenceDataset* pSequence)
{
    if (m_pPlugin) {
        m_pPlugin->onSignalSequenceChanged(pSequence);
    }
}

void PluginHost::tellDataset(CORVDataset* pDataset)
{
    if (m_pPlugin) {
        m_pPlugin->onSignalDatasetChanged(pDataset);
    }
}

void PluginHost::tellTab(const QString& strTab)
{
    if (m_pPlugin) {
        m_pPlugin->onSignalUpdatePluginPalette(strTab);
    }
}

bool PluginHost::askToSave()
{
    if (!m_pPlugin) {
        return true;
    }
    CORVMessageBox::setCancelClicked(false);
    m_pPlugin->onSignalAskToSaveResults();
    const bool bCancelled = CORVMessageBox::getCancelClicked();
    CORVMessageBox::setCancelClicked(false);
    return !bCancelled;
}

void PluginHost::askForPicture(bool bPreview)
{
    if (m_pPlugin) {
        m_pPlugin->onSignalGetPrintPixmap(bPreview);
    }
}

void PluginHost::askToCopy(const QString& strTab)
{
    if (m_pPlugin) {
        m_pPlugin->onSignalCopyToClipboard(strTab);
    }
}

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

namespace {

// Not every tool has these two, so they are found by their names.
constexpr char batchSignal[] = "signalLoadBrowseWindow(QList<QString>,QList<QString>)";
constexpr char endBatchSlot[] = "onSignalDisableSpumBatchProcessing";

} // namespace

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
    if (canBatch()) {
        connect(pPlugin, SIGNAL(signalLoadBrowseWindow(QList<QString>, QList<QString>)), this,
                SIGNAL(batchWanted(QList<QString>, QList<QString>)));
    }
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

template <typename... Parameters, typename... Arguments>
void PluginHost::tell(void (CORVToolPalettePluginBase::*pMember)(Parameters...), Arguments... arguments)
{
    if (m_pPlugin) {
        (m_pPlugin->*pMember)(arguments...);
    }
}

void PluginHost::tellSequenceAdded(CORVSequenceDataset* pSequence)
{
    tell(&Plugin::onSignalSequenceAdded, pSequence);
}

void PluginHost::tellSequenceRemoved(CORVSequenceDataset* pSequence)
{
    tell(&Plugin::onSignalSequenceRemoved, pSequence);
}

void PluginHost::tellDatasetRemoved(CORVDataset* pDataset)
{
    tell(&Plugin::onSignalDatasetRemoved, pDataset);
}

void PluginHost::tellSequence(CORVSequenceDataset* pSequence)
{
    tell(&Plugin::onSignalSequenceChanged, pSequence);
}

void PluginHost::tellDataset(CORVDataset* pDataset)
{
    tell(&Plugin::onSignalDatasetChanged, pDataset);
}

void PluginHost::tellTab(const QString& strTab)
{
    tell(&Plugin::onSignalUpdatePluginPalette, strTab);
}

bool PluginHost::askToSave()
{
    CORVMessageBox::setCancelClicked(false);
    tell(&Plugin::onSignalAskToSaveResults);
    const bool bCancelled = CORVMessageBox::getCancelClicked();
    CORVMessageBox::setCancelClicked(false);
    return !bCancelled;
}

void PluginHost::askForPicture(bool bPreview)
{
    tell(&Plugin::onSignalGetPrintPixmap, bPreview);
}

bool PluginHost::canBatch() const
{
    return m_pPlugin && m_pPlugin->metaObject()->indexOfSignal(batchSignal) >= 0;
}

void PluginHost::chooseBatchSpectra()
{
    tell(&Plugin::onLoadUnmixDlg);
}

void PluginHost::endBatch()
{
    if (canBatch()) {
        QMetaObject::invokeMethod(m_pPlugin, endBatchSlot);
    }
}

void PluginHost::askToCopy(const QString& strTab)
{
    tell(&Plugin::onSignalCopyToClipboard, strTab);
}

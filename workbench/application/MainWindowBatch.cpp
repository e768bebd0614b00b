// SPDX-License-Identifier: GPL-3.0-or-later
// Many sequences, unmixed one after the other.
#include "host/CORVPreference.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "host/CORVSettings.h"
#include "host/CORVUtilityFns.h"
#include "platform/orvutils/ProcessControl.h"
#include "workbench/application/BatchChooser.h"
#include "workbench/application/BatchRun.h"
#include "workbench/application/BatchWindow.h"
#include "workbench/application/MainWindow.h"
#include "workbench/application/OpenDocuments.h"
#include "workbench/application/PaletteControl.h"
#include "workbench/application/PluginHost.h"
#include "workbench/application/settingNames.h"

#include <QDir>

namespace {

// Where sequences for batches are, or where the last one was opened.
QString startFolder()
{
    CORVSettings& settings = *CORVPreference::getSettings();
    const QString folder = settings.value(settingNames::batchFolder()).toString();
    return folder.isEmpty() ? settings.getRecentFilePath() : folder;
}

} // namespace

// First the spectra, in the tool's own window, then the sequences. The tool would work on whatever it is told of as
// soon as it has spectra, so it is told of nothing before the batch begins; and it asks nothing any more, so its result
// is asked about ahead.
void MainWindow::unmixMany()
{
    if (!m_pPlugin->canBatch() || m_pBatch->isRunning() || !mayLeaveResult(tr("Unmix other sequences all the same?"))) {
        return;
    }
    m_pPalette->beginBatch();
    bool bWanted = false;
    BatchBands bands;
    const auto noted = connect(m_pPlugin, &PluginHost::batchWanted, this,
                               [&](const QList<QString>& excitation, const QList<QString>& emission) {
                                   bWanted = true;
                                   bands.excitation = excitation;
                                   bands.emission = emission;
                               });
    CORVUtilityFns::setSpumBatchStatus(true);
    m_pPlugin->chooseBatchSpectra();
    CORVUtilityFns::setSpumBatchStatus(false);
    disconnect(noted);
    if (bWanted) {
        BatchChooser chooser(startFolder(), bands, this);
        if (chooser.exec() == QDialog::Accepted && closeSequences(chooser.folders())) {
            runBatch(chooser.folders(), chooser.adaptiveBackground());
            return;
        }
    }
    m_pPlugin->endBatch();
    m_pPalette->endBatch();
}

// A sequence that is open would only come to the front.
bool MainWindow::closeSequences(const QStringList& folders)
{
    QStringList places;
    for (const QString& folder : folders) {
        places.append(QDir(folder).canonicalPath());
    }
    for (const CORVSequenceDataset* pSequence : m_pDocuments->sequences()) {
        const CORVSequenceWindow* pWindow = CORVSequenceWindow::getSequenceWindow(pSequence);
        if (pWindow != nullptr && places.contains(QDir(pSequence->getSequenceInfoPath()).canonicalPath()) &&
            !pWindow->parentWidget()->close()) {
            return false;
        }
    }
    return true;
}

void MainWindow::runBatch(const QStringList& folders, bool bAdaptiveBackground)
{
    delete m_pBatchWindow;
    m_pBatchWindow = new BatchWindow(*m_pBatch, this);
    m_pBatchWindow->show();
    m_pBatch->start(folders, bAdaptiveBackground);
}

void MainWindow::abortWhatRuns()
{
    m_pBatch->abortAll();
    if (!m_pBatch->isRunning()) {
        orv::requestAbort();
    }
}

// SPDX-License-Identifier: GPL-3.0-or-later
// What the main window opens and closes.
#include "host/CORVFileDialog.h"
#include "host/CORVImageWindow.h"
#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVPreference.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "host/CORVSettings.h"
#include "host/CORVUtilityFns.h"
#include "platform/orvutils/ProcessControl.h"
#include "workbench/application/BatchRun.h"
#include "workbench/application/ImportDialog.h"
#include "workbench/application/LogFeed.h"
#include "workbench/application/MainWindow.h"
#include "workbench/application/OpenDocuments.h"
#include "workbench/application/PaletteControl.h"
#include "workbench/application/PluginHost.h"
#include "workbench/application/ProcessWatch.h"
#include "workbench/application/RunLock.h"
#include "workbench/application/SimulateDialog.h"
#include "workbench/application/StartPage.h"
#include "workbench/application/datasetKeeper.h"
#include "workbench/application/literalToolTip.h"
#include "workbench/application/openable.h"
#include "workbench/application/pluginFile.h"
#include "workbench/application/recentPaths.h"
#include "workbench/application/sequenceOfDatasets.h"
#include "workbench/application/settingNames.h"
#include "workbench/application/simulateCall.h"

#include <QApplication>
#include <QDateTime>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QUrl>

namespace {

constexpr int retryMilliseconds = 20;

void log(const QString& strMessage, long nLevel)
{
    CORVLog::getLogObject()->log(strMessage, QString(), 0, QDateTime::currentDateTime().toString(Qt::ISODate), nLevel,
                                 false);
}

QStringList pathsOf(const QMimeData* pData)
{
    QStringList paths;
    for (const QUrl& url : pData->urls()) {
        if (url.isLocalFile()) {
            paths.append(url.toLocalFile());
        }
    }
    return paths;
}

} // namespace

void MainWindow::askForSequence()
{
    const QString folder = CORVFileDialog::getExistingDirectory(this, tr("Open a sequence"), QString());
    if (!folder.isEmpty()) {
        open(folder);
    }
}

void MainWindow::openLater(const QStringList& paths)
{
    const bool bIdle = m_toOpen.isEmpty();
    m_toOpen += paths;
    if (bIdle && !m_toOpen.isEmpty()) {
        m_opening.start(0);
    }
}

// One an event, so that a window is seen before the next one is opened. Several images are imported together.
void MainWindow::openNext()
{
    if (m_toOpen.isEmpty()) {
        endOpening();
        return;
    }
    QStringList images;
    for (const QString& path : qAsConst(m_toOpen)) {
        if (openableKind(path) == Openable::Images) {
            images.append(path);
        }
    }
    if (openableKind(m_toOpen.first()) == Openable::Images) {
        for (const QString& path : qAsConst(images)) {
            m_toOpen.removeAll(path);
        }
        importImages(images);
    } else {
        open(m_toOpen.takeFirst());
    }
    m_opening.start(0);
}

bool MainWindow::open(const QString& strPath)
{
    switch (openableKind(strPath)) {
    case Openable::Sequence:
        return openSequence(strPath);
    case Openable::Dataset:
        return openDataset(strPath);
    case Openable::Images:
        importImages({strPath});
        return true;
    case Openable::Missing:
        break;
    }
    CORVSettings& settings = *CORVPreference::getSettings();
    recentPaths::write(settings, recentPaths::without(recentPaths::read(settings), strPath));
    fillRecent();
    CORVMessageBox::error(this, CORVUtilityFns::getAppName(), tr("%1: there is no such file or folder.").arg(strPath));
    return false;
}

bool MainWindow::openSequence(const QString& strPath)
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const auto outcome = m_pDocuments->openSequence(strPath);
    QApplication::restoreOverrideCursor();
    for (const QString& warning : outcome.warnings) {
        log(warning, CORVLOG_WARNING);
    }
    if (outcome.document == nullptr) {
        CORVMessageBox::error(this, CORVUtilityFns::getAppName(),
                              tr("The sequence cannot be opened.\n\n%1").arg(outcome.error));
        return false;
    }
    CORVSettings& settings = *CORVPreference::getSettings();
    const QString folder = recentPaths::absolute(outcome.document->getSequenceInfoPath());
    if (m_places.contains(folder) && !outcome.wasOpen) {
        m_pDocuments->setPlace(outcome.document, m_places.take(folder));
    }
    recentPaths::write(settings, recentPaths::with(recentPaths::read(settings), folder));
    settings.setRecentFilePath(recentPaths::parentOf(folder));
    fillRecent();
    return true;
}

bool MainWindow::openDataset(const QString& strPath)
{
    const auto outcome = m_pDocuments->openDataset(strPath, true);
    for (const QString& warning : outcome.warnings) {
        log(warning, CORVLOG_WARNING);
    }
    if (outcome.document == nullptr) {
        CORVMessageBox::error(this, CORVUtilityFns::getAppName(),
                              tr("The image cannot be opened.\n\n%1").arg(outcome.error));
    }
    return outcome.document != nullptr;
}

void MainWindow::importImages(const QStringList& paths)
{
    ImportDialog dialog(paths, this);
    if (dialog.exec() == QDialog::Accepted) {
        open(dialog.sequenceFolder());
    }
}

void MainWindow::simulate()
{
    SimulateDialog dialog(CORVPreference::getSettings()->getRecentFilePath(),
                          simulateCall::program(QCoreApplication::applicationDirPath()), this);
    if (dialog.exec() == QDialog::Accepted) {
        open(dialog.folder());
    }
}

void MainWindow::fillRecent()
{
    const QStringList paths = recentPaths::read(*CORVPreference::getSettings());
    QMenu* pMenu = m_pActions->recentMenu;
    pMenu->clear();
    for (int i = 0; i < paths.size(); ++i) {
        const QString& path = paths.at(i);
        QAction* pAction = pMenu->addAction(recentPaths::menuText(i, path));
        pAction->setToolTip(literalToolTip(path));
        connect(pAction, &QAction::triggered, this, [this, path] { open(path); });
    }
    pMenu->addSeparator();
    QAction* pClear = pMenu->addAction(tr("&Forget these"));
    connect(pClear, &QAction::triggered, this, [this] {
        recentPaths::write(*CORVPreference::getSettings(), {});
        fillRecent();
    });
    pMenu->setEnabled(!paths.isEmpty());
    m_pStart->setRecent(paths);
}

void MainWindow::loadFile(const QString& strPath, bool bShow, ESTATUS* pStatus)
{
    const auto outcome = m_pDocuments->openDataset(strPath, bShow, true);
    if (outcome.document == nullptr) {
        log(outcome.error, CORVLOG_ERROR);
    }
    if (pStatus != nullptr) {
        *pStatus = outcome.document != nullptr ? ESTATUS_SUCCESS : ESTATUS_FILE_UNREADABLE;
    }
}

void MainWindow::createSequence(const QStringList& clickInfos)
{
    const QString proposed = proposedPlace(clickInfos, CORVPreference::getSettings()->getRecentFilePath());
    const QString target =
        CORVFileDialog::getSaveFileName(this, tr("Folder of the new sequence"), proposed, QString(), nullptr, true);
    if (target.isEmpty()) {
        return;
    }
    QString error;
    if (!writeSequenceOfDatasets(target, clickInfos, &error)) {
        CORVMessageBox::error(this, CORVUtilityFns::getAppName(), error);
        return;
    }
    open(target);
}

void MainWindow::choosePluginFolder()
{
    const QString folder = CORVFileDialog::getExistingDirectory(this, tr("Folder with %1").arg(pluginFile::name()),
                                                                QCoreApplication::applicationDirPath());
    if (!folder.isEmpty() && m_pPalette->load({folder})) {
        CORVPreference::getSettings()->setValue(settingNames::pluginFolder(), folder);
    }
}

void MainWindow::dragEnterEvent(QDragEnterEvent* pEvent)
{
    if (!m_pLock->isLocked() && !pathsOf(pEvent->mimeData()).isEmpty()) {
        pEvent->acceptProposedAction();
    }
}

void MainWindow::dropEvent(QDropEvent* pEvent)
{
    if (m_pLock->isLocked()) {
        return;
    }
    pEvent->acceptProposedAction();
    // Who drags waits until this returns, and questions take time.
    openLater(pathsOf(pEvent->mimeData()));
}

bool MainWindow::confirms(const QString& strQuestion)
{
    return CORVMessageBox::warning(this, CORVUtilityFns::getAppName(), strQuestion,
                                   CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer,
                                   CORVMessageBox::NoButtonAnswer) == CORVMessageBox::YesButton;
}

bool MainWindow::mayClose(CORVChildWindow* pWindow)
{
    if (!CORVUtilityFns::canClose()) {
        return false;
    }
    if (m_pBatch->isClosing()) {
        return true;
    }
    if (m_pLock->isLocked() || m_pProcesses->isRunning() || m_pBatch->isRunning()) {
        if (confirms(tr("An analysis is running. Abort it and close?"))) {
            m_toClose.append(pWindow);
            orv::requestAbort();
            closeAfterRun();
        }
        return false;
    }
    if (const auto* pImageWindow = qobject_cast<CORVImageWindow*>(pWindow)) {
        return datasetKeeper::mayClose(this, *pImageWindow->dataset());
    }
    const auto* pSequenceWindow = qobject_cast<CORVSequenceWindow*>(pWindow);
    if (pSequenceWindow != nullptr && !datasetKeeper::mayClose(this, *pSequenceWindow->sequence())) {
        return false;
    }
    const bool bTold = pSequenceWindow != nullptr && pSequenceWindow->sequence() == m_pPalette->told();
    return !bTold || mayLeaveResult(tr("Close the sequence all the same?"));
}

// Whether it was kept only the log tells.
bool MainWindow::mayLeaveResult(const QString& strQuestion)
{
    m_pFeed->flush();
    m_strLastError.clear();
    if (!m_pPlugin->askToSave()) {
        return false;
    }
    m_pFeed->flush();
    return m_strLastError.isEmpty() ||
           confirms(tr("The result was not saved: %1\n\n%2").arg(m_strLastError, strQuestion));
}

// Once nothing runs any more, and the tool has come to the end of its work on the stack below.
void MainWindow::closeAfterRun()
{
    if (m_toClose.isEmpty()) {
        return;
    }
    if (m_pLock->isLocked() || m_pProcesses->isRunning() || m_pBatch->isRunning() ||
        QApplication::activeModalWidget() != nullptr) {
        m_closing.start(retryMilliseconds);
        return;
    }
    const auto windows = m_toClose;
    m_toClose.clear();
    for (const auto& pWindow : windows) {
        if (pWindow) {
            pWindow->close();
        }
    }
}

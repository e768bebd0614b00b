// SPDX-License-Identifier: GPL-3.0-or-later
// What the main window finds again, and how it ends.
#include "host/CORVMessageBox.h"
#include "host/CORVPreference.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSettings.h"
#include "host/CORVUtilityFns.h"
#include "workbench/application/BatchRun.h"
#include "workbench/application/LogDock.h"
#include "workbench/application/MainWindow.h"
#include "workbench/application/OpenDocuments.h"
#include "workbench/application/PaletteControl.h"
#include "workbench/application/ProcessWatch.h"
#include "workbench/application/RunLock.h"
#include "workbench/application/openable.h"
#include "workbench/application/recentPaths.h"
#include "workbench/application/windowPlaces.h"

#include <QApplication>
#include <QCloseEvent>

#include <algorithm>
#include <utility>

// The one in front, or the last that was, comes last.
Session::Windows MainWindow::openWindows() const
{
    Session::Windows windows;
    const CORVSequenceDataset* pFront = m_pPalette->told();
    for (const CORVSequenceDataset* pSequence : m_pDocuments->sequences()) {
        if (pSequence != pFront) {
            windows.append({recentPaths::absolute(pSequence->getSequenceInfoPath()), m_pDocuments->place(pSequence)});
        }
    }
    if (pFront != nullptr) {
        windows.append({recentPaths::absolute(pFront->getSequenceInfoPath()), m_pDocuments->place(pFront)});
    }
    return windows;
}

// What the user has yet to be asked about, and what is about to be opened, counts as open.
void MainWindow::keepSession()
{
    Session::Windows windows = m_abandoned + openWindows();
    for (const QString& path : qAsConst(m_toOpen)) {
        if (openableKind(path) == Openable::Sequence) {
            windows.append({recentPaths::absolute(path), m_places.value(path)});
        }
    }
    m_session.keep(windows);
}

void MainWindow::start(const QStringList& paths)
{
    m_abandoned = m_session.takeAbandoned();
    const Session::Windows last = m_session.takeLast();
    if (!paths.isEmpty()) {
        openLater(paths);
    } else if (m_abandoned.isEmpty()) {
        takeUp(last);
    }
    keepSession();
    m_opening.start(0);
}

void MainWindow::takeUp(const Session::Windows& windows)
{
    QStringList paths;
    for (const Session::Window& window : windows) {
        if (openableKind(window.folder) != Openable::Sequence) {
            m_gone.append(window.folder);
            continue;
        }
        m_places.insert(window.folder, window.place);
        paths.append(window.folder);
    }
    openLater(paths);
    m_opening.start(0);
}

void MainWindow::endOpening()
{
    m_places.clear();
    if (!m_gone.isEmpty()) {
        const QString text =
            tr("These sequences were open and are no longer there:\n\n%1").arg(m_gone.join(QLatin1Char('\n')));
        m_gone.clear();
        CORVMessageBox::warning(this, CORVUtilityFns::getAppName(), text);
    }
    // What is open by now needs no question.
    for (const Session::Window& window : openWindows()) {
        const auto isThat = [&window](const Session::Window& other) { return other.folder == window.folder; };
        m_abandoned.erase(std::remove_if(m_abandoned.begin(), m_abandoned.end(), isThat), m_abandoned.end());
    }
    if (!m_abandoned.isEmpty()) {
        QStringList folders;
        for (const Session::Window& window : qAsConst(m_abandoned)) {
            folders.append(window.folder);
        }
        const int nAnswer = CORVMessageBox::warning(
            this, CORVUtilityFns::getAppName(),
            tr("The program ended without being closed. Open again what was open then?\n\n%1")
                .arg(folders.join(QLatin1Char('\n'))),
            CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer, CORVMessageBox::YesButton);
        const Session::Windows windows = std::exchange(m_abandoned, {});
        if (nAnswer == CORVMessageBox::YesButton) {
            takeUp(windows);
        }
    }
    keepSession();
}

bool MainWindow::endSession(bool bMayAsk)
{
    return !bMayAsk || close();
}

// A "No to All" counts until the last window was asked about.
bool MainWindow::closeAll()
{
    CORVUtilityFns::setCloseAllClicked(true);
    CORVUtilityFns::setNoToAllClicked(false);
    const bool bClosed = m_pDocuments->closeAll();
    CORVUtilityFns::setCloseAllClicked(false);
    CORVUtilityFns::setNoToAllClicked(false);
    return bClosed;
}

void MainWindow::closeEvent(QCloseEvent* pEvent)
{
    pEvent->ignore();
    if (!CORVUtilityFns::canClose() || QApplication::activeModalWidget() != nullptr) {
        return;
    }
    if (m_pLock->isLocked() || m_pProcesses->isRunning() || m_pBatch->isRunning()) {
        if (confirms(tr("An analysis is running. Abort it and quit?"))) {
            m_toClose.append(this);
            abortWhatRuns();
            closeAfterRun();
        }
        return;
    }
    const Session::Windows windows = openWindows();
    CORVSettings& settings = *CORVPreference::getSettings();
    windowPlaces::save(settings, *this);
    m_pLogDock->save(settings);
    if (closeAll()) {
        m_session.close(windows);
        pEvent->accept();
    }
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/OpenDocuments.h"

#include "host/CORVImageWindow.h"
#include "host/CORVMdiSubWindow.h"
#include "host/CORVPreference.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "workbench/application/documentWindows.h"
#include "workbench/application/windowPlaces.h"

#include <QAction>
#include <QEvent>
#include <QFileInfo>
#include <QIcon>
#include <QMdiArea>
#include <QMenu>

#include <algorithm>
#include <utility>

namespace {

// The folder of a path to it or to a file in it, for comparison.
QString folderOf(const QString& strPath)
{
    const QFileInfo info(strPath);
    return QFileInfo(info.isDir() ? info.filePath() : info.path()).canonicalFilePath();
}

// While a sequence is being opened, tools keep from looking at it.
class Loading
{
public:
    explicit Loading(const CORVSequenceDataset* pSequence) : m_pSequence(pSequence)
    {
        CORVPreference::setSequenceLoading(m_pSequence, true);
    }
    ~Loading() { CORVPreference::setSequenceLoading(m_pSequence, false); }
    Loading(const Loading&) = delete;
    Loading& operator=(const Loading&) = delete;

private:
    const CORVSequenceDataset* m_pSequence;
};

} // namespace

OpenDocuments::OpenDocuments(QMdiArea* pArea, QObject* pParent) : QObject(pParent), m_pArea(pArea)
{
    // Behind a window that closes comes the one that was in front before.
    m_pArea->setActivationOrder(QMdiArea::ActivationHistoryOrder);
    connect(m_pArea, &QMdiArea::subWindowActivated, this, &OpenDocuments::noteCurrent);
}

documentWindows::Listener OpenDocuments::listener()
{
    return {[this](CORVDataset* pDataset) { showDataset(pDataset); },
            [this](const QString& strText) { Q_EMIT readOut(strText); }};
}

OpenDocuments::~OpenDocuments()
{
    m_question = nullptr;
    m_bQuiet = true;
    m_pArea->disconnect(this);
    // Windows of datasets first: those of a sequence's datasets borrow from it.
    while (!m_shown.empty()) {
        const auto last = std::find_if(m_shown.rbegin(), m_shown.rend(),
                                       [](const auto& pShown) { return pShown->m_pSequence == nullptr; });
        Shown& shown = last != m_shown.rend() ? **last : *m_shown.back();
        allowsClosing(shown);
        QObject* pWindow = shown.m_pWindow;
        const QPointer<QMdiSubWindow> pFrame = shown.m_pFrame;
        delete pWindow; // forgets itself
        delete pFrame;
    }
}

OpenDocuments::Outcome<CORVSequenceDataset> OpenDocuments::openSequence(const QString& strPath)
{
    Outcome<CORVSequenceDataset> outcome;
    const QString folder = folderOf(strPath);
    for (const auto& pShown : m_shown) {
        if (pShown->m_pSequence != nullptr && !pShown->m_bClosing && pShown->m_pFrame && !folder.isEmpty() &&
            folderOf(pShown->m_pSequence->getSequenceInfoPath()) == folder) {
            outcome.document = pShown->m_pSequence;
            outcome.wasOpen = true;
            qobject_cast<CORVMdiSubWindow*>(pShown->m_pFrame)->showWindow();
            return outcome;
        }
    }
    auto pSequence = std::make_unique<CORVSequenceDataset>();
    auto pLoading = std::make_unique<Loading>(pSequence.get());
    if (pSequence->open(strPath, &outcome.error, &outcome.warnings) != ESTATUS_SUCCESS) {
        return outcome;
    }
    pLoading.reset();
    Shown shown;
    CORVSequenceDataset* pOpened = pSequence.get();
    CORVSequenceWindow* pWindow = documentWindows::makeSequenceWindow(pOpened, listener());
    connect(pWindow, &CORVSequenceWindow::updatePluginPalette, this, [this, pWindow](const QString& strTab) {
        if (currentSequenceWindow() == pWindow) {
            Q_EMIT tabChanged(strTab);
        }
    });
    shown.m_pWindow = pWindow;
    shown.m_pSequence = pOpened;
    shown.m_pOwnedSequence = std::move(pSequence);
    // A tool hears that the sequence is there, with its window, before it hears that it is in front.
    m_bQuiet = true;
    CORVMdiSubWindow* pFrame = add(std::move(shown));
    Q_EMIT sequenceAdded(pOpened);
    m_bQuiet = false;
    pFrame->showWindow();
    noteCurrent();
    outcome.document = pOpened;
    return outcome;
}

OpenDocuments::Outcome<CORVDataset> OpenDocuments::openDataset(const QString& strPath, bool bShow,
                                                               bool bOfSequenceWindow)
{
    Outcome<CORVDataset> outcome;
    auto pDataset = std::make_unique<CORVDataset>();
    const QFileInfo info(strPath);
    const QString folder = info.isDir() ? info.filePath() : info.path();
    if (pDataset->openMade(folder, &outcome.error, &outcome.warnings) != ESTATUS_SUCCESS) {
        return outcome;
    }
    if (!pDataset->takeImagesIntoMemory()) {
        outcome.error = QStringLiteral("%1: an image cannot be read; the log tells which").arg(folder);
        return outcome;
    }
    pDataset->isSequenceWindowMember = bOfSequenceWindow;
    Shown shown;
    shown.m_pDataset = outcome.document = pDataset.get();
    shown.m_pWindow = documentWindows::makeDatasetWindow(pDataset.get(), listener());
    shown.m_pOwnedDataset = std::move(pDataset);
    CORVMdiSubWindow* pFrame = add(std::move(shown));
    if (bShow) {
        pFrame->showWindow();
    }
    noteCurrent();
    return outcome;
}

QList<CORVDataset*> OpenDocuments::ownDatasets() const
{
    QList<CORVDataset*> all;
    for (const auto& pShown : m_shown) {
        if (pShown->m_pOwnedDataset && !pShown->m_bClosing) {
            all.append(pShown->m_pDataset);
        }
    }
    return all;
}

void OpenDocuments::closeDataset(const CORVDataset* pDataset)
{
    const auto found = std::find_if(m_shown.begin(), m_shown.end(), [pDataset](const auto& pShown) {
        return pShown->m_pDataset == pDataset && pShown->m_pOwnedDataset;
    });
    if (found != m_shown.end() && (*found)->m_pFrame) {
        (*found)->m_pFrame->close();
    }
}

void OpenDocuments::showDataset(CORVDataset* pDataset)
{
    for (const auto& pShown : m_shown) {
        if (pShown->m_pDataset == pDataset && !pShown->m_bClosing && pShown->m_pFrame) {
            qobject_cast<CORVMdiSubWindow*>(pShown->m_pFrame)->showWindow();
            return;
        }
    }
    Shown shown;
    shown.m_pDataset = pDataset;
    shown.m_pWindow = documentWindows::makeDatasetWindow(pDataset, listener());
    add(std::move(shown))->showWindow();
    noteCurrent();
}

CORVMdiSubWindow* OpenDocuments::add(Shown&& shown)
{
    auto* pFrame = new CORVMdiSubWindow;
    pFrame->setAttribute(Qt::WA_DeleteOnClose);
    pFrame->setWidget(shown.m_pWindow);
    // The keys for closing are those of the menu.
    for (QAction* pAction : pFrame->systemMenu()->actions()) {
        pAction->setShortcuts(QList<QKeySequence>());
    }
    shown.m_pFrame = pFrame;
    const QMdiSubWindow* pFront = m_pArea->currentSubWindow();
    const bool bMaximised = pFront == nullptr || pFront->isMaximized();
    CORVChildWindow* pWindow = shown.m_pWindow;
    pWindow->installEventFilter(this);
    connect(pWindow, &QObject::destroyed, this, [this, pWindow] { forget(pWindow); });
    m_shown.push_back(std::make_unique<Shown>(std::move(shown)));
    m_pArea->addSubWindow(pFrame);
    if (bMaximised) {
        pFrame->setWindowState(Qt::WindowMaximized);
    }
    return pFrame;
}

QList<CORVSequenceDataset*> OpenDocuments::sequences() const
{
    QList<CORVSequenceDataset*> all;
    for (const auto& pShown : m_shown) {
        if (pShown->m_pSequence != nullptr && !pShown->m_bClosing) {
            all.append(pShown->m_pSequence);
        }
    }
    return all;
}

CORVMdiSubWindow* OpenDocuments::frameOf(const CORVSequenceDataset* pSequence) const
{
    for (const auto& pShown : m_shown) {
        if (pSequence != nullptr && pShown->m_pSequence == pSequence) {
            return qobject_cast<CORVMdiSubWindow*>(pShown->m_pFrame);
        }
    }
    return nullptr;
}

QRect OpenDocuments::place(const CORVSequenceDataset* pSequence) const
{
    const CORVMdiSubWindow* pFrame = frameOf(pSequence);
    return pFrame == nullptr || pFrame->isMaximized() || pFrame->isMinimized() ? QRect() : pFrame->geometry();
}

void OpenDocuments::setPlace(const CORVSequenceDataset* pSequence, const QRect& place)
{
    CORVMdiSubWindow* pFrame = frameOf(pSequence);
    if (pFrame == nullptr) {
        return;
    }
    if (!place.isValid()) {
        pFrame->setWindowState(Qt::WindowMaximized);
        return;
    }
    pFrame->setWindowState(Qt::WindowNoState);
    pFrame->setGeometry(windowPlaces::reachable(place, {m_pArea->viewport()->rect()}));
}

const OpenDocuments::Shown* OpenDocuments::current() const
{
    const QMdiSubWindow* pFront = m_pArea->currentSubWindow();
    for (const auto& pShown : m_shown) {
        // What is closing may be half gone.
        if (pFront != nullptr && !pShown->m_bClosing && pShown->m_pFrame == pFront && !pFront->isHidden()) {
            return pShown.get();
        }
    }
    return nullptr;
}

int OpenDocuments::count() const
{
    return static_cast<int>(
        std::count_if(m_shown.begin(), m_shown.end(), [](const auto& pShown) { return !pShown->m_bClosing; }));
}

CORVSequenceDataset* OpenDocuments::currentSequence() const
{
    const Shown* pShown = current();
    return pShown != nullptr ? pShown->m_pSequence : nullptr;
}

CORVSequenceWindow* OpenDocuments::currentSequenceWindow() const
{
    const Shown* pShown = current();
    return pShown != nullptr ? qobject_cast<CORVSequenceWindow*>(pShown->m_pWindow) : nullptr;
}

CORVDataset* OpenDocuments::currentDataset() const
{
    const Shown* pShown = current();
    return pShown != nullptr ? pShown->m_pDataset : nullptr;
}

QString OpenDocuments::currentTitle() const
{
    const Shown* pShown = current();
    return pShown != nullptr ? pShown->m_pWindow->windowTitle().remove(QLatin1String("[*]")) : QString();
}

void OpenDocuments::setClosingQuestion(std::function<bool(CORVChildWindow*)> question)
{
    m_question = std::move(question);
}

OpenDocuments::Shown* OpenDocuments::shownBy(const QObject* pWindow)
{
    const auto found = std::find_if(m_shown.begin(), m_shown.end(),
                                    [pWindow](const auto& pShown) { return pShown->m_pWindow == pWindow; });
    return found != m_shown.end() ? found->get() : nullptr;
}

// Asks, and tells those who hold on to what the window shows. Once it may close it does.
bool OpenDocuments::allowsClosing(Shown& shown)
{
    if (shown.m_bClosing) {
        return true;
    }
    const QPointer<CORVChildWindow> pWindow = shown.m_pWindow;
    if (m_question && !m_question(pWindow)) {
        return false;
    }
    if (!pWindow) {
        return true;
    }
    shown.m_bClosing = true;
    if (shown.m_pSequence != nullptr) {
        closeWindowsOfDatasets(shown.m_pSequence);
        Q_EMIT sequenceRemoved(shown.m_pSequence);
    } else if (shown.m_pOwnedDataset) {
        Q_EMIT datasetRemoved(shown.m_pDataset);
    }
    return true;
}

void OpenDocuments::closeWindowsOfDatasets(const CORVSequenceDataset* pSequence)
{
    const QList<CORVDataset*> datasets = pSequence->getDatasets();
    QList<QPointer<QMdiSubWindow>> frames;
    for (const auto& pShown : m_shown) {
        if (pShown->m_pDataset != nullptr && datasets.contains(pShown->m_pDataset)) {
            pShown->m_bClosing = true;
            frames.append(pShown->m_pFrame);
        }
    }
    for (const auto& pFrame : frames) {
        delete pFrame; // with its window, which forgets itself
    }
}

bool OpenDocuments::eventFilter(QObject* pWatched, QEvent* pEvent)
{
    if (pEvent->type() != QEvent::Close) {
        return QObject::eventFilter(pWatched, pEvent);
    }
    Shown* pShown = shownBy(pWatched);
    if (pShown == nullptr) {
        return false;
    }
    if (!allowsClosing(*pShown)) {
        pEvent->ignore();
        return true;
    }
    // The frame of a window that was closed by itself goes with it.
    if (const QPointer<QMdiSubWindow> pFrame = pShown->m_pFrame) {
        QMetaObject::invokeMethod(pFrame, "close", Qt::QueuedConnection);
    }
    return false;
}

void OpenDocuments::forget(const QObject* pWindow)
{
    const auto found = std::find_if(m_shown.begin(), m_shown.end(),
                                    [pWindow](const auto& pShown) { return pShown->m_pWindow == pWindow; });
    if (found == m_shown.end()) {
        return;
    }
    // Out of the list before what was shown is deleted, which may lead back here.
    const std::unique_ptr<Shown> pGone = std::move(*found);
    m_shown.erase(found);
    noteCurrent();
}

bool OpenDocuments::closeCurrent()
{
    const Shown* pShown = current();
    return pShown == nullptr || pShown->m_pFrame->close();
}

bool OpenDocuments::closeAll()
{
    QList<QPointer<QMdiSubWindow>> frames;
    for (const auto& pShown : m_shown) {
        if (!pShown->m_bClosing) {
            frames.insert(pShown.get() == current() ? 0 : frames.size(), pShown->m_pFrame);
        }
    }
    // Nothing closes before everything may: whoever wants to go back then has all of them still open.
    for (const auto& pFrame : qAsConst(frames)) {
        const Shown* pShown = pFrame ? shownBy(pFrame->widget()) : nullptr;
        if (pShown != nullptr && m_question && !m_question(pShown->m_pWindow)) {
            return false;
        }
    }
    m_bQuiet = true;
    const auto question = std::exchange(m_question, nullptr);
    const bool bAll =
        std::all_of(frames.cbegin(), frames.cend(), [](const auto& pFrame) { return !pFrame || pFrame->close(); });
    m_question = question;
    m_bQuiet = false;
    noteCurrent();
    return bAll;
}

void OpenDocuments::noteCurrent()
{
    const QMdiSubWindow* pFrame = m_pArea->currentSubWindow();
    const bool bOnItsWay = std::any_of(m_shown.begin(), m_shown.end(), [pFrame](const auto& pShown) {
        return pFrame != nullptr && pShown->m_pFrame == pFrame && pShown->m_bClosing;
    });
    // A window that closes is followed by the next, or by none, when it has gone.
    if (m_bQuiet || bOnItsWay) {
        return;
    }
    const Shown* pShown = current();
    const CORVChildWindow* pFront = pShown != nullptr ? pShown->m_pWindow : nullptr;
    if (pFront != m_pNoted) {
        m_pNoted = pFront;
        Q_EMIT currentChanged();
    }
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "driver/CommandServer.h"

#include "driver/inputs.h"
#include "driver/layoutFaults.h"
#include "driver/widgetSearch.h"
#include "driver/widgetState.h"
#include "support/darkPalette.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QHelpEvent>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMenu>
#include <QMenuBar>
#include <QPixmap>
#include <QScreen>
#include <QTabBar>
#include <QTabWidget>
#include <QToolTip>
#include <QTreeWidget>
#include <QWindow>

#include <algorithm>
#include <memory>

namespace {

constexpr int beatMs = 5;
constexpr qint64 longestGestureMs = 250;
constexpr qint64 longestPartMs = 10000;

QJsonObject failure(const QString& strReason)
{
    return {{"ok", false}, {"error", strReason}};
}

QString plain(QString strText)
{
    return strText.remove('&');
}

// The entry of a menu by its text without "&" and "...", or as it stands.
QAction* entryOf(const QList<QAction*>& actions, const QString& strText)
{
    for (QAction* pAction : actions) {
        if (pAction->isVisible() && plain(pAction->text()).section('\t', 0, 0) == strText) {
            return pAction;
        }
    }
    return nullptr;
}

QModelIndex indexWithText(const QAbstractItemModel& model, const QModelIndex& parent, const QString& strText)
{
    for (int nRow = 0; nRow < model.rowCount(parent); ++nRow) {
        for (int nColumn = 0; nColumn < model.columnCount(parent); ++nColumn) {
            const QModelIndex index = model.index(nRow, nColumn, parent);
            if (index.data().toString() == strText) {
                return index;
            }
        }
        const QModelIndex inside = indexWithText(model, model.index(nRow, 0, parent), strText);
        if (inside.isValid()) {
            return inside;
        }
    }
    return {};
}

QModelIndex indexOf(const QAbstractItemView& view, const QJsonObject& words)
{
    if (words.contains("text")) {
        return indexWithText(*view.model(), view.rootIndex(), words["text"].toString());
    }
    return view.model()->index(words["row"].toInt(), words["column"].toInt(), view.rootIndex());
}

} // namespace

CommandServer::CommandServer() : m_pServer(new QLocalServer(this))
{
    m_beat.setTimerType(Qt::PreciseTimer);
    m_beat.setInterval(beatMs);
    QObject::connect(&m_beat, &QTimer::timeout, this, &CommandServer::onBeat);
    QObject::connect(m_pServer, &QLocalServer::newConnection, this, &CommandServer::takeConnection);
}

void CommandServer::listen(const QString& strSocket)
{
    if (!m_pServer->listen(strSocket)) {
        qWarning("orvdriver: %s", qPrintable(m_pServer->errorString()));
    }
    m_sinceBeat.start();
    m_beat.start();
}

void CommandServer::takeConnection()
{
    while (QLocalSocket* pSocket = m_pServer->nextPendingConnection()) {
        QObject::connect(pSocket, &QLocalSocket::readyRead, this, [this, pSocket] { readLines(pSocket); });
        QObject::connect(pSocket, &QLocalSocket::disconnected, pSocket, &QObject::deleteLater);
    }
}

void CommandServer::readLines(QLocalSocket* pFrom)
{
    while (pFrom->canReadLine()) {
        m_waiting.append({pFrom, QJsonDocument::fromJson(pFrom->readLine()).object()});
    }
}

void CommandServer::onBeat()
{
    const qint64 nLate = m_sinceBeat.restart() - beatMs;
    if (nLate > beatMs) {
        m_stalls.append(nLate);
    }
    const qint64 nLongest = m_bMidway ? longestPartMs : longestGestureMs;
    if (m_waiting.isEmpty() || m_bTaken || (m_nHolding != 0 && m_sinceGesture.elapsed() < nLongest)) {
        return;
    }
    m_nHolding = 0;
    // Not from here: a timer does not fire again before its slot is through, and what is done may take a dialog's time.
    const Command command = m_waiting.takeFirst();
    m_bTaken = true;
    QMetaObject::invokeMethod(
        this,
        [this, command] {
            m_bTaken = false;
            if (command.m_pFrom) {
                perform(command);
            }
        },
        Qt::QueuedConnection);
}

void CommandServer::answer(QLocalSocket* pTo, QJsonObject words)
{
    if (pTo == nullptr) {
        return;
    }
    if (!words.contains("ok")) {
        words["ok"] = true;
    }
    pTo->write(QJsonDocument(words).toJson(QJsonDocument::Compact) + '\n');
    pTo->flush();
}

void CommandServer::gesture(const Command& command, const std::function<void()>& make)
{
    answer(command.m_pFrom, {});
    m_sinceGesture.start();
    const int nNumber = ++m_nGestures;
    m_nHolding = nNumber;
    make();
    if (m_nHolding == nNumber) {
        m_nHolding = 0;
    }
}

void CommandServer::gestureOfParts(const Command& command, bool bParts,
                                   const std::function<void(const std::function<void()>&)>& make)
{
    gesture(command, [&] {
        m_bMidway = bParts;
        make([this] {
            m_bMidway = false;
            m_sinceGesture.restart();
        });
        m_bMidway = false;
    });
}

bool CommandServer::performWithoutWidget(const Command& command)
{
    const QJsonObject& words = command.m_words;
    const QString strDo = words["do"].toString();
    if (strDo == "tree") {
        QJsonArray windows;
        for (const QWidget* pWindow : searchedWindows(false)) {
            windows.append(treeOf(*pWindow));
        }
        answer(command.m_pFrom, {{"windows", windows}});
    } else if (strDo == "stalls") {
        std::sort(m_stalls.begin(), m_stalls.end(), std::greater<>());
        QJsonArray longest;
        for (qint64 nStall : m_stalls.mid(0, 20)) {
            longest.append(nStall);
        }
        m_stalls.clear();
        answer(command.m_pFrom, {{"ms", longest}});
    } else if (strDo == "quiet") {
        waitForQuiet(command);
    } else if (strDo == "dark") {
        QApplication::setPalette(screen::darkPalette());
        answer(command.m_pFrom, {});
    } else if (strDo == "grab" && !words.contains("widget")) {
        const bool bDone = QGuiApplication::primaryScreen()->grabWindow(0).save(words["file"].toString());
        answer(command.m_pFrom, {{"ok", bDone}});
    } else {
        return false;
    }
    return true;
}

void CommandServer::waitForQuiet(const Command& command)
{
    const int nMs = command.m_words["ms"].toInt(50);
    auto* pTimer = new QTimer(this);
    const auto nStalls = std::make_shared<int>(m_stalls.size());
    pTimer->setInterval(nMs);
    QObject::connect(pTimer, &QTimer::timeout, this, [this, pTimer, nStalls, pFrom = command.m_pFrom] {
        if (*nStalls != m_stalls.size()) {
            *nStalls = m_stalls.size();
            return;
        }
        pTimer->deleteLater();
        answer(pFrom, {});
    });
    pTimer->start();
}

void CommandServer::perform(const Command& command)
{
    if (performWithoutWidget(command)) {
        return;
    }
    const QString strPath = command.m_words["widget"].toString();
    if (strPath.isEmpty()) {
        QWidget* pTarget = QApplication::activePopupWidget();
        pTarget = pTarget != nullptr ? pTarget : QApplication::activeModalWidget();
        pTarget = pTarget != nullptr ? pTarget : QApplication::activeWindow();
        pTarget = pTarget != nullptr ? pTarget : searchedWindows(false).value(0);
        if (pTarget == nullptr) {
            answer(command.m_pFrom, failure("no window is open"));
            return;
        }
        performOnWidget(command, pTarget);
        return;
    }
    const QList<QWidget*> found = findWidgets(strPath, command.m_words["hidden"].toBool());
    if (command.m_words["all"].toBool()) {
        QJsonArray states;
        for (const QWidget* pWidget : found) {
            states.append(stateOf(*pWidget));
        }
        answer(command.m_pFrom, {{"found", states}});
    } else if (found.isEmpty()) {
        answer(command.m_pFrom, failure("no widget " + strPath));
    } else {
        performOnWidget(command, found.first());
    }
}

void CommandServer::performOnWidget(const Command& command, QWidget* pWidget)
{
    const QJsonObject& words = command.m_words;
    const QString strDo = words["do"].toString();
    const MouseGesture way = gestureOf(words, *pWidget);
    QString strReason;
    if (strDo == "find") {
        answer(command.m_pFrom, stateOf(*pWidget));
    } else if (strDo == "click" || strDo == "drag") {
        // Whatever came between would be drawn along.
        gestureOfParts(command, way.steps > 0, [&](const auto& last) { sendMouse(pWidget, way, last); });
    } else if (strDo == "move") {
        gesture(command, [&] { sendMove(pWidget, way.from); });
    } else if (strDo == "wheel") {
        gesture(command, [&] { sendWheel(pWidget, way.from, words["angle"].toInt(120), way.modifiers); });
    } else if (strDo == "key") {
        gesture(command, [&] { sendKeys(pWidget, words["keys"].toString()); });
    } else if (strDo == "type") {
        gestureOfParts(command, true, [&](const auto& last) { sendText(pWidget, words["text"].toString(), last); });
    } else if (strDo == "close") {
        gesture(command, [&] { pWidget->window()->close(); });
    } else if (strDo == "tip") {
        QHelpEvent event(QEvent::ToolTip, way.from, pWidget->mapToGlobal(way.from));
        QToolTip::hideText();
        QApplication::sendEvent(pWidget, &event);
        answer(command.m_pFrom, {{"text", QToolTip::isVisible() ? QToolTip::text() : QString()}});
        QToolTip::hideText();
    } else if (strDo == "resize") {
        const QJsonArray size = words["size"].toArray();
        pWidget->window()->resize(size[0].toInt(), size[1].toInt());
        answer(command.m_pFrom, {});
    } else if (strDo == "faults") {
        answer(command.m_pFrom, {{"cut", QJsonArray::fromStringList(layoutFaults::cut(*pWidget))},
                                 {"nameless", QJsonArray::fromStringList(layoutFaults::nameless(*pWidget))},
                                 {"faint", QJsonArray::fromStringList(layoutFaults::faint(*pWidget))}});
    } else if (strDo == "activate") {
        pWidget->window()->activateWindow();
        pWidget->window()->raise();
        answer(command.m_pFrom, {});
    } else if (strDo == "drop") {
        QStringList files;
        for (const QJsonValue& file : words["files"].toArray()) {
            files.append(file.toString());
        }
        gesture(command, [&] { sendDrop(pWidget, way.from, files); });
    } else if (strDo == "grab") {
        const QRect place(pWidget->mapToGlobal(QPoint(0, 0)), pWidget->size());
        QScreen* pScreen = QGuiApplication::primaryScreen();
        const QPixmap picture = pScreen->grabWindow(0, place.x(), place.y(), place.width(), place.height());
        answer(command.m_pFrom, {{"ok", picture.save(words["file"].toString())}});
    } else if (!gestureOnPart(command, pWidget, &strReason)) {
        answer(command.m_pFrom, failure(strReason));
    }
}

// Clicks on what is no widget by itself: an entry, a tab.
bool CommandServer::gestureOnPart(const Command& command, QWidget* pWidget, QString* pReason)
{
    const QJsonObject& words = command.m_words;
    const QString strDo = words["do"].toString();
    const QString strText = words["text"].toString();
    MouseGesture way = gestureOf(words, *pWidget);
    const auto clickAt = [&](QWidget* pTarget, const QPoint& at) {
        way.from = way.to = at;
        way.steps = 0;
        gesture(command, [&] { sendMouse(pTarget, way); });
        return true;
    };
    if (auto* pView = qobject_cast<QAbstractItemView*>(pWidget); strDo == "item" && pView != nullptr) {
        const QModelIndex index = indexOf(*pView, words);
        if (!index.isValid()) {
            *pReason = "no such entry";
            return false;
        }
        pView->scrollTo(index);
        return clickAt(pView->viewport(), pView->visualRect(index).center());
    }
    if (auto* pHeader = qobject_cast<QHeaderView*>(pWidget); strDo == "section" && pHeader != nullptr) {
        const int nMiddle =
            pHeader->sectionViewportPosition(words["row"].toInt()) + pHeader->sectionSize(words["row"].toInt()) / 2;
        const bool bAcross = pHeader->orientation() == Qt::Horizontal;
        return clickAt(pHeader->viewport(),
                       bAcross ? QPoint(nMiddle, pHeader->height() / 2) : QPoint(pHeader->width() / 2, nMiddle));
    }
    if (strDo == "tab") {
        auto* pTabs = qobject_cast<QTabWidget*>(pWidget);
        QTabBar* pBar = pTabs != nullptr ? pTabs->tabBar() : qobject_cast<QTabBar*>(pWidget);
        for (int i = 0; pBar != nullptr && i < pBar->count(); ++i) {
            if (plain(pBar->tabText(i)) == strText) {
                return clickAt(pBar, pBar->tabRect(i).center());
            }
        }
        *pReason = "no tab " + strText;
        return false;
    }
    if (auto* pCombo = qobject_cast<QComboBox*>(pWidget); strDo == "choose" && pCombo != nullptr) {
        const int nRow = pCombo->findText(strText);
        if (nRow < 0 || !pCombo->isEnabled()) {
            *pReason = nRow < 0 ? "no entry " + strText : "the list is off";
            return false;
        }
        gesture(command, [&] {
            pCombo->showPopup();
            QAbstractItemView* pList = pCombo->view();
            const QModelIndex index = pList->model()->index(nRow, pCombo->modelColumn(), pCombo->rootModelIndex());
            pList->scrollTo(index);
            QTimer::singleShot(0, pList, [this, pList, index] {
                sendMove(pList->viewport(), pList->visualRect(index).center());
                MouseGesture press;
                press.from = press.to = pList->visualRect(index).center();
                sendMouse(pList->viewport(), press);
            });
        });
        return true;
    }
    if (strDo == "menu") {
        QMenu* pMenu = nullptr;
        QAction* pEntry = nullptr;
        auto* pBar = qobject_cast<QMenuBar*>(pWidget);
        auto* pPopup = qobject_cast<QMenu*>(pWidget);
        if (pBar == nullptr && pPopup == nullptr) {
            pBar = pWidget->window()->findChild<QMenuBar*>();
        }
        if (pBar != nullptr || pPopup != nullptr) {
            pEntry = entryOf(pBar != nullptr ? pBar->actions() : pPopup->actions(), strText);
            pMenu = pPopup;
        }
        if (pEntry == nullptr) {
            *pReason = "no menu entry " + strText;
            return false;
        }
        return pMenu != nullptr ? clickAt(pMenu, pMenu->actionGeometry(pEntry).center())
                                : clickAt(pBar, pBar->actionGeometry(pEntry).center());
    }
    *pReason = "cannot " + strDo + " on a " + pWidget->metaObject()->className();
    return false;
}

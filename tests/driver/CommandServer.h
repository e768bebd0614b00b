// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>

class QLocalServer;
class QLocalSocket;
class QWidget;

// Takes commands over a local socket, one JSON object a line, and answers each with one line. Commands are done in the
// program's event loop, one after another. A gesture after which a dialog or a run has an event loop of its own holds
// up the commands after it for a quarter of a second only.
//
// {"do": "tree"}                          every window and what is in it
// {"do": "find", "widget": PATH}          one widget's state; "all": true for every match
// {"do": "click", "widget": PATH, "at": [x, y], "button": "right", "modifiers": "Ctrl+Shift", "double": true}
// {"do": "drag", "widget": PATH, "from": [x, y], "to": [x, y], "steps": 10, "button": ..., "modifiers": ...}
// {"do": "move", "widget": PATH, "at": [x, y]}
// {"do": "wheel", "widget": PATH, "at": [x, y], "angle": 120, "modifiers": ...}
// {"do": "key", "keys": "Ctrl+O", "widget": PATH}    to the widget with the focus when no widget is named
// {"do": "type", "text": "...", "widget": PATH}
// {"do": "item", "widget": PATH, "row": 1, "column": 0, "text": ..., "double": true}   of an item view; by text or
// place
// {"do": "tab", "widget": PATH, "text": "Unmixed"}   a tab of a QTabWidget or QTabBar
// {"do": "choose", "widget": PATH, "text": ...}      an entry of a combo box, by its list
// {"do": "menu", "text": "File"}          an entry of the menu that is open, else of the menu bar of the window
// {"do": "section", "widget": PATH, "row": 1}        a section of a header
// {"do": "drop", "widget": PATH, "files": [...], "at": [x, y]}
// {"do": "grab", "file": ..., "widget": PATH}        without a widget the whole screen
// {"do": "tip", "widget": PATH, "at": [x, y]}       the tool tip that comes up there
// {"do": "resize", "widget": PATH, "size": [w, h]}   the window of the widget
// {"do": "faults", "widget": PATH}        what is cut, faint or has no name below the widget (layoutFaults.h)
// {"do": "dark"}                          a dark palette for the whole program
// {"do": "activate", "widget": PATH}                 the window of the widget
// {"do": "close", "widget": PATH}         the window of the widget, as by its frame
// {"do": "stalls"}                        the longest pauses of the event loop in ms since the last such question
// {"do": "quiet", "ms": 50}               answers once the event loop has been idle for so long
//
// Every answer holds "ok"; false with "error". A gesture is answered before it is made, as it may take as long as a
// dialog is open. Coordinates are of the widget, its centre when there are none; PATH: see widgetSearch.h.
class CommandServer : public QObject
{
    Q_OBJECT

public:
    CommandServer();

    void listen(const QString& strSocket);

private:
    struct Command
    {
        QPointer<QLocalSocket> m_pFrom;
        QJsonObject m_words;
    };

    void takeConnection();
    void readLines(QLocalSocket* pFrom);
    void onBeat();
    void perform(const Command& command);
    void answer(QLocalSocket* pTo, QJsonObject words);
    bool performWithoutWidget(const Command& command);
    void performOnWidget(const Command& command, QWidget* pWidget);
    // False with the reason when there is no such place in the widget.
    bool gestureOnPart(const Command& command, QWidget* pWidget, QString* pReason);
    void gesture(const Command& command, const std::function<void()>& make);
    // `make` calls what it gets right before the last part: the release of a button, the last letter.
    void gestureOfParts(const Command& command, bool bParts,
                        const std::function<void(const std::function<void()>&)>& make);
    void waitForQuiet(const Command& command);

    QLocalServer* m_pServer;
    QList<Command> m_waiting;
    bool m_bTaken = false;  // a command is about to be done
    int m_nGestures = 0;    // so far
    int m_nHolding = 0;     // the one that holds up the next command, or 0
    bool m_bMidway = false; // it has parts, and not all but the last are made
    QElapsedTimer m_sinceGesture;
    QTimer m_beat; // takes the next command, and notes how late it comes
    QElapsedTimer m_sinceBeat;
    QList<qint64> m_stalls;
};

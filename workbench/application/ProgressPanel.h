// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

class ProcessWatch;
class QLabel;
class QProgressBar;
class QPushButton;
class QShortcut;

// Shows a long process while it runs: its message, how much of it is done, the time that it has taken, and how to
// abort it, which the button does and Escape anywhere in the program.
class ProgressPanel : public QWidget
{
    Q_OBJECT

public:
    ProgressPanel(ProcessWatch* pWatch, QWidget* pParent);

    QPushButton* abortButton() const { return m_pAbort; }

Q_SIGNALS:
    // What a process says at its end, and for how long.
    void ended(const QString& strMessage, int nMilliseconds);

private:
    void takeState();
    void showTime();
    void abort();

    ProcessWatch* m_pWatch;
    QLabel* m_pMessage;
    QProgressBar* m_pBar;
    QLabel* m_pTime;
    QPushButton* m_pAbort;
    QShortcut* m_pEscape;
    QElapsedTimer m_since;
    QElapsedTimer m_sinceDrawn;
    QTimer m_tick;
    bool m_bRunning = false;
};

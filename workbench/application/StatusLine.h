// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStatusBar>
#include <QTimer>

class ProcessWatch;
class ProgressPanel;
class QLabel;

// The bar at the lower edge of the window: progress while something runs, else what the user should notice, and the
// value below the pointer. A warning or an error stays until the user does the next thing, which a press of a key or of
// a button anywhere is.
class StatusLine : public QStatusBar
{
    Q_OBJECT

public:
    StatusLine(ProcessWatch* pWatch, QWidget* pParent);
    ~StatusLine() override;

    // A line of the log of level 2 or 3; of several the worst, of these the last.
    void showAttention(int nLevel, const QString& strText);
    // For some seconds, or until something else is to be shown.
    void showPassing(const QString& strText, int nMilliseconds = 8000);
    void showReadOut(const QString& strText);
    QString attention() const { return m_strAttention; }
    ProgressPanel* progress() const { return m_pProgress; }

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    void clearAttention();
    void arrange();

    ProgressPanel* m_pProgress;
    QLabel* m_pIcon;
    QLabel* m_pText;
    QLabel* m_pReadOut;
    QTimer m_passing;
    QTimer m_resized;
    QString m_strAttention;
    QString m_strPassing;
    int m_nLevel = 0;
    bool m_bRunning = false;
};

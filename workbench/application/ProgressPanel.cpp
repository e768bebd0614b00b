// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/ProgressPanel.h"

#include "workbench/application/ProcessWatch.h"
#include "workbench/application/elapsedText.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QShortcut>

namespace {

constexpr int tickMilliseconds = 200;
constexpr int redrawMilliseconds = 50;
constexpr int stepsOfBar = 1000;

} // namespace

ProgressPanel::ProgressPanel(ProcessWatch* pWatch, QWidget* pParent)
    : QWidget(pParent), m_pWatch(pWatch), m_pMessage(new QLabel(this)), m_pBar(new QProgressBar(this)),
      m_pTime(new QLabel(this)), m_pAbort(new QPushButton(tr("&Abort"), this)),
      m_pEscape(new QShortcut(QKeySequence(Qt::Key_Escape), this))
{
    setObjectName(QStringLiteral("progressPanel"));
    m_pMessage->setObjectName(QStringLiteral("progressMessage"));
    m_pMessage->setTextFormat(Qt::PlainText);
    m_pMessage->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_pMessage->setMinimumWidth(160);
    m_pBar->setObjectName(QStringLiteral("progressBar"));
    m_pBar->setAccessibleName(tr("Progress"));
    m_pBar->setFixedWidth(220);
    m_pTime->setObjectName(QStringLiteral("progressTime"));
    m_pTime->setToolTip(tr("Time since the start"));
    m_pAbort->setObjectName(QStringLiteral("abortButton"));
    m_pAbort->setToolTip(tr("Abort (Esc)"));
    m_pEscape->setContext(Qt::ApplicationShortcut);
    m_pEscape->setAutoRepeat(false);
    auto* pLayout = new QHBoxLayout(this);
    pLayout->setContentsMargins(8, 3, 8, 3);
    pLayout->addWidget(m_pMessage, 1);
    pLayout->addWidget(m_pBar);
    pLayout->addWidget(m_pTime);
    pLayout->addWidget(m_pAbort);
    m_tick.setInterval(tickMilliseconds);
    connect(&m_tick, &QTimer::timeout, this, &ProgressPanel::showTime);
    connect(m_pAbort, &QPushButton::clicked, this, &ProgressPanel::abort);
    connect(m_pEscape, &QShortcut::activated, this, &ProgressPanel::abort);
    connect(m_pWatch, &ProcessWatch::changed, this, &ProgressPanel::takeState);
    m_pEscape->setEnabled(false);
    hide();
    takeState();
}

void ProgressPanel::takeState()
{
    const orv::ProcessState& state = m_pWatch->state();
    const bool bRunning = m_pWatch->isRunning();
    if (bRunning && !m_bRunning) {
        m_since.start();
        m_sinceDrawn.invalidate();
        m_tick.start();
    } else if (!bRunning && m_bRunning) {
        m_tick.stop();
        if (!state.m_strMessage.isEmpty()) {
            Q_EMIT ended(state.m_strMessage, state.m_nMilliseconds);
        }
    }
    m_bRunning = bRunning;
    const bool bAborting = state.m_bAborted && state.m_bCanAbort;
    const QString message = bAborting && !state.m_strAbortText.isEmpty() ? state.m_strAbortText : m_pWatch->message();
    m_pMessage->setText(message);
    m_pMessage->setToolTip(QString());
    const double dFraction = m_pWatch->fraction();
    m_pBar->setRange(0, dFraction < 0.0 ? 0 : stepsOfBar);
    m_pBar->setValue(dFraction < 0.0 ? 0 : qRound(dFraction * stepsOfBar));
    m_pBar->setTextVisible(dFraction >= 0.0);
    m_pAbort->setEnabled(bRunning && state.m_bCanAbort && !bAborting);
    m_pEscape->setEnabled(m_pAbort->isEnabled());
    setVisible(bRunning);
    if (bRunning) {
        showTime();
    }
}

void ProgressPanel::showTime()
{
    m_pTime->setText(elapsedText(m_since.elapsed()));
    // Work on this thread leaves no time for events; it is seen all the same, now and then.
    if (!m_sinceDrawn.isValid() || m_sinceDrawn.elapsed() > redrawMilliseconds) {
        m_sinceDrawn.start();
        repaint();
    }
}

void ProgressPanel::abort()
{
    if (!m_pAbort->isEnabled()) {
        return;
    }
    orv::requestAbort();
    m_pAbort->setEnabled(false);
    m_pEscape->setEnabled(false);
    const QString text = m_pWatch->state().m_strAbortText;
    if (!text.isEmpty()) {
        m_pMessage->setText(text);
    }
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/StatusLine.h"

#include "host/CORVLog.h"
#include "workbench/application/ProcessWatch.h"
#include "workbench/application/ProgressPanel.h"
#include "workbench/application/literalToolTip.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QStyle>

namespace {

bool isModifier(const QEvent* pEvent)
{
    switch (static_cast<const QKeyEvent*>(pEvent)->key()) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Meta:
        return true;
    default:
        return false;
    }
}

} // namespace

StatusLine::StatusLine(ProcessWatch* pWatch, QWidget* pParent)
    : QStatusBar(pParent), m_pProgress(new ProgressPanel(pWatch, this)), m_pIcon(new QLabel(this)),
      m_pText(new QLabel(this)), m_pReadOut(new QLabel(this))
{
    setObjectName(QStringLiteral("statusLine"));
    m_pIcon->setObjectName(QStringLiteral("statusIcon"));
    m_pText->setObjectName(QStringLiteral("statusText"));
    m_pText->setTextFormat(Qt::PlainText);
    m_pText->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_pText->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_pReadOut->setObjectName(QStringLiteral("readOut"));
    m_pReadOut->setTextFormat(Qt::PlainText);
    // As high with a process as without one, so that the windows above keep their size.
    setMinimumHeight(m_pProgress->sizeHint().height() + 4);
    addWidget(m_pIcon);
    addWidget(m_pText, 1);
    addWidget(m_pProgress, 1);
    addPermanentWidget(m_pReadOut);
    m_pProgress->hide();
    m_passing.setSingleShot(true);
    connect(&m_passing, &QTimer::timeout, this, [this] {
        m_strPassing.clear();
        arrange();
    });
    m_resized.setSingleShot(true);
    connect(&m_resized, &QTimer::timeout, this, &StatusLine::arrange);
    connect(pWatch, &ProcessWatch::changed, this, [this, pWatch] {
        m_bRunning = pWatch->isRunning();
        arrange();
    });
    connect(m_pProgress, &ProgressPanel::ended, this, &StatusLine::showPassing);
    qApp->installEventFilter(this);
    arrange();
}

StatusLine::~StatusLine()
{
    qApp->removeEventFilter(this);
}

void StatusLine::showAttention(int nLevel, const QString& strText)
{
    if (nLevel < m_nLevel) {
        return;
    }
    m_nLevel = nLevel;
    m_strAttention = QString(strText).replace(QLatin1Char('\n'), QLatin1Char(' '));
    arrange();
}

void StatusLine::showPassing(const QString& strText, int nMilliseconds)
{
    m_strPassing = strText;
    m_passing.start(qMax(nMilliseconds, 1000));
    arrange();
}

void StatusLine::showReadOut(const QString& strText)
{
    m_pReadOut->setText(strText);
}

void StatusLine::clearAttention()
{
    m_nLevel = 0;
    m_strAttention.clear();
    arrange();
}

void StatusLine::arrange()
{
    const bool bAttention = !m_strAttention.isEmpty() && !m_bRunning;
    const QString text = m_bRunning ? QString() : bAttention ? m_strAttention : m_strPassing;
    const int nSize = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    m_pIcon->setVisible(bAttention);
    if (bAttention) {
        const bool bError = m_nLevel == CORVLOG_ERROR;
        m_pIcon->setPixmap(
            style()->standardIcon(bError ? QStyle::SP_MessageBoxCritical : QStyle::SP_MessageBoxWarning).pixmap(nSize));
        m_pIcon->setAccessibleName(bError ? tr("Error") : tr("Warning"));
    }
    m_pText->setVisible(!m_bRunning);
    m_pText->setText(m_pText->fontMetrics().elidedText(text, Qt::ElideMiddle, qMax(m_pText->width(), 40)));
    m_pText->setToolTip(literalToolTip(text));
    m_pText->setAccessibleName(text);
}

void StatusLine::resizeEvent(QResizeEvent* pEvent)
{
    QStatusBar::resizeEvent(pEvent);
    m_resized.start(0); // the label gets its size behind this
}

bool StatusLine::eventFilter(QObject* pWatched, QEvent* pEvent)
{
    // What is told to a window of the system comes once more to the widget in it, before that acts on it.
    const bool bPress =
        pEvent->type() == QEvent::MouseButtonPress || (pEvent->type() == QEvent::KeyPress && !isModifier(pEvent));
    if (bPress && !m_strAttention.isEmpty() && pWatched->isWidgetType() && pWatched != m_pText) {
        clearAttention();
    }
    return QStatusBar::eventFilter(pWatched, pEvent);
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/PlotLegend.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace orv {

namespace {

constexpr int swatch = 8;
constexpr int gap = 4;      // between a swatch and its text
constexpr int distance = 8; // between entries

} // namespace

PlotLegend::PlotLegend(QWidget* pParent) : QWidget(pParent)
{
    setObjectName(QStringLiteral("legend"));
}

void PlotLegend::setEntries(const QVector<Entry>& entries)
{
    m_entries = entries;
    arrange();
}

void PlotLegend::setRoom(int nWidth, int nMostHeight)
{
    m_nWidth = nWidth;
    m_nMostHeight = nMostHeight;
    arrange();
}

void PlotLegend::arrange()
{
    const QFontMetrics metrics(font());
    const int nRowHeight = metrics.height() + 2;
    const int nMostRows = std::max(1, m_nMostHeight / nRowHeight);
    m_places.clear();
    int nRowStart = 0; // the first entry of the row
    int nLeft = 0;
    int nRow = 0;
    // Rows stand in the middle.
    const auto endRow = [&] {
        const int nUsed = m_places.isEmpty() ? 0 : m_places.last().right() + 1;
        for (int i = nRowStart; i < m_places.size(); ++i) {
            m_places[i].translate(std::max(0, (m_nWidth - nUsed) / 2), 0);
        }
        nRowStart = m_places.size();
    };
    for (const Entry& entry : qAsConst(m_entries)) {
        const int nWhole = swatch + gap + metrics.horizontalAdvance(entry.m_strLabel);
        const int nWidth = std::min(nWhole, std::max(m_nWidth, swatch));
        if (nLeft > 0 && nLeft + nWidth > m_nWidth) {
            endRow();
            nLeft = 0;
            ++nRow;
        }
        if (nRow >= nMostRows) {
            break;
        }
        m_places.append(QRect(nLeft, nRow * nRowHeight, nWidth, nRowHeight));
        nLeft += nWidth + distance;
    }
    endRow();
    const int nRows = m_entries.isEmpty() ? 0 : std::min(nRow + 1, nMostRows);
    setFixedHeight(nRows * nRowHeight);
    update();
}

void PlotLegend::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Base));
    for (int i = 0; i < m_places.size(); ++i) {
        const QRect place = m_places[i];
        const QRect box(place.left(), place.center().y() - swatch / 2, swatch, swatch);
        painter.setPen(palette().color(QPalette::Text));
        painter.setBrush(m_entries[i].m_color);
        painter.drawRect(box.adjusted(0, 0, -1, -1));
        const QRect text = place.adjusted(swatch + gap, 0, 0, 0);
        // A pixel more than measured, so that rounding elides no entry that fits.
        const QString shown =
            painter.fontMetrics().elidedText(m_entries[i].m_strLabel, Qt::ElideMiddle, text.width() + 1);
        painter.drawText(text.adjusted(0, 0, 1, 0), Qt::AlignVCenter | Qt::TextSingleLine, shown);
    }
}

bool PlotLegend::event(QEvent* pEvent)
{
    if (pEvent->type() == QEvent::ToolTip) {
        const auto* pHelp = static_cast<QHelpEvent*>(pEvent);
        QString text;
        for (int i = 0; i < m_places.size(); ++i) {
            text = m_places[i].contains(pHelp->pos()) ? m_entries[i].m_strLabel.toHtmlEscaped() : text;
        }
        QToolTip::showText(pHelp->globalPos(), text, this);
        return true;
    }
    return QWidget::event(pEvent);
}

} // namespace orv

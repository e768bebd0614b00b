// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVQImageView.h"

#include "platform/orvwidgets/viewOverlays.h"

#include <QPainter>

namespace {

constexpr int kMargin = 6; // pixels

} // namespace

CORVQImageView::CORVQImageView(QWidget* pParent, const char* name) : GLImageView(pParent, name) {}

CORVQImageView::~CORVQImageView() = default;

void CORVQImageView::setLabelList(const LabelList& labels)
{
    m_labels = labels;
    QStringList texts;
    for (const auto& label : labels) {
        texts << label.first;
    }
    setAccessibleDescription(texts.join(QStringLiteral(", ")));
    update();
}

void CORVQImageView::paintOverlay(QPainter& painter) const
{
    QFont bold = font();
    bold.setBold(true);
    const QFontMetricsF metrics(bold);
    double baseline = kMargin + metrics.ascent();
    for (const auto& label : m_labels) {
        // One line each, whatever the text holds.
        const QString line = metrics.elidedText(label.first.simplified(), Qt::ElideMiddle, width() - 2 * kMargin);
        orvwidgets::paintOutlinedText(painter, QPointF(kMargin, baseline), line, bold, label.second);
        baseline += metrics.lineSpacing();
    }
}

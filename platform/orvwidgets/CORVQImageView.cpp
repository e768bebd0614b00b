// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVQImageView.h"

#include "platform/orvwidgets/viewIcons.h"
#include "platform/orvwidgets/viewOverlays.h"

#include <QMenu>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int kMargin = 6; // pixels
// Side of a picture on which labels are as large as in a view.
constexpr int kLegibleSide = 480;
// A picture is not enlarged beyond it.
constexpr int kLongestEnlarged = 4096;

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
    paintLabels(painter, width());
}

void CORVQImageView::paintLabels(QPainter& painter, double dWidth) const
{
    QFont bold = font();
    bold.setBold(true);
    const QFontMetricsF metrics(bold);
    double baseline = kMargin + metrics.ascent();
    for (const auto& label : m_labels) {
        // One line each, whatever the text holds.
        const QString line = metrics.elidedText(label.first.simplified(), Qt::ElideMiddle, dWidth - 2 * kMargin);
        orvwidgets::paintOutlinedText(painter, QPointF(kMargin, baseline), line, bold, label.second);
        baseline += metrics.lineSpacing();
    }
}

QImage CORVQImageView::labelledPicture() const
{
    const QImage& own = picture();
    if (own.isNull()) {
        return own;
    }
    const int nShort = std::min(own.width(), own.height());
    const int nLong = std::max(own.width(), own.height());
    const int nFactor = std::max(1, std::min((kLegibleSide + nShort - 1) / nShort, kLongestEnlarged / nLong));
    QImage labelled = own.scaled(own.size() * nFactor).convertToFormat(QImage::Format_RGB32);
    labelled.setDevicePixelRatio(1.0);
    QPainter painter(&labelled);
    const double letters = 1.0 * nShort * nFactor / kLegibleSide;
    painter.scale(letters, letters);
    paintLabels(painter, labelled.width() / letters);
    return labelled;
}

void CORVQImageView::saveLabelledPicture()
{
    saveAs(labelledPicture());
}

void CORVQImageView::fillContextMenu(QMenu& menu)
{
    GLImageView::fillContextMenu(menu);
    if ((menuItems() & SaveItem) != 0 && !m_labels.isEmpty()) {
        menu.addSeparator();
        menu.addAction(orvwidgets::viewIcon(orvwidgets::ViewIcon::Save, palette().color(QPalette::Text)),
                       tr("Save Picture with &Labels ..."), this, &CORVQImageView::saveLabelledPicture)
            ->setEnabled(!picture().isNull());
    }
}

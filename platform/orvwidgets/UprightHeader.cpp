// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/UprightHeader.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyleOptionHeader>
#include <QToolTip>

#include <algorithm>

namespace orv {

UprightHeader::UprightHeader(QWidget* pParent) : QHeaderView(Qt::Horizontal, pParent)
{
    setSectionsClickable(true);
    setHighlightSections(true);
    setSortIndicatorShown(false);
    // The height depends on which texts stand upright.
    connect(this, &QHeaderView::sectionResized, this, [this] { updateGeometry(); });
}

QString UprightHeader::text(int nSection) const
{
    return model() != nullptr ? model()->headerData(nSection, Qt::Horizontal).toString() : QString();
}

QFont UprightHeader::sectionFont(int nSection) const
{
    const QVariant own = model() != nullptr ? model()->headerData(nSection, Qt::Horizontal, Qt::FontRole) : QVariant();
    return own.canConvert<QFont>() ? own.value<QFont>() : font();
}

int UprightHeader::margin() const
{
    return style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, this);
}

bool UprightHeader::isUpright(int nSection) const
{
    const QFontMetrics metrics(sectionFont(nSection));
    // Beside the text its frame takes a pixel.
    return metrics.horizontalAdvance(text(nSection)) + 2 > sectionSize(nSection);
}

QSize UprightHeader::sectionSizeFromContents(int nSection) const
{
    const QSize lying = QHeaderView::sectionSizeFromContents(nSection);
    if (!isUpright(nSection)) {
        return lying;
    }
    const int nText = QFontMetrics(sectionFont(nSection)).horizontalAdvance(text(nSection));
    return QSize(lying.height(), std::max(lying.height(), std::min(nText, longestText) + 2 * margin() + 2));
}

void UprightHeader::paintSection(QPainter* pPainter, const QRect& rect, int nSection) const
{
    if (!rect.isValid()) {
        return;
    }
    QStyleOptionHeader option;
    initStyleOption(&option);
    option.rect = rect;
    option.section = nSection;
    option.orientation = Qt::Horizontal;
    option.textAlignment = Qt::AlignCenter;
    if (isEnabled()) {
        option.state |= QStyle::State_Enabled;
    }
    if (highlightSections() && selectionModel() != nullptr &&
        selectionModel()->columnIntersectsSelection(nSection, {})) {
        option.state |= QStyle::State_On;
    }
    pPainter->save();
    pPainter->setFont(sectionFont(nSection));
    style()->drawControl(QStyle::CE_HeaderSection, &option, pPainter, this);
    pPainter->setPen(option.palette.color(QPalette::ButtonText));
    QRect room = rect;
    if (isUpright(nSection)) {
        pPainter->translate(rect.left(), rect.bottom() + 1);
        pPainter->rotate(-90.0);
        room = QRect(0, 0, rect.height(), rect.width());
    }
    const int nMargin = isUpright(nSection) ? margin() : 0;
    const QString shown =
        pPainter->fontMetrics().elidedText(text(nSection), Qt::ElideRight, room.width() - 2 * nMargin);
    pPainter->drawText(room, Qt::AlignCenter | Qt::TextSingleLine, shown);
    pPainter->restore();
}

bool UprightHeader::viewportEvent(QEvent* pEvent)
{
    if (pEvent->type() == QEvent::ToolTip) {
        const auto* pHelp = static_cast<QHelpEvent*>(pEvent);
        const int nSection = logicalIndexAt(pHelp->pos());
        const bool bOwn = nSection >= 0 && model()->headerData(nSection, Qt::Horizontal, Qt::ToolTipRole).isValid();
        if (nSection >= 0 && !bOwn) {
            // As it stands, be it like markup.
            QToolTip::showText(pHelp->globalPos(), text(nSection).toHtmlEscaped(), this);
            return true;
        }
    }
    return QHeaderView::viewportEvent(pEvent);
}

} // namespace orv

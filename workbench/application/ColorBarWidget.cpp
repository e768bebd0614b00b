// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/ColorBarWidget.h"

#include "platform/orvimage/ColorBar.h"

#include <QEvent>
#include <QLocale>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kBreadth = 78; // across a vertical bar
constexpr int kLeast = 90;   // along the bar
constexpr int kLargestFont = 13;

} // namespace

ColorBarWidget::ColorBarWidget(Qt::Orientation eOrientation, QWidget* pParent)
    : QWidget(pParent), m_eOrientation(eOrientation)
{
    const bool vertical = eOrientation == Qt::Vertical;
    setSizePolicy(vertical ? QSizePolicy::Fixed : QSizePolicy::Expanding,
                  vertical ? QSizePolicy::Expanding : QSizePolicy::Fixed);
    setAccessibleName(tr("Colour bar"));
}

void ColorBarWidget::setScale(const CILPalette& palette, const DisplayRange& range, const QString& strQuantity)
{
    m_scale = palette;
    m_range = range;
    m_strQuantity = strQuantity;
    const QLocale locale;
    setAccessibleDescription(
        tr("from %1 to %2 %3")
            .arg(locale.toString(range.minimum, 'g', 4), locale.toString(range.maximum, 'g', 4), strQuantity));
    update();
}

void ColorBarWidget::clearScale()
{
    setScale(CILPalette(), DisplayRange(), QString());
    setAccessibleDescription(QString());
}

QSize ColorBarWidget::sizeHint() const
{
    const int lines = std::min(fontMetrics().height(), kLargestFont + 4);
    return m_eOrientation == Qt::Vertical ? QSize(kBreadth, 3 * kLeast) : QSize(3 * kLeast, 3 * lines + 8);
}

QSize ColorBarWidget::minimumSizeHint() const
{
    return m_eOrientation == Qt::Vertical ? QSize(kBreadth, kLeast) : QSize(kLeast, sizeHint().height());
}

void ColorBarWidget::changeEvent(QEvent* pEvent)
{
    QWidget::changeEvent(pEvent);
    if (pEvent->type() == QEvent::PaletteChange || pEvent->type() == QEvent::FontChange) {
        update();
    }
}

void ColorBarWidget::paintEvent(QPaintEvent* /*pEvent*/)
{
    if (m_range.isEmpty()) {
        return;
    }
    const double ratio = devicePixelRatioF();
    const bool vertical = m_eOrientation == Qt::Vertical;
    orvimage::ColorBarOptions options;
    options.orientation = m_eOrientation;
    options.fontPixels = static_cast<int>(std::lround(std::min(fontMetrics().ascent(), kLargestFont) * ratio));
    options.unitLines = QStringList{m_strQuantity};
    options.text = palette().color(QPalette::WindowText);
    options.background = Qt::transparent;
    // The drawing adds half a line of text at either end, and at one of them the power of ten.
    const int room = static_cast<int>(std::lround((vertical ? height() : width()) * ratio));
    const int length = std::max(2, room - options.fontPixels * (vertical ? 3 : 7));
    QImage bar = orvimage::drawColorBar(m_scale, m_range.minimum, m_range.maximum, length, options);
    bar.setDevicePixelRatio(ratio);
    QPainter painter(this);
    painter.drawImage(QPointF(0.0, 0.0), bar);
}

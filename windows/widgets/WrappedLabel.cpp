// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/widgets/WrappedLabel.h"

#include <QResizeEvent>

namespace {

constexpr int kLeastWidth = 120; // pixels
constexpr int kUsualWidth = 240;

} // namespace

WrappedLabel::WrappedLabel(QWidget* pParent) : QLabel(pParent)
{
    setWordWrap(true);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize WrappedLabel::sizeHint() const
{
    return sizeAt(kUsualWidth);
}

QSize WrappedLabel::minimumSizeHint() const
{
    return sizeAt(kLeastWidth);
}

QSize WrappedLabel::sizeAt(int nWidth) const
{
    return {nWidth, text().isEmpty() ? 0 : heightForWidth(width())};
}

void WrappedLabel::resizeEvent(QResizeEvent* pEvent)
{
    QLabel::resizeEvent(pEvent);
    if (pEvent->size().width() != pEvent->oldSize().width()) {
        updateGeometry();
    }
}

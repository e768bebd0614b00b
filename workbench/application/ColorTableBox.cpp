// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/ColorTableBox.h"

#include "host/CILPalette.h"

#include <QIcon>
#include <QPixmap>

namespace {

constexpr int kStripWidth = 48;
constexpr int kStripHeight = 12;

QIcon strip(int nTable, bool bReversed)
{
    CILPalette palette;
    palette.setCLUTinfo(nTable, bReversed, false);
    QImage colors(kStripWidth, kStripHeight, QImage::Format_RGB32);
    for (int x = 0; x < kStripWidth; ++x) {
        const QRgb color = palette.colorAt(x / (kStripWidth - 1.0));
        for (int y = 0; y < kStripHeight; ++y) {
            colors.setPixel(x, y, color);
        }
    }
    return QIcon(QPixmap::fromImage(colors));
}

} // namespace

ColorTableBox::ColorTableBox(QWidget* pParent) : QComboBox(pParent)
{
    setAccessibleName(tr("Colours"));
    setToolTip(tr("Colour table"));
    setIconSize(QSize(kStripWidth, kStripHeight));
    addItems(CILPalette::colorTableNames());
    drawStrips(false);
    // Where room is short the colours alone tell which table it is.
    setSizeAdjustPolicy(AdjustToContents);
    setMaximumWidth(sizeHint().width());
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(0);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ColorTableBox::setColorTable(int nTable)
{
    if (nTable >= 0 && nTable < count()) {
        setCurrentIndex(nTable);
    }
}

void ColorTableBox::setReversed(bool bReversed)
{
    drawStrips(bReversed);
}

void ColorTableBox::drawStrips(bool bReversed)
{
    for (int i = 0; i < count(); ++i) {
        setItemIcon(i, strip(i, bReversed));
    }
}

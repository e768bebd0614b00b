// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILPalette.h"
#include "workbench/application/DisplayRange.h"

#include <QWidget>

#include <vector>

class CILImage;

// How often the values of an image occur, from its least to its greatest, in the colours that they are shown in. The
// height is that of the logarithm of the number, so that a few bright pixels are seen beside a dark background.
class HistogramView : public QWidget
{
    Q_OBJECT

public:
    explicit HistogramView(QWidget* pParent = nullptr);

    // Counts the pixels; none for an image without a range.
    void setImage(const CILImage& image, const DisplayRange& whole);
    void clearImage();
    // What the colours stand for.
    void setRange(const CILPalette& palette, const DisplayRange& range);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* pEvent) override;

private:
    std::vector<double> m_heights; // 0 to 1, a bin each
    DisplayRange m_whole;
    CILPalette m_colors;
    DisplayRange m_range;
};

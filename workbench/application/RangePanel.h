// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILPalette.h"
#include "workbench/application/DisplayRange.h"

#include <QWidget>

class CILImage;
class HistogramView;
class QDoubleSpinBoxEx;
class QPushButton;
class QSpanSlider;

// Minimum and maximum of what is shown: a histogram, a slider with two ends, two numbers, and buttons for the automatic
// range and the whole one. The numbers may lie beyond the image's values, the slider's ends not.
class RangePanel : public QWidget
{
    Q_OBJECT

public:
    explicit RangePanel(QWidget* pParent = nullptr);

    // Another image: its values and the range it is shown with. Says nothing.
    void setImage(const CILImage& image, const DisplayRange& whole, const DisplayRange& range);
    void clearImage();
    void setColors(const CILPalette& palette);
    const DisplayRange& range() const { return m_range; }
    // Says nothing.
    void setRange(const DisplayRange& range);

Q_SIGNALS:
    // By the user.
    void rangeChanged();
    void automaticWanted();

private:
    void choose(const DisplayRange& range);
    void showRange();

    HistogramView* m_pHistogram;
    QSpanSlider* m_pSlider;
    QDoubleSpinBoxEx* m_pMinimumBox;
    QDoubleSpinBoxEx* m_pMaximumBox;
    QPushButton* m_pAutoButton;
    QPushButton* m_pWholeButton;
    RangeScale m_scale;
    DisplayRange m_range;
    CILPalette m_palette;
};

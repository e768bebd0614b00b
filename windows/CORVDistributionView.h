// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVMultiImageView.h"
#include "windows/unmixedValues.h"

#include <QMutex>

// The maps of an analysis side by side, with the unit of their common scale at the colour bar.
class CORVDistributionView : public CORVMultiImageView
{
    Q_OBJECT

public:
    explicit CORVDistributionView(QWidget* pParent = nullptr, const char* name = nullptr);
    ~CORVDistributionView() override;

    // 0 counts, 1 radiance, 2 radiant efficiency, 3 efficiency, anything else unknown; with bNTF the wording of 2 and 3
    // is another.
    void setUnit(int nUnit, bool bNTF);

    // The numbers behind the tiles, for who asks what lies under the pointer.
    void setValues(const UnmixedValues& values) { m_values = values; }

    int m_nUnit = 0;
    bool m_bNTF = false;

Q_SIGNALS:
    // A double click on a tile, or Return on the chosen one. Not again while the signal is being delivered.
    void imageDoubleClickedSignal(int nImgIndex);

protected:
    void mouseDoubleClickEvent(QMouseEvent* pEvent) override;
    void drawColorBarTexts() const override;

private:
    void openImage(int nIndex);
    void tellPixel(int nIndex, int x, int y);

    QMutex m_openMutex;
    UnmixedValues m_values;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>

// A list of colours with their names. Where it is too narrow for any of them it shows the swatch alone, and the name in
// its tool tip, so that rows below each other look alike; the names that drop down are always whole.
class ColorCombo : public QComboBox
{
public:
    explicit ColorCombo(QWidget* pParent = nullptr);

    // Whether there is room for the name of every colour.
    bool showsNames() const;
    void showPopup() override;

protected:
    bool event(QEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
};

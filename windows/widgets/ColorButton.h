// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPushButton>

// A button that is filled with a colour by its style sheet. Styles show the focus by the colour of a button, so it has
// a frame of its own for it.
class ColorButton : public QPushButton
{
    Q_OBJECT

public:
    using QPushButton::QPushButton;

protected:
    void paintEvent(QPaintEvent* pEvent) override;
};

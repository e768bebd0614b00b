// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>

// The colour tables of images by name, each with a strip of its colours.
class ColorTableBox : public QComboBox
{
    Q_OBJECT

public:
    explicit ColorTableBox(QWidget* pParent = nullptr);

    int colorTable() const { return currentIndex(); }
    // A number that no table has leaves the choice as it is.
    void setColorTable(int nTable);
    // Strips run from the other end.
    void setReversed(bool bReversed);

private:
    void drawStrips(bool bReversed);
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/PlaneChoice.h"

#include <QWidget>

class QComboBox;
class QLabel;

// Which planes of files with several dimensions make the images: a box for depth, time and channel each. Only those
// show that there is something to choose for.
class PlaneBoxes : public QWidget
{
    Q_OBJECT

public:
    explicit PlaneBoxes(QWidget* pParent = nullptr);

    // How many planes the files have in each dimension. Other sizes than before take back what was chosen; one in each
    // hides the boxes.
    void setSizes(const PlanePosition& sizes);
    PlaneChoice choice() const;
    // A choice of before; what there is no entry for is not chosen. Emits nothing.
    void setChoice(const PlaneChoice& choice);
    // Gives the focus to the box that had it when it was chosen from, once it serves again. False where none had.
    bool takeFocusBack();

Q_SIGNALS:
    void chosen(); // by the user

private:
    void fill();
    void noteChosen(QComboBox* pBox);
    // Depth and time are projected in one way.
    void takeProjection(const QComboBox* pFrom, QComboBox* pTo);

    PlanePosition m_sizes{1, 1, 1};
    QLabel* m_pDepthLabel;
    QComboBox* m_pDepthBox;
    QLabel* m_pTimeLabel;
    QComboBox* m_pTimeBox;
    QLabel* m_pChannelLabel;
    QComboBox* m_pChannelBox;
    QComboBox* m_pChosenBox = nullptr;
};

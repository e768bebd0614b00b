// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "windows/ui_SpumKyvoPCAWnd.h"

#include "XTNT/xtnt_vector.h"

#include <QDialog>

// Tells how many independent components the data hold: the number that the eigenvalues of a PCA suggest, and how much
// of the variance each number of components explains.
class SpumKyvoPCAWnd : public QDialog, public Ui::SpumKyvoPCAWnd
{
    Q_OBJECT

public:
    explicit SpumKyvoPCAWnd(QWidget* pParent = nullptr);

    // Shows eigenvalues in descending order (PCA::eigenvalues()). `values` then holds the percentages explained,
    // element i by i + 1 components; what shares its elements is left alone. Without a value above 0 nothing is shown
    // and `values` stays.
    void setEigenvalues(XTNT::Vector<double>& values);

private:
    void init();
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/ResultsList.h"

class CORVResultsTabControl;
class QComboBox;

// The list of saved results in the palette's combo box, which the host's control fills. Both are borrowed.
class ComboResultsList : public ResultsList
{
public:
    ComboResultsList(CORVResultsTabControl& control, QComboBox& combo);

    QString currentText() const override;
    int currentIndex() const override;
    void setCurrentIndex(int nIndex) override;
    QString itemText(int nIndex) const override;
    QStringList getSavedMenuNames() const override;
    void updateSavedResultsForSelSeqId(const QString& strSequence) override;

private:
    CORVResultsTabControl& m_control;
    QComboBox& m_combo;
};

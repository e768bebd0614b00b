// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/ResultsList.h"

// The list of saved results without a widget.
class ResultsListInMemory : public ResultsList
{
public:
    QString currentText() const override { return m_strText; }
    int currentIndex() const override { return m_nIndex; }
    void setCurrentIndex(int nIndex) override;
    QString itemText(int nIndex) const override { return m_items.value(nIndex); }
    QStringList getSavedMenuNames() const override { return m_saved; }
    // A sequence that is not open, has no folder or no readable index has no saved names. The item that was chosen
    // stays so when its text, without "(new)", is still there; else the one at its place is.
    void updateSavedResultsForSelSeqId(const QString& strSequence) override;

    int count() const { return m_items.size(); }
    // As if typed.
    void setCurrentText(const QString& strText) { m_strText = strText; }
    // Chooses the item with exactly this text; false, and nothing changed, without one.
    bool choose(const QString& strText);

private:
    QStringList m_items;
    QStringList m_saved;
    QString m_strText;
    int m_nIndex = -1;
};

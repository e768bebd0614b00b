// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// The list of a sequence's saved results, as the saving, loading, deleting and renaming of results see it: an editable
// text and the names to choose from. In a window a combo box and the host's control of it stand behind;
// ResultsListInMemory serves programs without one. All on the user-interface thread.
class ResultsList
{
public:
    ResultsList() : m_bResultModified(m_bOwnFlag) {}
    ResultsList(const ResultsList&) = delete;
    ResultsList& operator=(const ResultsList&) = delete;
    virtual ~ResultsList() = default;

    // What stands in the text field, chosen or typed.
    virtual QString currentText() const = 0;
    // The item that was chosen last, -1 without items. Typing does not change it.
    virtual int currentIndex() const = 0;
    // Puts the item's text into the text field; an index without an item does nothing.
    virtual void setCurrentIndex(int nIndex) = 0;
    // Empty for an index without an item.
    virtual QString itemText(int nIndex) const = 0;
    // The names of the results that are saved, in the order of the index.
    virtual QStringList getSavedMenuNames() const = 0;
    // Fills the list with the saved names of the sequence (its id or its name) and, while m_bResultModified is set,
    // with the next automatic name with "(new)" behind, which is then chosen.
    virtual void updateSavedResultsForSelSeqId(const QString& strSequence) = 0;

    // A result is on screen that has been neither saved nor dropped.
    bool& m_bResultModified;

protected:
    // For a list whose control keeps the flag, which outlives the list.
    explicit ResultsList(bool& bResultModified) : m_bResultModified(bResultModified) {}

private:
    bool m_bOwnFlag = false;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

class CORVSequenceDataset;
class QAbstractButton;
class QComboBox;
class QWidget;

// The controls of a palette for the saved results of a sequence: an editable combo box with their names, and buttons
// that delete, load and save. Delete and Load can be pressed while the combo box names a saved result, without regard
// to case; Save while there is a result. What the buttons do is the palette's. All widgets are borrowed.
class CORVResultsTabControl : public QObject
{
    Q_OBJECT

public:
    CORVResultsTabControl(QWidget* pPalette, QComboBox* pCombo, QAbstractButton* pDelete, QAbstractButton* pLoad,
                          QAbstractButton* pSave);

    // The tag of automatic names, as "SPUM_", and the key of the sections of the index, as "SPUM".
    void setTags(const QString& strAutoMenuNameTag, const QString& strSectionTag);
    // The index, relative to the info path of a sequence.
    void setSettingFileName(const QString& strFileName);

    // The names of the saved results, as the last update found them, in the order of the index.
    QStringList getSavedMenuNames() const { return m_saved; }
    // Fills the combo box, without a signal from it, with the saved names of the sequence and, while m_bResultModified
    // is set, with the next automatic name with "(new)" behind, which is then chosen. Without it the entry that was
    // chosen stays so when its text, without "(new)", is still there; else the one at its place is. The sequence is
    // given by its id or its name: the id comes first, and of several with the name the one in the active window, else
    // the one of the last update. A sequence that is not open, has no folder or no readable index has no saved names.
    void updateSavedResultsForSelSeqId(const QString& strSequence);
    // Which of the buttons may be pressed at all, until the next update.
    void setStatusOfButtons(bool bDelete, bool bLoad, bool bSave);
    // Whether a result is on screen, modified or not.
    void setHasResult(bool bHasResult);

    // A result is on screen that has been neither saved nor dropped.
    bool m_bResultModified = false;

private Q_SLOTS:
    void updateButtons();

private:
    const CORVSequenceDataset* sequenceOf(const QString& strSequence) const;

    QPointer<QComboBox> m_pCombo;
    QPointer<QAbstractButton> m_pDelete;
    QPointer<QAbstractButton> m_pLoad;
    QPointer<QAbstractButton> m_pSave;
    QString m_strAutoMenuNameTag;
    QString m_strSectionTag;
    QString m_strFileName;
    QString m_strLastId; // of the sequence of the last update
    QStringList m_saved;
    bool m_bHasResult = false;
    bool m_bMayDelete = true;
    bool m_bMayLoad = true;
    bool m_bMaySave = true;
};

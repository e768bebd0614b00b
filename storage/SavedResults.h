// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QSet>
#include <QString>

#include <functional>
#include <optional>

class CORVSequenceDataset;
class CORVSpumKyvo;
class CPLSettingsFileWrapper;
class QByteArray;
class ResultsList;
class SavedResultsOwner;

// What became of a save.
enum class SaveOutcome
{
    Saved,
    // The name is in the index and points at the file of an earlier result with the same time stamp; this result is not
    // on disk.
    FileWasThere,
    Declined, // the user did not want to overwrite; nothing was changed
    NotSaved  // told in the log or by a message, but for a sequence that got no folder
};

// Saves the results of an engine beside its sequence, brings them back, deletes and renames them, and asks the user to
// keep one that would be lost. Results of one sequence may be saved by several programs at once: who changes the index
// holds a lock from reading it to writing it, and each file appears as a whole, the result ahead of the entry that
// points at it.
//
// All on the user-interface thread, with no run of the engine in progress. Messages go through CORVMessageBox and the
// log.
class SavedResults
{
public:
    // Both are borrowed.
    SavedResults(ResultsList& list, SavedResultsOwner& owner);

    // The engine of the current sequence; borrowed, may be null. What a program that was killed while it saved has left
    // half written beside the sequence goes.
    void setEngine(CORVSpumKyvo* pEngine);

    // Saves under the current text of the list, or under m_strAutoName while m_bUseAutoName is set.
    SaveOutcome onClickSaveResults();
    // As above, into the folder of a batch, which all sequences of the batch have a namesake of.
    SaveOutcome saveResultsBatch();
    // Loads the result of the current text. True when the engine shows it; otherwise it may have lost its earlier one.
    bool onClickLoadResults();
    // Deletes the result of the current text once the user has agreed; true when it is gone from the index.
    bool onClickDeleteResults();
    // Gives the result of the item at m_nEditedIndex the current text for its name. Also true when that name is taken,
    // which the user has been told then.
    bool renameResult();
    // Asks the user to keep a result that is about to be lost; false when they backed out, or without an engine. True
    // leaves the tree of result properties empty, but for a batch.
    bool askToSaveResults(bool bCanCancel);

    // The text of the list was edited.
    void onChangeResultsName(const QString& strName);
    // Qt::Key_Return renames and Qt::Key_Escape restores while the text is being edited; any other key does nothing.
    void onKeyPressed(int nKey);

    void showStatus(const QString& strText);
    QString batchStamp() const;
    // Whether a result saved at this moment would find the file of another in its place.
    bool fileOfNextSaveExists() const;

    QString m_strAutoName;          // in the list right after a run, with "(new)"
    bool m_bUseAutoName = false;    // the user named nothing
    bool m_bResultFromFile = false; // the result on screen is a saved one
    bool m_bBatchMode = false;      // nothing is asked
    QString m_strBatchStamp;        // never empty
    bool m_bEditingName = false;
    int m_nEditedIndex = -1;
    // Instead of FileWasThere a save waits for the next second, as one does that a question has led to. Off: a window
    // must not stand still.
    bool m_bWaitForFreeFile = false;
    // What time stamps are made of; tests set their own.
    std::function<QDateTime()> m_clock = QDateTime::currentDateTime;

private:
    // Where a save goes, and what the user has agreed to.
    struct Target
    {
        QString folder;
        bool batch = false;
        QSet<QString> overwrites;
    };
    // What the walk over the names of an index has come to.
    struct Entry
    {
        QString name;
        QString file;
        bool overwrite = false;
        bool ask = false; // the name is taken, and the user has not agreed yet
    };
    enum class Attempt
    {
        Saved,
        FileWasThere,
        Ask,
        Wait,
        IndexUnreadable,
        Failed
    };
    enum class Renaming
    {
        Renamed,
        Taken,
        IndexUnreadable,
        Refused
    };

    CORVSequenceDataset* dataset() const;
    // For "%1" the analysis name, for "%2" the sequence's id.
    QString worded(const char* pText) const;
    void inform(const QString& strText);
    void updateList(const CORVSequenceDataset* pSequence);

    // Steps of a save.
    SaveOutcome save(bool bBatch);
    SaveOutcome saveInto(Target& target, const QByteArray& document);
    bool prepareFolders(Target& target);
    bool askToOverwrite(const QString& strName);
    QString newFile(const Target& target) const;
    Attempt trySave(const Target& target, const QByteArray& document, Entry& entry);
    Entry chooseEntry(const Target& target, const CPLSettingsFileWrapper& index, const QString& strFile) const;
    void finishSave();
    void waitForNextSecond() const;

    // Steps of a load; each tells of its failure.
    bool loadResultNamed(const QString& strName, const CORVSequenceDataset& sequence);
    bool findResultFile(const QString& strName, const QString& strFolder, QString* pPath);
    bool readResultFile(const QString& strPath, QString* pText);
    bool loadFailed();
    bool handToEngine(const QString& strText);
    void showLoadedResult();

    bool deleteEntry(const QString& strFolder, const QString& strName);
    std::optional<QString> resultFileOf(const CPLSettingsFileWrapper& index, const QString& strFolder,
                                        const QString& strName);
    Renaming renameEntry(const QString& strFolder, const QString& strOld, const QString& strNew);
    bool hasResultToLose() const;
    bool askToKeep(bool bCanCancel);

    ResultsList& m_list;
    SavedResultsOwner& m_owner;
    CORVSpumKyvo* m_pEngine = nullptr;
};

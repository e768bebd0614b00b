// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/basis/AgreedAnswers.h"
#include "storage/ResultsListInMemory.h"
#include "storage/SavedResults.h"
#include "storage/SavedResultsOwner.h"

#include <QString>
#include <QStringList>

#include <optional>

class CORVSequenceDataset;
class CORVSpumKyvo;

// The results saved with the sequence of an engine, as commands work on them. Every operation throws Failure when it
// could not do what was asked; what the libraries have to say of it is in the log.
class ResultStore
{
public:
    // Borrows the engine. With `bAgreed` results are overwritten and deleted without a question.
    ResultStore(CORVSpumKyvo& engine, bool bAgreed);

    // Refuses, ahead of a long run, a name for it that cannot be saved under: one that is taken unless `bOverwrite`,
    // one of characters that do not fit a line. Empty stands for an automatic name.
    static void checkName(const CORVSequenceDataset& sequence, const QString& strName, bool bOverwrite);
    // Refuses, ahead of a long run, a sequence with which nothing can be saved.
    static void checkPlace(const CORVSequenceDataset& sequence);
    // The saved name that is meant, without regard to case; throws when there is none, telling those that there are.
    static QString findName(const CORVSequenceDataset& sequence, const QString& strName);
    // Names in the order of the index, and the file of each (empty when the index names none). Throws Failure
    // when the index names one outside the folder of results.
    static QStringList names(const CORVSequenceDataset& sequence);
    static QString pathOf(const CORVSequenceDataset& sequence, const QString& strName);

    // Saves the engine's result; the name it got: "(new)" at the end of one is taken off.
    QString save(const QString& strName);
    // The engine then shows the result.
    void load(const QString& strName);
    void remove(const QString& strName);
    void rename(const QString& strOld, const QString& strNew);

private:
    CORVSequenceDataset& sequence() const;

    CORVSpumKyvo& m_engine;
    std::optional<AgreedAnswers> m_agreed;
    ResultsListInMemory m_list;
    SavedResultsOwner m_owner;
    SavedResults m_results;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// What becomes of the sequences of a batch, a row each: which is next, how each ended, and what there is to tell of
// all. Knows no window and no clock.
class BatchSheet
{
public:
    enum class State
    {
        Waiting,
        Running,
        Done,
        PassedOver, // cannot be analysed; nothing was begun
        Failed,     // begun, or tried to open, and without a result
        Aborted,
        Left // the batch was aborted before its turn
    };

    struct Row
    {
        QString folder;
        State state = State::Waiting;
        QString reason;                 // why there is no result
        std::optional<double> residual; // part of the data's norm
        QStringList warnings;           // lines of the log, warnings and errors, in their order
        qint64 milliseconds = 0;
        QString name() const; // the last part of the folder
    };

    // What is known when the work on a sequence is over.
    struct End
    {
        QString openingError;   // it could not be opened
        bool takenUp = false;   // the tool began to work on it
        bool aborted = false;   // the run was
        bool saved = false;     // a result of this batch lies in its folder
        bool stillOpen = false; // its window stays
        QString whyNotTakenUp;
        std::optional<double> residual;
        qint64 milliseconds = 0;
    };

    BatchSheet() = default;
    // A folder that is named twice counts once.
    explicit BatchSheet(const QStringList& folders);

    const QList<Row>& rows() const { return m_rows; }
    // The row that is worked on, or -1.
    int running() const { return m_nRunning; }
    // The first that waits; -1 while one runs, when none is left and once the batch is aborted.
    int next() const;
    bool isOver() const;
    bool isAborted() const { return m_bAborted; }

    void begin(int nRow);
    // A line of the log at its level; while a sequence runs those of warnings and errors are its own.
    void note(int nLevel, const QString& strMessage);
    void end(const End& end);
    // Nothing begins any more. What runs is ended by whoever runs it.
    void abort();

    int count(State eState) const;
    static QString stateText(State eState);
    // The state, with the reason where there is one.
    static QString outcomeText(const Row& row);
    // In percent with three digits, empty where it is not known.
    static QString residualText(const Row& row);
    // "2 of 5 unmixed, 1 passed over, 1 failed, 1 to go; 3 warnings; 1:07".
    QString totals() const;
    // A line a sequence with its full folder, numbers with a point; the last names the totals.
    QByteArray csv() const;

private:
    QList<Row> m_rows;
    int m_nRunning = -1;
    bool m_bAborted = false;
    QString m_strLastError; // of the row that runs
};

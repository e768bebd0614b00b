// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvutils/LogSinks.h"
#include "workbench/application/BatchSheet.h"

#include <QElapsedTimer>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QVector>

class CORVDataset;
class CORVSequenceDataset;
class LogFeed;
class OpenDocuments;
class PaletteControl;
class PluginHost;
class RunLock;

// Opens the sequences of a batch one after the other; the tool unmixes, saves and closes each while it is told of it.
// The next comes by the event loop, when the window of the one before has gone. All parts are borrowed and outlive this
// object.
class BatchRun : public QObject
{
    Q_OBJECT

public:
    struct Parts
    {
        OpenDocuments& documents;
        PluginHost& plugin;
        PaletteControl& palette;
        RunLock& lock;
        LogFeed& log;
    };

    explicit BatchRun(const Parts& parts, QObject* pParent = nullptr);

    // Everything else is locked until the end. The tool has its spectra, and none of the sequences is open.
    void start(const QStringList& folders, bool bAdaptiveBackground);
    bool isRunning() const { return m_ePhase != Phase::Idle; }
    // Between two sequences windows close without a question.
    bool isClosing() const { return m_ePhase == Phase::Closing; }
    const BatchSheet& sheet() const { return m_sheet; }
    // Time since the beginning of the sequence that runs.
    qint64 elapsed() const { return m_clock.isValid() ? m_clock.elapsed() : 0; }

public Q_SLOTS:
    // Ends the run on the sequence of the moment; the batch goes on with the next.
    void abortSequence();
    // Ends that, and begins nothing more.
    void abortAll();

Q_SIGNALS:
    void started();
    // A row of the sheet, or all of them for -1.
    void changed(int nRow);
    void ended();

private:
    enum class Phase
    {
        Idle,
        Between, // the next begins with the event loop
        Running, // the tool is at work, below on the stack
        Closing
    };

    void beginNext();
    void process(const QString& strFolder);
    void awaitClosing();
    void finishSequence(bool bStillOpen);
    void finish();
    void takeRecords(const QVector<orv::LogRecord>& records);
    void onWindowsWanted(bool bRestored);

    Parts m_parts;
    BatchSheet m_sheet;
    Phase m_ePhase = Phase::Idle;
    QTimer m_timer; // of the next step
    int m_nTurns = 0;
    QElapsedTimer m_clock;
    bool m_bAbort = false;          // of this sequence is wanted
    bool m_bRan = false;            // its run has begun
    BatchSheet::End m_end;          // of the sequence of the moment, as far as it is known
    QMap<QString, qint64> m_before; // files of results, with their times
    QList<CORVDataset*> m_datasetsBefore;
    QPointer<CORVSequenceDataset> m_pSequence;
    QPointer<QWidget> m_pFrame;
};

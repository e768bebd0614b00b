// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvutils/LogSinks.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QVector>

class CORVSequenceDataset;
class LogFeed;
class OpenDocuments;
class PaletteDock;
class PluginHost;
class ProcessWatch;
class RunLock;

// Keeps plug-in and panel in step with what is open and in front, and locks the window while the plug-in runs
// something. All parts are borrowed and outlive this object.
class PaletteControl : public QObject
{
    Q_OBJECT

public:
    struct Parts
    {
        PluginHost& plugin;
        PaletteDock& dock;
        OpenDocuments& documents;
        RunLock& lock;
        ProcessWatch& processes;
        LogFeed& log;
    };

    explicit PaletteControl(const Parts& parts, QObject* pParent = nullptr);

    // Loads the plug-in and tells it what is open. False leaves the reason in the panel.
    bool load(const QStringList& folders);
    // The palette of a plug-in that was loaded by other means.
    void takeUp();
    // Tells the plug-in what is in front.
    void announce();
    // The sequence that the plug-in was told last: its result is the one that is at stake, also while a map is in
    // front.
    CORVSequenceDataset* told() const { return m_pTold; }

    // In a batch the plug-in works on whatever sequence it is told of. So it is told of one only, and for anything else
    // that comes to the front that there is nothing; at the end of what is in front then.
    void beginBatch();
    void setBatchSequence(CORVSequenceDataset* pSequence);
    void endBatch();
    // Why the plug-in has not taken up what is in front.
    QString reason() const;

private:
    void onSequenceRemoved(CORVSequenceDataset* pSequence);
    void onTabChanged(const QString& strTab);
    void onWindowsWanted(bool bRestored);
    void takeRecords(const QVector<orv::LogRecord>& records);
    // After a run, once nobody is asked anything any more.
    void announceWhenIdle();
    void arrange();

    Parts m_parts;
    CORVSequenceDataset* m_pTold = nullptr;
    QString m_strComplaint;
    QTimer m_retry;
    bool m_bBatch = false;
    CORVSequenceDataset* m_pBatchSequence = nullptr; // only compared
};

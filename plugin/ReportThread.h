// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/results/Provenance.h"

#include <QImage>
#include <QString>
#include <QThread>

#include <atomic>

class CORVSpumKyvo;

// What a report says beside the result itself, and where it goes.
struct ReportRequest
{
    QString sequenceName;
    QString note;
    QImage composite; // as the window shows it; null without one
    QString folder;   // a new one
    // Its files are hashed as the report is written.
    Provenance provenance;
};

// Writes the files of an engine's present result as the command line writes them (maps, pictures, spectra, numbers and
// a page for a browser), all or none, on a thread of its own, as those of a scan of many spots take their time. The
// engine is borrowed and must not change before the thread has ended.
class ReportThread : public QThread
{
    Q_OBJECT

public:
    ReportThread(const CORVSpumKyvo& engine, ReportRequest request);
    // Stops and waits.
    ~ReportThread() override;

    // The thread ends soon, and leaves nothing.
    void stop() { m_bStop = true; }
    // Share of the work that is done, from 0 to 1.
    double fraction() const { return m_dFraction; }
    // Once the thread has ended: why there is no report, for the user; empty where there is one.
    QString reason() const { return m_strReason; }
    // Once the thread has ended: whether stop() has ended it ahead of time.
    bool isStopped() const { return m_bStopped; }

protected:
    void run() override;

private:
    void write();
    Provenance hashed(Provenance provenance) const;

    const CORVSpumKyvo& m_engine;
    const ReportRequest m_request;
    std::atomic<bool> m_bStop{false};
    std::atomic<double> m_dFraction{0.0};
    bool m_bStopped = false;
    QString m_strReason;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/results/Provenance.h"

#include <QImage>
#include <QString>

class CORVSpumKyvo;
class JobMonitor;

// What a report says beside the result itself, and where it goes.
struct ReportRequest
{
    QString sequenceName;
    QString note;
    QImage composite; // as the window shows it; null without one
    QString folder;   // a new one
    // Its files are found and hashed as the report is written.
    Provenance provenance;
    AnalysedFolders analysed;
};

// Writes the files of an engine's present result as the command line writes them (maps, pictures, spectra, numbers and
// a page for a browser), all or none. Reads no pixels of a dataset, so that any thread can do it while the engine does
// not change. Throws Failure.
void writeReportOfResult(const CORVSpumKyvo& engine, const ReportRequest& request, JobMonitor& monitor);

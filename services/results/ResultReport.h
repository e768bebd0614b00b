// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/pictures/SpectrumPlot.h"
#include "services/results/ReportContent.h"

#include <QString>
#include <QStringList>

class CORVSpumKyvo;
struct ResultFacts;

// What a report says besides what its engine and summary hold.
struct ReportFrame
{
    QString sequenceName; // as shown
    QString note;
    QString command; // that made the result
    QString made;    // date and time
    QList<ReportFigure> composites;
    QList<ReportFigure> maps;
    QList<SpectrumPlot> plots; // below that of the spectra
};

// The report of a finished unmixing.
ReportContent contentOfReport(const CORVSpumKyvo& engine, const ResultFacts& facts, const ReportFrame& frame);

// Arguments as a line that a POSIX shell takes apart again.
QString shellLine(const QStringList& arguments);

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/analysis/MaskOption.h"

#include <QString>

class QCommandLineParser;

// Which images and pixels of a sequence an analysis takes, and where its results go.
struct AnalysisRequest
{
    QString sequence;
    QString select; // empty: every image
    MaskOption mask;
    int unit = -1;   // -1: the best that the images have
    int binning = 0; // 0: the most common of the images
    QString out;     // empty: beside the images
    bool force = false;
};

// Declares SEQ, --select, --mask, --threshold, --unit, --binning and --out. `strMaskDefault` tells what serves without
// --mask, `strOutDefault` the folder that serves without --out.
void declareAnalysisOptions(QCommandLineParser& parser, const QString& strMaskDefault, const QString& strOutDefault);

// Reads them; --force too. `strCommand` is named in the messages. Throws CliFailure (usage).
AnalysisRequest analysisRequestOf(const QCommandLineParser& parser, const QString& strCommand,
                                  MaskOption::Kind eMaskDefault);

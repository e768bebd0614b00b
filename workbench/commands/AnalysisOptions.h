// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/analysis/AnalysisRequest.h"

#include <QString>

class QCommandLineParser;

// Declares SEQ, --select, --mask, --threshold, --unit, --binning and --out. `strMaskDefault` tells what serves without
// --mask, `strOutDefault` the folder that serves without --out.
void declareAnalysisOptions(QCommandLineParser& parser, const QString& strMaskDefault, const QString& strOutDefault);

// Reads them; --force too. `strCommand` is named in the messages. Throws Failure (bad request).
AnalysisRequest analysisRequestOf(const QCommandLineParser& parser, const QString& strCommand,
                                  MaskRequest::Kind eMaskDefault);

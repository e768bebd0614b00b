// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/analysis/AnalysisRequest.h"

#include <QString>

class CommandParser;
class QCommandLineParser;

// Declares SEQ and --out; `strOutDefault` tells the folder that serves without it.
void declarePlaces(CommandParser& parser, const QString& strOutDefault);
// Declares --select, --mask, --threshold, --unit and --binning; `strMaskDefault` tells what serves without --mask.
void declareImageOptions(CommandParser& parser, const QString& strMaskDefault);

// Reads all of them; --force too. `strCommand` is named in the messages. Throws Failure (bad request).
AnalysisRequest analysisRequestOf(const QCommandLineParser& parser, const QString& strCommand,
                                  MaskRequest::Kind eMaskDefault);

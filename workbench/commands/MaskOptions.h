// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/analysis/MaskRequest.h"

#include <QString>

class CommandParser;
class QCommandLineParser;

// Declares --mask and --threshold; `strDefaults` tells what serves without --mask.
void declareMaskOptions(CommandParser& parser, const QString& strDefaults);

// The option "none", "auto", "rect:X,Y,W,H", "ellipse:X,Y,W,H" or a file; `eDefault` without one. A file of such a name
// is reached with a folder in front ("./auto"). Throws Failure (bad request) for numbers that are none, and for a
// threshold without a mask of the photograph.
MaskRequest maskOptionOf(const QCommandLineParser& parser, MaskRequest::Kind eDefault);
// Whether such a text means a file, of whatever name there is one.
bool namesMaskFile(const QString& strText);

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/analysis/AutomaticRequest.h"

#include <QString>
#include <QStringList>

class CommandParser;
class QCommandLineParser;

// Declares --components, --any-name, --ncomponents, --beyond-six, --no-refinement, --constraints, --no-constraints and
// --decay.
void declareAutomaticOptions(CommandParser& parser);
// The names of those that were given.
QStringList givenAutomaticOptions(const QCommandLineParser& parser);
// Reads them. Throws Failure (bad request) for options that exclude each other, empty names, and numbers that are none.
AutomaticRequest automaticRequestOf(const QCommandLineParser& parser);

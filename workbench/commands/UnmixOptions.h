// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class CommandParser;
class QCommandLineParser;
struct UnmixRequest;

// Declares what an unmixing may be told, but for its sequence and the folder of its results.
void declareUnmixOptions(CommandParser& parser);
// Reads that and both of those. Throws Failure (bad request); nothing of the sequence is looked at.
UnmixRequest unmixRequestOf(const QCommandLineParser& parser);

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

class CommandParser;
class QCommandLineParser;

// Declares an option that takes a value.
void addValueOption(CommandParser& parser, const char* pName, const QString& strText, const char* pValue);
// The same with the words that there are.
void addChoiceOption(CommandParser& parser, const char* pName, const QString& strText, const char* pValue,
                     const QStringList& words);
// Declares one that takes none.
void addFlag(CommandParser& parser, const char* pName, const QString& strText);

// The unit that --unit names, -1 without that option; refuses other words.
int unitOption(const QCommandLineParser& parser, const char* pCommand);

// The bytes that --max-memory allows, in GiB on the command line; nothing without that option. Refuses what is no
// number above 0.
std::optional<qint64> memoryOption(const QCommandLineParser& parser, const char* pCommand);

// Throws Failure (bad request): the sentence, and where the options of that command are told.
[[noreturn]] void refuseUsage(const char* pCommand, const QString& strText);

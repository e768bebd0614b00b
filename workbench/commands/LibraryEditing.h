// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

class CliSession;
class CommandParser;
class QCommandLineParser;

// What `spum library` does beside listing and showing; each function is the action of its name with the arguments
// behind it, whose number is right.
namespace LibraryEditing {

void declareOptions(CommandParser& parser);

void save(const QCommandLineParser& parser, const QStringList& arguments, CliSession& session);
void import(const QCommandLineParser& parser, const QStringList& arguments, CliSession& session);
void append(const QCommandLineParser& parser, const QStringList& arguments, CliSession& session);
void merge(const QCommandLineParser& parser, const QStringList& arguments, CliSession& session);
void rename(const QCommandLineParser& parser, const QStringList& arguments, CliSession& session);
void remove(const QCommandLineParser& parser, const QStringList& arguments, CliSession& session);
void writeTemplate(const QCommandLineParser& parser, const QStringList& arguments, CliSession& session);

} // namespace LibraryEditing

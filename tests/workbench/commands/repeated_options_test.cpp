// SPDX-License-Identifier: GPL-3.0-or-later
// Of an option that comes twice both values count, or the second is refused; none is lost in silence.
#include "workbench/commands/CliSession.h"
#include "workbench/commands/Command.h"
#include "workbench/commands/CommandLine.h"
#include "workbench/commands/CommandParser.h"

#include <QSet>

#include <gtest/gtest.h>

namespace {

struct DeclaredOptions
{
    QStringList withValue;
    QStringList flags;
};

DeclaredOptions optionsOf(const CommandParser& parser)
{
    DeclaredOptions options;
    for (const CommandManual::Group& group : parser.groups()) {
        for (const CommandManual::Entry& entry : group.entries) {
            (entry.value.isEmpty() ? options.flags : options.withValue).append(entry.names.last());
        }
    }
    return options;
}

// What is refused of a command line with that option twice.
QString refused(const Command& command, const QString& strOption, bool bValue)
{
    CommandParser parser;
    CliSession::declareOptions(parser);
    command.declare(parser);
    const QString given = QStringLiteral("--") + strOption;
    const QStringList once = bValue ? QStringList{given, "a"} : QStringList{given};
    EXPECT_TRUE(parser.parse(QStringList{"spum", "x"} + once)) << qPrintable(parser.errorText());
    EXPECT_EQ(CommandLine::repeatedOption(command, parser), QString()) << qPrintable(strOption);
    EXPECT_TRUE(parser.parse(QStringList{"spum"} + once + QStringList{"x"} + once));
    return CommandLine::repeatedOption(command, parser);
}

// Options whose values all count.
const QSet<QString> taken = {"library from",   "library sequence", "library probes",
                             "library region", "library spectrum", "roi result"};

} // namespace

TEST(RepeatedOptionsTest, EveryOptionOfEveryCommandTakesBothOrRefusesTheSecond)
{
    int seen = 0;
    QSet<QString> repeatable;
    for (const auto& command : CommandLine::commands()) {
        CommandParser parser;
        CliSession::declareOptions(parser);
        command->declare(parser);
        const DeclaredOptions options = optionsOf(parser);
        EXPECT_TRUE(options.withValue.contains("log")) << qPrintable(command->name());
        EXPECT_TRUE(options.flags.contains("json")) << qPrintable(command->name());
        for (const QString& option : options.withValue) {
            const QString name = command->name() + ' ' + option;
            EXPECT_EQ(refused(*command, option, true), taken.contains(name) ? QString() : option) << qPrintable(name);
            ++seen;
        }
        // To ask for the same twice is to ask for it.
        for (const QString& option : options.flags) {
            EXPECT_EQ(refused(*command, option, false), QString()) << qPrintable(option);
        }
        for (const QString& option : command->repeatableOptions()) {
            EXPECT_TRUE(options.withValue.contains(option)) << qPrintable(option);
            repeatable.insert(command->name() + ' ' + option);
        }
    }
    EXPECT_EQ(repeatable, taken);
    EXPECT_GT(seen, 60);
}

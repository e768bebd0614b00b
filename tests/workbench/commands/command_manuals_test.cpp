// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/CommandManuals.h"

#include "workbench/commands/CliSession.h"
#include "workbench/commands/Command.h"
#include "workbench/commands/CommandLine.h"
#include "workbench/commands/CommandParser.h"

#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

namespace {

// As Qt's own help has them, which knows what is parsed.
QSet<QString> parsedNames(const QCommandLineParser& parser)
{
    static const QRegularExpression line(QStringLiteral(R"(^ {2}(?:-\w, )*-(?:-([a-z-]+)|(\w)(?= |$)))"),
                                         QRegularExpression::MultilineOption);
    QSet<QString> names;
    auto matches = line.globalMatch(parser.helpText());
    while (matches.hasNext()) {
        const auto match = matches.next();
        names.insert(match.captured(1) + match.captured(2));
    }
    return names;
}

} // namespace

// An option that was declared past the table would be parsed and told nowhere.
TEST(CommandManualsTest, EveryOptionThatIsParsedIsInTheTable)
{
    for (const auto& command : CommandLine::commands()) {
        CommandParser parser;
        CliSession::declareOptions(parser);
        command->declare(parser);
        const QStringList told = parser.longNames();
        EXPECT_EQ(QSet<QString>(told.begin(), told.end()), parsedNames(parser)) << qPrintable(command->name());
        EXPECT_EQ(told.size(), QSet<QString>(told.begin(), told.end()).size()) << qPrintable(command->name());
    }
}

TEST(CommandManualsTest, EveryCommandHasExamplesOfItself)
{
    for (const auto& command : CommandLine::commands()) {
        const auto examples = command->examples();
        EXPECT_FALSE(examples.isEmpty()) << qPrintable(command->name());
        for (const CommandManual::Example& example : examples) {
            EXPECT_TRUE(example.command.startsWith("spum " + command->name() + ' ')) << qPrintable(example.command);
            EXPECT_TRUE(example.text.endsWith('.')) << qPrintable(example.text);
        }
    }
}

TEST(CommandManualsTest, EveryEntryHasAText)
{
    for (const CommandManual& command : manualOfProgram(CommandLine::commands()).commands) {
        for (const CommandManual::Entry& argument : command.arguments) {
            EXPECT_FALSE(argument.text.isEmpty()) << qPrintable(command.name + ' ' + argument.value);
        }
        for (const CommandManual::Group& group : command.options) {
            for (const CommandManual::Entry& option : group.entries) {
                EXPECT_TRUE(option.text.endsWith('.') || option.text.endsWith(')'))
                    << qPrintable(command.name + ' ' + option.names.last() + ": " + option.text);
            }
        }
    }
}

// What a shell completes. An option whose value is one of a few words tells them.
TEST(CommandManualsTest, OptionsOfAFewWordsOfferThem)
{
    int nOptions = 0;
    for (const CommandManual& command : manualOfProgram(CommandLine::commands()).commands) {
        for (const CommandManual::Group& group : command.options) {
            for (const CommandManual::Entry& option : group.entries) {
                if (QStringList{"KIND", "UNIT", "METHOD", "FORMAT", "WHICH", "TABLE"}.contains(option.value)) {
                    EXPECT_GE(option.words.size(), 2) << qPrintable(command.name + ' ' + option.names.last());
                    for (const QString& word : option.words) {
                        EXPECT_FALSE(word.contains(' ')) << qPrintable(word);
                    }
                    ++nOptions;
                }
            }
        }
    }
    EXPECT_GE(nOptions, 14);
}

TEST(CommandManualsTest, TheCommandsOwnOptionsComeFirst)
{
    const CommandManual info = manualOfProgram(CommandLine::commands()).commands.at(2);
    ASSERT_EQ(info.name, "spum info");
    EXPECT_EQ(info.usage, "[options] SEQ");
    const CommandManual unmix = manualOfProgram(CommandLine::commands()).commands.at(5);
    ASSERT_EQ(unmix.name, "spum unmix");
    EXPECT_EQ(unmix.options.last().title, "Options of every command");
    EXPECT_EQ(unmix.options.first().entries.first().names, QStringList{"method"});
}

TEST(CommandManualsTest, WhatMayBeRepeatedIsMarked)
{
    const QStringList repeated = {"spum library from",   "spum library sequence", "spum library probes",
                                  "spum library region", "spum library spectrum", "spum roi result"};
    for (const CommandManual& command : manualOfProgram(CommandLine::commands()).commands) {
        for (const CommandManual::Group& group : command.options) {
            for (const CommandManual::Entry& option : group.entries) {
                const QString name = command.name + ' ' + option.names.last();
                EXPECT_EQ(option.repeatable, repeated.contains(name)) << qPrintable(name);
            }
        }
    }
}

TEST(CommandManualsTest, WordsOfAnArgumentAreTaken)
{
    CommandParser parser;
    parser.addPositionalArgument(QStringLiteral("list|show"), QStringLiteral("What to do."));
    parser.addOption({QStringLiteral("unit"), QStringLiteral("The unit."), QStringLiteral("UNIT")},
                     {QStringLiteral("counts")});
    EXPECT_EQ(parser.arguments().first().words, (QStringList{"list", "show"}));
    EXPECT_EQ(parser.groups().first().entries.first().words, QStringList{"counts"});
    EXPECT_EQ(parser.usage(), "[options] list|show");
    EXPECT_TRUE(parser.parse({"spum", "--unit", "counts", "show"}));
    EXPECT_EQ(parser.value(QStringLiteral("unit")), "counts");
}

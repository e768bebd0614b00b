// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/manual/helpText.h"

#include "workbench/manual/CommandManual.h"
#include "workbench/manual/aManual.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

TEST(HelpTextTest, TellsUsageArgumentsOptionsAndExamplesInThatOrder)
{
    EXPECT_EQ(helpText(aManual(), 80),
              QStringLiteral("Usage: tool paint [options] PICTURE\n"
                             "Paint a picture.\n"
                             "\n"
                             "Arguments:\n"
                             "  PICTURE  What to paint.\n"
                             "\n"
                             "Options:\n"
                             "  --color <COLOR>  A colour: red or green. It's \"as is\", with a back\\slash and 5\n"
                             "                   ~ 6.\n"
                             "  --out <FILE>     .hidden files are written, too.\n"
                             "\n"
                             "Options of all:\n"
                             "  -h, --help  Tell the options.\n"
                             "\n"
                             "Examples:\n"
                             "  tool paint house --color red\n"
                             "      A red house.\n"));
}

TEST(HelpTextTest, NoLineIsWiderThanItMayBe)
{
    for (const int columns : {40, 57, 80, 200}) {
        const QString text = helpText(aManual(), columns);
        for (const QString& line : text.split('\n')) {
            EXPECT_LE(line.size(), columns) << qPrintable(line);
            EXPECT_FALSE(line.endsWith(' ')) << qPrintable(line);
        }
    }
}

// Whatever the width, the same words stand in the text, none of them cut.
TEST(HelpTextTest, WordsAreNeverBroken)
{
    CommandManual manual = aManual();
    manual.options[0].entries[0].text =
        QStringLiteral("rect:x,y,width,height,and-a-word-that-is-wider-than-the-column-is");
    const QStringList words = helpText(manual, 10000).split(QRegularExpression("\\s+"));
    for (const int columns : {0, 40, 41, 79, 80}) {
        EXPECT_EQ(helpText(manual, columns).split(QRegularExpression("\\s+")), words) << columns;
    }
}

TEST(HelpTextTest, ALongTermHasItsTextBelow)
{
    CommandManual manual = aManual();
    manual.options[0].entries[1].value = QStringLiteral("A-VALUE-WITH-A-LONG-NAME");
    EXPECT_TRUE(
        helpText(manual, 80).contains("\n  --out <A-VALUE-WITH-A-LONG-NAME>\n                   .hidden files"));
}

TEST(HelpTextTest, AProgramTellsItsCommandsAndNotes)
{
    CommandManual program;
    program.name = QStringLiteral("tool");
    program.usage = QStringLiteral("COMMAND");
    program.summary = QStringLiteral("Makes things.");
    program.commands = {aManual()};
    program.notes = QStringList{QStringLiteral("A note.")};
    EXPECT_EQ(helpText(program, 80), QStringLiteral("Usage: tool COMMAND\nMakes things.\n\nCommands:\n  paint  Paint a "
                                                    "picture.\n\nA note.\n"));
}

TEST(HelpTextTest, AnEmptyTextIsEmpty)
{
    EXPECT_EQ(wrappedText(QString(), 80, 4), QString());
    EXPECT_EQ(wrappedText(QStringLiteral("   "), 80, 4), QString());
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/optionWords.h"

#include "services/results/ResultReport.h"

#include <gtest/gtest.h>

namespace {

QStringList wordsOf(const QString& strLine)
{
    QStringList words;
    QString error;
    EXPECT_TRUE(optionWords(strLine, &words, &error)) << qPrintable(error);
    return words;
}

QString errorOf(const QString& strLine)
{
    QStringList words;
    QString error;
    EXPECT_FALSE(optionWords(strLine, &words, &error)) << qPrintable(strLine);
    return error;
}

} // namespace

TEST(OptionWordsTest, BlanksSplitAndQuotesKeepTogether)
{
    EXPECT_EQ(wordsOf("  --unit radiance\t--mask none "), (QStringList{"--unit", "radiance", "--mask", "none"}));
    EXPECT_EQ(wordsOf("--note 'two words' --components \"Food,Dye \\\"A\\\"\""),
              (QStringList{"--note", "two words", "--components", "Food,Dye \"A\""}));
    EXPECT_EQ(wordsOf("--note=a\\ b 'c\\d' \"e\\f\""), (QStringList{"--note=a b", "c\\d", "e\\f"}));
    EXPECT_EQ(wordsOf("a'b'\"c\" ''"), (QStringList{"abc", ""}));
    EXPECT_EQ(wordsOf(" "), QStringList());
}

TEST(OptionWordsTest, WhatHasNoEndIsRefused)
{
    EXPECT_EQ(errorOf("--note 'a"), "a quote is not closed");
    EXPECT_EQ(errorOf("--note \"a\\\""), "a quote is not closed");
    EXPECT_EQ(errorOf("a \\"), "nothing follows the last backslash");
}

TEST(OptionWordsTest, TheLineOfAReportIsTakenApartAgain)
{
    const QStringList words = {"--note", "it's \"so\"", "", "a\\b", QString::fromUtf8("M\xC3\xA4use $HOME *")};
    EXPECT_EQ(wordsOf(shellLine(words)), words);
}

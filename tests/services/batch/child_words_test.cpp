// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/childWords.h"

#include <gtest/gtest.h>

TEST(ChildWordsTest, TheLastLineTellsWhyItFailed)
{
    const ChildWords words =
        childWords("spum: warning: odd\nspum: SpumKyvo says more\nspum: seq: is no sequence\n", true);
    EXPECT_EQ(words.message, "seq: is no sequence");
    EXPECT_EQ(words.warnings, (QStringList{"odd", "SpumKyvo says more"}));
}

TEST(ChildWordsTest, WhatIsSaidInSuccessIsAWarning)
{
    const ChildWords words = childWords("spum: warning: odd\nspum: logged\nspum: warning: odd\n", false);
    EXPECT_EQ(words.message, QString());
    EXPECT_EQ(words.warnings, (QStringList{"odd", "logged"}));
    EXPECT_EQ(childWords("", false).warnings, QStringList());
    EXPECT_EQ(childWords("", true).message, QString());
}

TEST(ChildWordsTest, ALineThatGoesOnBelongsToTheOneBefore)
{
    EXPECT_EQ(childWords("spum: two\n  rows\n", true).message, "two rows");
    EXPECT_EQ(childWords("terminate called\n", true).message, "terminate called");
}

TEST(ChildWordsTest, AnEndWithoutWordsIsToldByItsNumber)
{
    EXPECT_EQ(silentEndText(7, false), "the program ended with status 7 and without a word");
    EXPECT_EQ(silentEndText(11, true), "the program was ended by signal 11");
    EXPECT_EQ(silentEndText(9, true), "the program was ended by signal 9, as the system does when memory runs out");
}

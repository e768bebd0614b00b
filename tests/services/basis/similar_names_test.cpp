// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/similarNames.h"

#include <gtest/gtest.h>

namespace {

const QStringList names = {"simulate", "import", "info", "export", "unmix", "compare", "--components", "--ncomponents"};

} // namespace

TEST(SimilarNamesTest, TheNearestComesFirst)
{
    EXPECT_EQ(similarNames("unmx", names, 1), QStringList{"unmix"});
    EXPECT_EQ(similarNames("AF 750", {"Cy7", "AF-750", "AF 700"}, 2), (QStringList{"AF-750", "AF 700"}));
    EXPECT_EQ(similarNames("x", {}, 3), QStringList());
}

TEST(SimilarNamesTest, OneLetterWrongTooManyTooFewOrSwappedIsASlip)
{
    for (const char* slip : {"unmux", "unmixx", "unix", "umnix", "unmxi", "Unmix", "UNMIX", "-unmix"}) {
        EXPECT_EQ(meantNames(slip, names), QStringList{"unmix"}) << slip;
    }
}

TEST(SimilarNamesTest, ABeginningOfThreeLettersIsMeant)
{
    EXPECT_EQ(meantNames("sim", names), QStringList{"simulate"});
    EXPECT_EQ(meantNames("comp", names), (QStringList{"compare", "--components"}));
    EXPECT_EQ(meantNames("si", names), QStringList());
}

TEST(SimilarNamesTest, WhatResemblesNothingIsMeantForNothing)
{
    for (const char* word : {"", "x", "bogus", "--", "zzzzzzzzzz", "\xc3\xa9"}) {
        EXPECT_EQ(meantNames(QString::fromUtf8(word), names), QStringList()) << word;
    }
}

TEST(SimilarNamesTest, TheSentenceEndsWithAQuestionOrAStop)
{
    EXPECT_EQ(meantNamesText({}), ".");
    EXPECT_EQ(meantNamesText({"A"}), "; did you mean A?");
    EXPECT_EQ(meantNamesText({"A", "B"}), "; did you mean A or B?");
    EXPECT_EQ(meantNamesText({"A", "B", "C"}), "; did you mean A, B or C?");
}

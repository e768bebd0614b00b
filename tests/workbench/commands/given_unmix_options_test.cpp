// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/givenUnmixOptions.h"

#include "workbench/commands/ParsedOptions.h"
#include "workbench/commands/UnmixOptions.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

// Files of those names, and the options of a batch's row that lies beside them.
class GivenUnmixOptionsTest : public ::testing::Test
{
protected:
    void make(const QString& strName) const
    {
        QFile file(m_folder.filePath(strName));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    QStringList given(const QStringList& arguments) const
    {
        const ParsedOptions options(declareUnmixOptions, arguments);
        QStringList texts;
        for (const BatchOption& option : givenUnmixOptions(options.parser(), m_folder.path())) {
            texts.append(option.argument());
        }
        return texts;
    }

    QTemporaryDir m_folder;
};

TEST_F(GivenUnmixOptionsTest, FilesBecomeAbsolute)
{
    make("my mask.png");
    make("dyes.csv");
    EXPECT_EQ(
        given({"--mask", "my mask.png", "--library=dyes.csv"}),
        (QStringList{"--mask=" + m_folder.filePath("my mask.png"), "--library=" + m_folder.filePath("dyes.csv")}));
}

TEST_F(GivenUnmixOptionsTest, AWordOfTheMaskIsNoFileOfThatName)
{
    for (const char* name : {"auto", "none", "rect:1,2,3,4"}) {
        make(name);
        EXPECT_EQ(given({"--mask", name}), QStringList(QStringLiteral("--mask=") + name));
    }
    EXPECT_EQ(given({"--mask", "./auto"}), QStringList("--mask=" + m_folder.filePath("auto")));
}

TEST_F(GivenUnmixOptionsTest, WhatLastsIsNotTheNameOfASavedResult)
{
    const ParsedOptions options(declareUnmixOptions, {"--ncomponents", "3", "--save", "kept", "--pdf"});
    EXPECT_EQ(lastingUnmixArguments(options.parser()), (QStringList{"--ncomponents=3", "--pdf", "--no-refinement"}));
}

TEST_F(GivenUnmixOptionsTest, ARefinementIsRefusedOnceAndOnlyWhereOneWas)
{
    const auto lasting = [](const QStringList& arguments) {
        return lastingUnmixArguments(ParsedOptions(declareUnmixOptions, arguments).parser());
    };
    EXPECT_EQ(lasting({"--ncomponents", "3"}), QStringList{"--ncomponents=3"});
    EXPECT_EQ(lasting({"--components", "TissueAF", "--save", "kept"}), QStringList{"--components=TissueAF"});
    EXPECT_EQ(lasting({"--ncomponents", "3", "--no-refinement", "--save", "kept"}).count("--no-refinement"), 1);
}

} // namespace

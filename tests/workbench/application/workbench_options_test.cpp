// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/WorkbenchOptions.h"

#include <gtest/gtest.h>

namespace {

TEST(WorkbenchOptionsTest, WhatIsNoOptionIsToBeOpened)
{
    const auto options = WorkbenchOptions::parse({"mouse", "my cells", "-"});
    EXPECT_EQ(options.paths, QStringList({"mouse", "my cells", "-"}));
    EXPECT_TRUE(options.error.isEmpty());
}

TEST(WorkbenchOptionsTest, TheFolderOfThePlugInComesInEitherForm)
{
    EXPECT_EQ(WorkbenchOptions::parse({"--plugins", "here", "mouse"}).pluginFolder, QString("here"));
    EXPECT_EQ(WorkbenchOptions::parse({"--plugins=there"}).pluginFolder, QString("there"));
    EXPECT_EQ(WorkbenchOptions::parse({"--plugins", "here", "mouse"}).paths, QStringList("mouse"));
}

TEST(WorkbenchOptionsTest, AFolderThatIsNotNamedIsAWrongCall)
{
    EXPECT_EQ(WorkbenchOptions::parse({"--plugins"}).error, QString("--plugins needs the name of a folder"));
    EXPECT_EQ(WorkbenchOptions::parse({"--plugins="}).error, QString("--plugins needs the name of a folder"));
}

TEST(WorkbenchOptionsTest, LogAndTraceGoToFiles)
{
    const auto options = WorkbenchOptions::parse({"--log", "a.log", "--trace=b.txt", "mouse"});
    EXPECT_EQ(options.logFile, QString("a.log"));
    EXPECT_EQ(options.traceFile, QString("b.txt"));
    EXPECT_EQ(options.paths, QStringList("mouse"));
    EXPECT_EQ(WorkbenchOptions::parse({"--trace"}).error, QString("--trace needs the name of a file"));
}

TEST(WorkbenchOptionsTest, AnUnknownOptionIsTold)
{
    EXPECT_EQ(WorkbenchOptions::parse({"mouse", "--zoom"}).error, QString("there is no option \"--zoom\""));
    EXPECT_EQ(WorkbenchOptions::parse({"--pluginsfolder"}).error, QString("there is no option \"--pluginsfolder\""));
}

TEST(WorkbenchOptionsTest, BehindTwoDashesEverythingIsAPath)
{
    EXPECT_EQ(WorkbenchOptions::parse({"--", "--help", "--plugins"}).paths, QStringList({"--help", "--plugins"}));
    EXPECT_FALSE(WorkbenchOptions::parse({"--", "--help"}).help);
}

// One that is told and not taken would be a wrong call.
TEST(WorkbenchOptionsTest, EveryOptionThatIsToldIsTaken)
{
    int nOptions = 0;
    for (const CommandManual::Group& group : WorkbenchOptions::manual().options) {
        for (const CommandManual::Entry& option : group.entries) {
            for (const QString& name : option.names) {
                QStringList call(QString(name.size() == 1 ? "-" : "--") + name);
                call += option.value.isEmpty() ? QStringList() : QStringList("x");
                EXPECT_EQ(WorkbenchOptions::parse(call).error, QString()) << qPrintable(name);
                EXPECT_EQ(WorkbenchOptions::parse(call).paths, QStringList()) << qPrintable(name);
                ++nOptions;
            }
        }
    }
    EXPECT_EQ(nOptions, 8);
}

TEST(WorkbenchOptionsTest, HelpTellsEveryOption)
{
    for (const char* pOption : {"--plugins", "--reset-windows", "--log", "--trace", "--help", "--version"}) {
        EXPECT_TRUE(WorkbenchOptions::helpText().contains(pOption)) << pOption;
    }
    EXPECT_TRUE(WorkbenchOptions::parse({"-h"}).help);
    EXPECT_TRUE(WorkbenchOptions::parse({"--version"}).version);
    EXPECT_TRUE(WorkbenchOptions::parse({"--reset-windows"}).freshPlaces);
}

} // namespace

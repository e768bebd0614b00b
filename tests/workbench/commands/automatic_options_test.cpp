// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/support/CliFixture.h"
#include "workbench/commands/AutomaticOptions.h"
#include "workbench/commands/ParsedOptions.h"

namespace {

AutomaticRequest requestOf(const QStringList& arguments)
{
    return automaticRequestOf(ParsedOptions(declareAutomaticOptions, arguments).parser());
}

QString refusalOf(const QStringList& arguments)
{
    return failureOf([&] { requestOf(arguments); });
}

} // namespace

TEST(AutomaticOptionsTest, NothingIsAskedForByDefault)
{
    const AutomaticRequest request = requestOf({});
    EXPECT_TRUE(request.components.isEmpty());
    EXPECT_EQ(request.count, 0);
    EXPECT_TRUE(request.useConstraints);
    EXPECT_FALSE(request.constraintsAsked);
    EXPECT_FALSE(request.correctDecay);
    EXPECT_TRUE(request.refine);
}

TEST(AutomaticOptionsTest, TheAnswerOfTheClustersCanBeLeftAsItIs)
{
    EXPECT_FALSE(requestOf({"--ncomponents", "3", "--no-refinement"}).refine);
}

TEST(AutomaticOptionsTest, NamesAreTrimmedAndKeepTheirBlanks)
{
    EXPECT_EQ(requestOf({"--components", "TissueAF, AlexaFluor 750 ,Food"}).components,
              (QStringList{"TissueAF", "AlexaFluor 750", "Food"}));
    EXPECT_EQ(requestOf({"--components", "one"}).components, QStringList{"one"});
}

TEST(AutomaticOptionsTest, AnEmptyNameIsAUsageError)
{
    for (const char* text : {"", "A,,B", "A, ", ","}) {
        EXPECT_TRUE(refusalOf({"--components", text}).startsWith("[2] --components takes names")) << text;
    }
}

TEST(AutomaticOptionsTest, ANumberOfComponentsIsWhole)
{
    EXPECT_EQ(requestOf({"--ncomponents", "3"}).count, 3);
    for (const char* text : {"0", "-2", "two", "2.5", "", "100000"}) {
        EXPECT_TRUE(refusalOf({"--ncomponents", text}).startsWith("[2] --ncomponents takes a whole number")) << text;
    }
}

TEST(AutomaticOptionsTest, OptionsThatExcludeEachOtherAreUsageErrors)
{
    EXPECT_TRUE(
        refusalOf({"--components", "A,B", "--ncomponents", "2"}).startsWith("[2] --components and --ncomponents"));
    EXPECT_TRUE(refusalOf({"--constraints", "--no-constraints"}).startsWith("[2] --constraints and --no-constraints"));
}

TEST(AutomaticOptionsTest, ConstraintsCanBeAskedForAndLeftOut)
{
    EXPECT_TRUE(requestOf({"--constraints"}).constraintsAsked);
    EXPECT_FALSE(requestOf({"--no-constraints"}).useConstraints);
}

TEST(AutomaticOptionsTest, DecayTakesMinutesOrTheDatabase)
{
    EXPECT_EQ(requestOf({"--decay", "109.8"}).halfLifeMinutes, 109.8);
    EXPECT_TRUE(requestOf({"--decay", "auto"}).correctDecay);
    EXPECT_EQ(requestOf({"--decay", "auto"}).halfLifeMinutes, 0.0);
    EXPECT_EQ(requestOf({"--decay", "0.01"}).halfLifeMinutes, 0.01);
    for (const char* text : {"0", "0.009", "-5", "1e9", "long", "", "nan"}) {
        EXPECT_TRUE(refusalOf({"--decay", text}).startsWith("[2] --decay takes auto or a half life in minutes"))
            << text;
    }
}

TEST(AutomaticOptionsTest, TheGivenOptionsAreNamed)
{
    const ParsedOptions options(declareAutomaticOptions, {"--no-constraints", "--ncomponents", "2"});
    EXPECT_EQ(givenAutomaticOptions(options.parser()), (QStringList{"--ncomponents", "--no-constraints"}));
    EXPECT_TRUE(givenAutomaticOptions(ParsedOptions(declareAutomaticOptions, {}).parser()).isEmpty());
}

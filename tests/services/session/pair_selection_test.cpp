// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/PairSelection.h"
#include "services/support/CliFixture.h"

namespace {

QList<KeyPair> table()
{
    return {{"605", "640"}, {"605", "660"}, {"640", "660"}, {"640", "700"}};
}

QString selected(const QString& text)
{
    return pairsText(selectPairs(text, table()));
}

QString refused(const QString& text)
{
    return failureOf([&] { selectPairs(text, table()); });
}

} // namespace

TEST(PairSelectionTest, PairsComeInTheOrderOfTheParts)
{
    EXPECT_EQ(selected("640/700,605/640"), "640/700, 605/640");
}

TEST(PairSelectionTest, AStarNamesAnyInTheOrderOfTheTable)
{
    EXPECT_EQ(selected("605/*"), "605/640, 605/660");
    EXPECT_EQ(selected("*/660"), "605/660, 640/660");
    EXPECT_EQ(selected("*/*"), "605/640, 605/660, 640/660, 640/700");
}

TEST(PairSelectionTest, APartWithoutASlashIsTheSecondKeyOfAny)
{
    EXPECT_EQ(selected("660"), "605/660, 640/660");
}

TEST(PairSelectionTest, APairThatTwoPartsNameComesOnce)
{
    EXPECT_EQ(selected("605/660,*/660"), "605/660, 640/660");
}

TEST(PairSelectionTest, BlanksAndLetterCaseDoNotCount)
{
    EXPECT_EQ(selected(" 605 / 640 , 640/ 700"), "605/640, 640/700");
    EXPECT_EQ(pairsText(selectPairs("OPEN/700", {{"open", "700"}})), "open/700");
}

TEST(PairSelectionTest, APairThatIsNotThereIsNamedWithWhatThereIs)
{
    EXPECT_EQ(refused("605/640,605/900"),
              "--select: no image is \"605/900\"; there are 605/640, 605/660, 640/660, 640/700");
}

TEST(PairSelectionTest, AMalformedPartIsAUsageError)
{
    EXPECT_EQ(refused("1/2/3"), "[2] --select: \"1/2/3\" is not of the form EXCITATION/EMISSION or INTERVAL/TIME");
    EXPECT_TRUE(refused("605/").startsWith("[2] --select: \"605/\""));
    EXPECT_TRUE(refused("605/640,").startsWith("[2] --select: \"\""));
    EXPECT_TRUE(refused("").startsWith("[2] "));
}

TEST(PairSelectionTest, AnImageWithoutExcitationIsToldByItsEmission)
{
    EXPECT_EQ(pairText({"", "700"}), "700");
    EXPECT_EQ(pairsText({}), "");
    EXPECT_EQ(pairsText(selectPairs("700", {{"", "700"}, {"", "720"}})), "700");
}

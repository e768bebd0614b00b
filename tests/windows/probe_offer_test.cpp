// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/probeOffer.h"

#include "host/CORVDatabase.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

const QStringList kOffer{"Unknown", "AlexaFluor 750", "Cy5", "ICG"};

void expectSortedAfterUnknown(const QStringList& offer)
{
    ASSERT_GT(offer.size(), 2);
    EXPECT_EQ(offer.first(), QString("Unknown"));
    EXPECT_TRUE(std::is_sorted(offer.begin() + 1, offer.end(), CORVDatabase::insensitiveLessThan));
    EXPECT_EQ(offer.count("Unknown"), 1);
}

TEST(ProbeOfferTest, FilterSuffixesGoAndEachNameComesOnce)
{
    EXPECT_EQ(namesWithoutFilter({"BEm", "AEx", "AEm", "BEx", "Cy5.5Em"}), (QStringList{"B", "A", "Cy5.5"}));
    EXPECT_EQ(namesWithoutFilter({"x", "Em"}), (QStringList{""})); // two characters, whatever they are
    EXPECT_TRUE(namesWithoutFilter({}).isEmpty());
}

TEST(ProbeOfferTest, FluorescentTypesOfferTheLibraryOnceAName)
{
    const QStringList offer = offeredProbes(1, true);
    expectSortedAfterUnknown(offer);
    EXPECT_EQ(offer.count("AlexaFluor 750"), 1);
    EXPECT_EQ(offer.count("ICG"), 1);
    EXPECT_FALSE(offer.contains("AlexaFluor 750Em"));
    EXPECT_EQ(offer.size(), namesWithoutFilter(CORVDatabase::getLIBSourceList()).size() + 1);
    EXPECT_EQ(offeredProbes(2, true), offer);
    EXPECT_EQ(offeredProbes(1, false), offer); // the type decides
}

TEST(ProbeOfferTest, LuminescentTypeOffersTheSources)
{
    const QStringList offer = offeredProbes(0, false);
    expectSortedAfterUnknown(offer);
    QStringList names = offer.mid(1);
    names.sort();
    QStringList expected = CORVDatabase::getSourceList();
    expected.sort();
    EXPECT_EQ(names, expected);
    EXPECT_EQ(offeredProbes(0, true), offer);
}

TEST(ProbeOfferTest, TemporalTypeOffersByTheSequence)
{
    EXPECT_EQ(offeredProbes(3, true), offeredProbes(1, true));
    EXPECT_EQ(offeredProbes(3, false), offeredProbes(0, false));
}

TEST(ProbeOfferTest, OtherTypesHaveNoOfferOfTheirOwn)
{
    EXPECT_TRUE(offeredProbes(-1, true).isEmpty());
    EXPECT_TRUE(offeredProbes(4, false).isEmpty());
}

TEST(ProposedProbesTest, OfferedNamesInTheirOrderTrimmed)
{
    EXPECT_EQ(proposedProbes({" ICG ", "Cy5\t"}, kOffer, 1), (QStringList{"ICG", "Cy5"}));
    EXPECT_EQ(proposedProbes({"ICG", "ICG"}, kOffer, 1), (QStringList{"ICG", "ICG"}));
    EXPECT_EQ(proposedProbes({"Unknown"}, kOffer, 1), (QStringList{"Unknown"}));
}

TEST(ProposedProbesTest, NamesThatAreNotOfferedAreDropped)
{
    EXPECT_EQ(proposedProbes({"Dye of tomorrow", "Cy5", "Cy", ""}, kOffer, 1), (QStringList{"Cy5"}));
    EXPECT_EQ(proposedProbes({"Dye of tomorrow"}, kOffer, 1), (QStringList{"Unknown"}));
}

TEST(ProposedProbesTest, AnotherSpellingIsAcceptedButSelectsNoName)
{
    const ProbeProposal proposal = proposeProbes({"alexafluor 750", "Cy5"}, kOffer);
    EXPECT_EQ(proposal.names, (QStringList{"alexafluor 750", "Cy5"}));
    EXPECT_EQ(proposal.offered, kOffer);
    const QStringList rows = proposedProbes({"alexafluor 750", "Cy5"}, kOffer, 1);
    EXPECT_EQ(rows, (QStringList{"", "Cy5"}));
    EXPECT_EQ(proposedProbes({"unknown"}, kOffer, 3), (QStringList{"", "Unknown"}));
    EXPECT_EQ(otherSpelling("alexafluor 750", kOffer), QString("AlexaFluor 750"));
    EXPECT_EQ(otherSpelling("Cy5", kOffer), QString());
    EXPECT_EQ(otherSpelling("Dye of tomorrow", kOffer), QString());
    EXPECT_EQ(otherSpelling("icg", {"ICG", "icg"}), QString());
}

TEST(ProposedProbesTest, TableHasARowAndATemporalOneTwo)
{
    for (const int nType : {0, 1, 2}) {
        EXPECT_EQ(proposedProbes({}, kOffer, nType), (QStringList{"Unknown"})) << nType;
    }
    EXPECT_EQ(proposedProbes({}, kOffer, 3), (QStringList{"Unknown", "Unknown"}));
    EXPECT_EQ(proposedProbes({"ICG"}, kOffer, 3), (QStringList{"ICG", "Unknown"}));
    EXPECT_EQ(proposedProbes({"ICG", "Cy5", "ICG"}, kOffer, 3), (QStringList{"ICG", "Cy5", "ICG"}));
    EXPECT_EQ(proposedProbes({"ICG"}, {}, 1), (QStringList{""}));
}

TEST(ProposedProbesTest, RadioactiveFirstNameSwitchesTheOfferOfAll)
{
    const QStringList isotopes = CORVDatabase::getRADSourceList();
    ASSERT_TRUE(isotopes.contains("F-18"));
    const ProbeProposal proposal = proposeProbes({" RAD-F-18", "ICG", "RAD-Cu-64", "Y-90"}, kOffer);
    EXPECT_EQ(proposal.offered, isotopes);
    EXPECT_EQ(proposal.names, (QStringList{"F-18", "Cu-64", "Y-90"}));
    // Dropped itself, it has switched the offer all the same.
    EXPECT_EQ(proposedProbes({"RAD-none", "F-18", "ICG"}, kOffer, 0), (QStringList{"F-18"}));
    EXPECT_EQ(proposedProbes({"RAD-none"}, kOffer, 0), (QStringList{isotopes.first()}));
}

TEST(ProposedProbesTest, RadioactiveNameFurtherDownLosesItsMarkOnly)
{
    EXPECT_EQ(proposedProbes({"ICG", "RAD-F-18", "RAD-Cy5"}, kOffer, 1), (QStringList{"ICG", "Cy5"}));
    EXPECT_EQ(proposeProbes({"none", "RAD-F-18"}, kOffer).offered, kOffer);
}

TEST(ProposedProbesTest, MarkOfRadioactivityIsCaseSensitive)
{
    const ProbeProposal proposal = proposeProbes({"Rad-F-18", "rad-ICG"}, kOffer);
    EXPECT_EQ(proposal.offered, kOffer);
    EXPECT_TRUE(proposal.names.isEmpty());
}

TEST(ComponentDefaultsTest, TissueAndConstraintsButInATemporalSequence)
{
    for (const int nType : {0, 1, 2}) {
        EXPECT_TRUE(isTissueByDefault(nType));
        EXPECT_TRUE(isConstrainedByDefault(nType));
    }
    EXPECT_FALSE(isTissueByDefault(3));
    EXPECT_FALSE(isConstrainedByDefault(3));
}

TEST(ComponentDefaultsTest, BackgroundComesBeforeTheRows)
{
    const QStringList rows{"ICG", "Unknown"};
    EXPECT_EQ(componentNames(true, true, rows), (QStringList{"TissueAF", "Food", "ICG", "Unknown"}));
    EXPECT_EQ(componentNames(true, false, rows), (QStringList{"TissueAF", "ICG", "Unknown"}));
    EXPECT_EQ(componentNames(false, true, {}), (QStringList{"Food"}));
    EXPECT_EQ(componentNames(false, false, rows), rows);
}

} // namespace

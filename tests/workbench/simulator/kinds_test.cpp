// SPDX-License-Identifier: GPL-3.0-or-later
// What the kinds of simulated sequences have in common, and all that they can hold.
#include "XTNT/xtnt_parallel.h"
#include "host/CROIManager.h"
#include "workbench/simulator/OptionCheck.h"
#include "workbench/simulator/simulated_kind.h"

#include <map>
#include <memory>
#include <utility>

TEST(SimulationKindTest, NamesAndKindsBelongTogether)
{
    for (const SimulationKind kind : simulatedKinds) {
        SimulationKind found = SimulationKind::Epi;
        EXPECT_TRUE(kindOfName(kindName(kind), &found));
        EXPECT_EQ(found, kind);
    }
    SimulationKind kept = SimulationKind::Temporal;
    EXPECT_FALSE(kindOfName(QStringLiteral("Epi"), &kept));
    EXPECT_EQ(kept, SimulationKind::Temporal);
}

TEST(SimulationKindTest, DefaultsOfEachKindAreValid)
{
    for (const SimulationKind kind : simulatedKinds) {
        const SimulationOptions options = SimulationOptions::standard(kind);
        EXPECT_EQ(options.kind, kind);
        EXPECT_EQ(validate(options), QString()) << qPrintable(kindName(kind));
    }
}

TEST(SimulationKindTest, SameOptionsGiveTheSameBytesWithAnyNumberOfThreads)
{
    for (const SimulationKind kind : simulatedKinds) {
        SimulationOptions options = smallestKind(kind);
        options.full = true;
        SimulationFolder a;
        SimulationFolder b;
        XTNT::setThreadCount(1);
        mustSimulate(a.path(QStringLiteral("seq")), options);
        XTNT::setThreadCount(3);
        mustSimulate(b.path(QStringLiteral("seq")), options);
        XTNT::setThreadCount(0);
        EXPECT_EQ(allFiles(a.path(QStringLiteral("seq"))), allFiles(b.path(QStringLiteral("seq"))))
            << qPrintable(kindName(kind));
    }
}

// A sequence of each kind with everything and one without serve all tests.
class FullSimulationTest : public ::testing::TestWithParam<SimulationKind>
{
protected:
    static Simulated& sequence(bool bFull)
    {
        static std::map<std::pair<SimulationKind, bool>, std::unique_ptr<Simulated>> s_sequences;
        auto& pSequence = s_sequences[{GetParam(), bFull}];
        if (pSequence == nullptr) {
            SimulationOptions options = smallestKind(GetParam());
            options.full = bFull;
            pSequence = std::make_unique<Simulated>(options);
        }
        return *pSequence;
    }
};

TEST_P(FullSimulationTest, HoldsEveryImageOfItsKind)
{
    Simulated& simulated = sequence(true);
    CORVDataset* pFirst = simulated.sequence.getDatasets().first();
    for (const tag_eimagetype type :
         {IMAGETYPE_PHOTOGRAPH, IMAGETYPE_LUMINESCENT, IMAGETYPE_REFERENCE, IMAGETYPE_STRUCTURE, IMAGETYPE_XRAY,
          IMAGETYPE_XRAY_PHOTOGRAPH, IMAGETYPE_MAIN_DATA}) {
        EXPECT_NE(pFirst->getCoreImage(type), nullptr) << "type " << type;
    }
    EXPECT_EQ(pFirst->getCoreImage(IMAGETYPE_FLUORESCENT_REFERENCE) != nullptr, isFluorescent(GetParam()));
    EXPECT_TRUE(simulated.sequence.isSLASequence());
    EXPECT_TRUE(simulated.sequence.isCTSequence(false));
    // Data of its own, with the pixels of the luminescent image.
    EXPECT_TRUE(QFile::exists(pFirst->folderPath() + QStringLiteral("/data.TIF")));
    EXPECT_EQ(pFirst->getCoreImage(IMAGETYPE_MAIN_DATA)->Max(), pFirst->getCoreImage(IMAGETYPE_LUMINESCENT)->Max());
    EXPECT_EQ(pFirst->unitUnavailableReason(DISPLAYUNIT_RADIANCE), QString());
}

TEST_P(FullSimulationTest, HoldsFlagsSectionsAndRegions)
{
    Simulated& simulated = sequence(true);
    CORVDataset* pFirst = simulated.sequence.getDatasets().first();
    EXPECT_TRUE(pFirst->isLuminFlatFieldCorrected());
    EXPECT_FALSE(pFirst->isLuminBackgroundSubtracted());
    EXPECT_EQ(simulated.section(0, "User Input", "Comment"),
              QStringLiteral("first line\nsecond line: 100 % simulated"));
    for (const char* pSection :
         {"User Input", "Analysis User Input", "User Label Name Set", "Graph Controls", "photographic image",
          "reference image", "structure image", "x-ray image", "x-ray photographic image", "main data image"}) {
        EXPECT_NE(pFirst->clickInfo[QString::fromLatin1(pSection)], nullptr) << pSection;
    }
    CROIManager regions;
    regions.readROIData(pFirst->clickInfo);
    EXPECT_TRUE(regions.messages().isEmpty());
    ASSERT_EQ(regions.regions().size(), 4);
    for (int shape = ROISHAPE_RECTANGLE; shape <= ROISHAPE_FREEHAND; ++shape) {
        EXPECT_EQ(regions.regions().at(shape).shape, shape);
    }
}

TEST_P(FullSimulationTest, LeavesTheDataAsTheyAre)
{
    Simulated& plain = sequence(false);
    Simulated& full = sequence(true);
    for (int i = 0; i < plain.sequence.getDatasets().size(); ++i) {
        EXPECT_EQ(plain.image(i, DISPLAYUNIT_RADIANCE), full.image(i, DISPLAYUNIT_RADIANCE)) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, FullSimulationTest, ::testing::ValuesIn(simulatedKinds));

// The diffuser's image says what the one number does.
TEST(FullReferenceTest, ReferenceImageAgreesWithTheReferenceRadiance)
{
    SimulationOptions options = smallestKind(SimulationKind::Epi);
    options.noise = false;
    Simulated plain(options);
    options.full = true;
    Simulated full(options);
    const std::vector<double> expected = plain.image(1, DISPLAYUNIT_EFFICIENCY);
    const std::vector<double> found = full.image(1, DISPLAYUNIT_EFFICIENCY);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_NEAR(found[i], expected[i], 1e-6 * expected[i]);
    }
}

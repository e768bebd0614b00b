// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/AutomaticSetUp.h"
#include "services/support/CliFixture.h"
#include "services/support/SmallSequence.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "host/CORVSequenceDataset.h"

#include <memory>

namespace {

class AutomaticSetUpTest : public ::testing::Test
{
protected:
    // Emissions from 700 nm on in steps of 20 nm.
    void bands(int nBands)
    {
        m_sequence.addBands(std::vector<std::function<float(int)>>(static_cast<std::size_t>(nBands),
                                                                   [](int i) { return static_cast<float>(i); }));
    }
    void timePoints(int nPoints)
    {
        m_sequence.temporal = true;
        m_sequence.fluorescence = false;
        for (int n = 0; n < nPoints; ++n) {
            SmallImage image;
            image.excitation.clear();
            image.kyvoTime = QString::number(10 * n);
            image.kyvoInterval = "1";
            m_sequence.images.append(image);
        }
    }
    CORVSpumKyvo& engine()
    {
        if (!m_pEngine) {
            m_pOpen = m_sequence.inMemory();
            m_pEngine = std::make_unique<CORVSpumKyvo>(m_sequence.id);
            EXPECT_TRUE(m_pEngine->buildDatasetInfo());
            m_pEngine->resetAnalysis(RUNMODE_AUTOMATIC);
            EXPECT_TRUE(m_pEngine->createImageList());
        }
        return *m_pEngine;
    }
    QStringList setUp(const AutomaticRequest& request, bool bBeyondSix = false)
    {
        engine();
        AutomaticRequest asked = request;
        asked.beyondSix = bBeyondSix;
        return setUpAutomatic(asked, *m_pOpen, engine());
    }
    static AutomaticRequest named(const QStringList& names)
    {
        AutomaticRequest request;
        request.components = names;
        return request;
    }
    static AutomaticRequest counted(int nCount)
    {
        AutomaticRequest request;
        request.count = nCount;
        return request;
    }
    QString refusal(const AutomaticRequest& request, bool bBeyondSix = false)
    {
        return failureOf([&] { setUp(request, bBeyondSix); });
    }

    SmallSequence m_sequence;

private:
    std::unique_ptr<CORVSequenceDataset> m_pOpen;
    std::unique_ptr<CORVSpumKyvo> m_pEngine;
};

} // namespace

TEST_F(AutomaticSetUpTest, AFluorescentSequenceProposesTissueAndItsProbes)
{
    bands(4);
    for (auto& image : m_sequence.images) {
        image.probe = "AlexaFluor 750, AF680";
        image.subject = "Mouse";
    }
    EXPECT_EQ(proposedComponents(engine()), (QStringList{"TissueAF", "AlexaFluor 750", "AlexaFluor 680"}));
    EXPECT_TRUE(setUp(AutomaticRequest()).isEmpty());
    EXPECT_EQ(engine().m_labels, (QStringList{"TissueAF", "AlexaFluor 750", "AlexaFluor 680"}));
    EXPECT_EQ(engine().m_suggestedLabels.last(), "AlexaFluor 750");
}

TEST_F(AutomaticSetUpTest, AProbeInAnotherSpellingIsTakenAsTheDatabaseHasItAndThatIsTold)
{
    bands(4);
    for (auto& image : m_sequence.images) {
        image.probe = "alexafluor 750, af680";
        image.subject = "Mouse";
    }
    EXPECT_EQ(proposedComponents(engine()), (QStringList{"TissueAF", "AlexaFluor 750", "AlexaFluor 680"}));
    EXPECT_EQ(setUp(AutomaticRequest()),
              (QStringList{"the sequence's probe \"alexafluor 750\" is taken for \"AlexaFluor 750\"",
                           "the sequence's probe \"af680\" is taken for \"AlexaFluor 680\""}));
    EXPECT_EQ(engine().m_labels, (QStringList{"TissueAF", "AlexaFluor 750", "AlexaFluor 680"}));
    EXPECT_EQ(engine().m_suggestedLabels.last(), "AlexaFluor 750");
    // Where the user names it the spelling is no matter.
    EXPECT_TRUE(setUp(named({"tissueaf", "alexafluor 750"})).isEmpty());
    EXPECT_EQ(engine().m_labels, (QStringList{"TissueAF", "AlexaFluor 750"}));
    EXPECT_TRUE(setUp(named({"TissueAF", "AlexaFluor 750"})).isEmpty());
    EXPECT_NO_THROW(setUp(counted(2)));
}

TEST_F(AutomaticSetUpTest, AProbeOfTheSequenceThatTheDatabaseLacksIsFoundInAnyCaseAndThatIsTold)
{
    bands(4);
    for (auto& image : m_sequence.images) {
        image.probe = "My Dye 7";
        image.subject = "Mouse";
    }
    const QString noSource = "the database has no source \"My Dye 7Em\": where it lies is not predicted";
    EXPECT_EQ(setUp(named({"TissueAF", "my dye 7"})),
              (QStringList{"\"my dye 7\" is taken for the sequence's probe \"My Dye 7\"", noSource}));
    EXPECT_EQ(engine().m_labels, (QStringList{"TissueAF", "My Dye 7"}));
    EXPECT_EQ(setUp(named({"TissueAF", "My Dye 7"})), QStringList{noSource});
    EXPECT_EQ(proposedComponents(engine()), (QStringList{"TissueAF", "Unknown"}));
    EXPECT_EQ(setUp(AutomaticRequest()),
              QStringList{"the sequence's probe \"My Dye 7\" is not in the database and not proposed; --components "
                          "takes it"});
    EXPECT_TRUE(refusal(named({"TissueAF", "My Dye 8"})).contains("did you mean \"My Dye 7\""))
        << qPrintable(refusal(named({"TissueAF", "My Dye 8"})));
}

TEST_F(AutomaticSetUpTest, WithoutAProbeThatIsOfferedOneIsUnknown)
{
    bands(4);
    EXPECT_EQ(proposedComponents(engine()), (QStringList{"TissueAF", "Unknown"}));
}

TEST_F(AutomaticSetUpTest, ATemporalSequenceProposesTwoUnknownsAndNoConstraints)
{
    timePoints(3);
    EXPECT_EQ(proposedComponents(engine()), (QStringList{"Unknown", "Unknown"}));
    EXPECT_TRUE(setUp(AutomaticRequest()).isEmpty());
    EXPECT_FALSE(engine().m_analysisInput.useConstraints);
    EXPECT_EQ(engine().m_params.Constraints.size(), 2);
}

TEST_F(AutomaticSetUpTest, ConstraintsAskedForInVainAreToldOf)
{
    timePoints(3);
    AutomaticRequest request;
    request.constraintsAsked = true;
    EXPECT_EQ(setUp(request), QStringList{"a temporal sequence takes no constraints"});
}

TEST_F(AutomaticSetUpTest, AnUnknownAmongTheNamesPredictsNothing)
{
    bands(4);
    AutomaticRequest request = named({"TissueAF", "Unknown"});
    EXPECT_TRUE(setUp(request).isEmpty());
    EXPECT_TRUE(engine().m_suggestedLabels.isEmpty());
    request.constraintsAsked = true;
    EXPECT_EQ(setUp(request), QStringList{"nothing can be predicted of these components"});
}

TEST_F(AutomaticSetUpTest, ANumberIsThatManyUnknowns)
{
    bands(4);
    EXPECT_TRUE(setUp(counted(3)).isEmpty());
    EXPECT_EQ(engine().m_labels, (QStringList{"Unknown", "Unknown", "Unknown"}));
    EXPECT_EQ(engine().m_params.Constraints.size(), 3);
}

TEST_F(AutomaticSetUpTest, NamesAreOrderedFromBlueToRed)
{
    bands(4);
    EXPECT_TRUE(setUp(named({"AlexaFluor 750", "TissueAF"})).isEmpty());
    EXPECT_EQ(engine().m_suggestedLabels, (QStringList{"TissueAF", "AlexaFluor 750"}));
    EXPECT_TRUE(engine().m_params.Constraints[0].Locked);
}

TEST_F(AutomaticSetUpTest, WithoutConstraintsNothingIsSuggested)
{
    bands(4);
    AutomaticRequest request = named({"AlexaFluor 750", "Nobody"});
    request.useConstraints = false;
    request.anyName = true;
    EXPECT_TRUE(setUp(request).isEmpty());
    EXPECT_TRUE(engine().m_suggestedLabels.isEmpty());
    EXPECT_EQ(engine().m_params.Constraints[0].HighPass, "N/A");
}

TEST_F(AutomaticSetUpTest, TwoToSixComponentsAndNoMoreThanImages)
{
    bands(8);
    EXPECT_EQ(refusal(counted(1)), "Please select 2-6 components to unmix! (asked for: 1)");
    EXPECT_NO_THROW(setUp(counted(2)));
    EXPECT_NO_THROW(setUp(counted(6)));
    EXPECT_EQ(refusal(counted(7)),
              "Please select 2-6 components to unmix! (asked for: 7; --beyond-six takes as many as there "
              "are images)");
    EXPECT_EQ(refusal(counted(9)), "Please select 2-6 components to unmix! (asked for: 9)");
}

TEST_F(AutomaticSetUpTest, ForceGoesToTheNumberOfImages)
{
    bands(8);
    EXPECT_NO_THROW(setUp(counted(7), true));
    EXPECT_NO_THROW(setUp(counted(8), true));
    EXPECT_EQ(refusal(counted(9), true), "No solution! Please adjust the setup! (9 components for 8 images)");
    EXPECT_EQ(refusal(counted(1), true), "Please select 2-6 components to unmix! (asked for: 1)");
}

TEST_F(AutomaticSetUpTest, TwoImagesTakeTwoComponents)
{
    bands(2);
    EXPECT_EQ(refusal(counted(3)), "Please select 2 components to unmix! (asked for: 3)");
    EXPECT_NO_THROW(setUp(counted(2)));
}

TEST_F(AutomaticSetUpTest, AProbeThatTheDatabaseLacksIsToldOf)
{
    bands(4);
    AutomaticRequest request = named({"TissueAF", "AlexaFluor 750", "Nobody"});
    const QString refused = refusal(request);
    EXPECT_TRUE(
        refused.startsWith("--components: there is no probe \"Nobody\", and --any-name is not given; did you mean "))
        << qPrintable(refused);
    request.anyName = true;
    EXPECT_EQ(setUp(request), QStringList{"the database has no source \"NobodyEm\": where it lies is not predicted"});
    EXPECT_EQ(engine().m_params.Constraints.size(), 3);
    EXPECT_EQ(engine().m_suggestedLabels.size(), 3);
}

TEST_F(AutomaticSetUpTest, AnotherNameOfAProbeServes)
{
    bands(4);
    EXPECT_TRUE(setUp(named({"TissueAF", "AF750"})).isEmpty());
    EXPECT_EQ(engine().m_labels, (QStringList{"TissueAF", "AlexaFluor 750"}));
    EXPECT_EQ(engine().m_params.Constraints.size(), 2);
}

TEST_F(AutomaticSetUpTest, ANameThatIsNearlyAProbesIsRefusedWithIt)
{
    bands(4);
    EXPECT_TRUE(refusal(named({"TissueAF", "AlexaFlour 750"}))
                    .startsWith("--components: there is no probe \"AlexaFlour 750\", and --any-name is not given; did "
                                "you mean \"AlexaFluor 750\""));
}

TEST_F(AutomaticSetUpTest, ComponentsOfATimeSeriesHaveAnyName)
{
    timePoints(3);
    EXPECT_TRUE(setUp(named({"liver", "blood"})).isEmpty());
    EXPECT_EQ(engine().m_labels, (QStringList{"liver", "blood"}));
}

TEST_F(AutomaticSetUpTest, NamesOfWhichNothingIsKnownDoNotLieAtOnePlace)
{
    bands(4);
    AutomaticRequest request = named({"TissueAF", "Nobody", "Nothing"});
    request.anyName = true;
    EXPECT_EQ(refusal(request),
              "of Nobody, Nothing it is not known where they lie in the spectrum, so that nothing tells "
              "them apart; use --no-constraints, or --ncomponents 3");
    request = named({"TissueAF", "TissueAF", "Nobody", "Nothing"});
    request.anyName = true;
    EXPECT_TRUE(refusal(request).contains("; of the components TissueAF, TissueAF two lie at one place"));
}

TEST_F(AutomaticSetUpTest, ASourceWithoutLightAtTheImagesIsToldOf)
{
    bands(3);
    m_sequence.images[0].emission = "803nm";
    m_sequence.images[1].emission = "813nm";
    m_sequence.images[2].emission = "823nm";
    const QStringList warnings = setUp(named({"TissueAF", "AlexaFluor 488"}));
    ASSERT_FALSE(warnings.isEmpty());
    EXPECT_TRUE(warnings.last().contains("has no light at these images")) << qPrintable(warnings.join('|'));
}

TEST_F(AutomaticSetUpTest, NamesThatLieAtOnePlaceAreRefused)
{
    bands(4);
    EXPECT_TRUE(refusal(named({"TissueAF", "AlexaFluor 750", "AlexaFluor 750"}))
                    .startsWith("of the components TissueAF, AlexaFluor 750, AlexaFluor 750 two lie at one place"));
}

TEST_F(AutomaticSetUpTest, DecayTakesAnIsotopeInTheData)
{
    bands(3);
    AutomaticRequest request = counted(2);
    request.correctDecay = true;
    EXPECT_EQ(refusal(request), "--decay: the sequence holds no isotope with Cherenkov light");
}

TEST_F(AutomaticSetUpTest, DecayTakesTheHalfLifeOfTheDatabaseOrTheUsers)
{
    bands(3);
    int minute = 0;
    for (auto& image : m_sequence.images) {
        image.isotope = "F-18";
        image.started = QStringLiteral("10:0%1:00.000").arg(++minute);
    }
    AutomaticRequest request = counted(2);
    EXPECT_TRUE(setUp(request).isEmpty());
    EXPECT_FALSE(engine().m_analysisInput.decayCorrection);
    request.correctDecay = true;
    EXPECT_TRUE(setUp(request).isEmpty());
    EXPECT_TRUE(engine().m_analysisInput.decayCorrection);
    EXPECT_EQ(engine().m_analysisInput.isotope, "F-18");
    EXPECT_DOUBLE_EQ(engine().m_analysisInput.halfLifeSeconds, 6584.04);
    request.halfLifeMinutes = 2.5;
    setUp(request);
    EXPECT_DOUBLE_EQ(engine().m_analysisInput.halfLifeSeconds, 150.0);
}

TEST_F(AutomaticSetUpTest, DecayTakesTheTimesOfTheExposures)
{
    bands(3);
    for (auto& image : m_sequence.images) {
        image.isotope = "F-18";
    }
    AutomaticRequest request = counted(2);
    request.correctDecay = true;
    EXPECT_TRUE(refusal(request).startsWith("the decay cannot be corrected for: an image lacks the start"));
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/suggestedConstraints.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/UserTables.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

const QString notApplicable = "N/A";

XTNT::Vector<double> vectorOf(const std::vector<double>& values)
{
    XTNT::Vector<double> v(static_cast<long long>(values.size()));
    for (std::size_t i = 0; i < values.size(); ++i) {
        v[static_cast<long long>(i)] = values[i];
    }
    return v;
}

QStringList keysFrom(int nFirst, int nStep, int n)
{
    QStringList keys;
    for (int i = 0; i < n; ++i) {
        keys.append(QString::number(nFirst + i * nStep));
    }
    return keys;
}

// A bell of 25 nm at `peak`.
double bell(double peak, double wavelength)
{
    return std::exp(-std::pow((wavelength - peak) / 25.0, 2));
}

void expectDefault(const ComponentConstraint& constraint)
{
    EXPECT_EQ(constraint.SpectrumType, 3);
    EXPECT_EQ(constraint.InitGuess, QString("Auto"));
    EXPECT_FALSE(constraint.Locked);
    EXPECT_EQ(constraint.Unimodality, notApplicable);
    EXPECT_EQ(constraint.HighPass, notApplicable);
    EXPECT_EQ(constraint.LowPass, notApplicable);
    EXPECT_EQ(constraint.SolutionMask, QString("All"));
    EXPECT_EQ(constraint.PureMask, notApplicable);
}

TEST(PredictComponentTest, ThePeakCountsBeforeTheCentroid)
{
    const QStringList keys{"500", "510", "520"};
    const ComponentPrediction prediction = predictComponent(vectorOf({0.5, 1.0, 0.5}), keys, false);
    EXPECT_DOUBLE_EQ(prediction.position, 510.0 * 1000.0 + 510.0);
    // Of equal maxima the first.
    const ComponentPrediction first = predictComponent(vectorOf({0.0, 1.0, 1.0}), keys, false);
    EXPECT_DOUBLE_EQ(first.position, 510.0 * 1000.0 + 515.0);
}

TEST(PredictComponentTest, TheHighPassIsTheLastDarkKeyBelowThePeak)
{
    const QStringList keys = keysFrom(500, 10, 6);
    EXPECT_EQ(predictComponent(vectorOf({0.0, 0.1, 0.125, 0.126, 1.0, 0.0}), keys, false).highPass, QString("520"));
    EXPECT_EQ(predictComponent(vectorOf({0.0, 0.5, 0.1, 0.3, 1.0, 0.0}), keys, false).highPass, QString("520"));
    EXPECT_EQ(predictComponent(vectorOf({0.2, 0.5, 0.2, 0.3, 1.0, 0.0}), keys, false).highPass, notApplicable);
    // The share is one of the peak, not of 1.
    EXPECT_EQ(predictComponent(vectorOf({0.0625, 0.07, 0.5, 0.0, 0.0, 0.0}), keys, false).highPass, QString("500"));
}

TEST(PredictComponentTest, NoHighPassForALowPeakOrOneAtTheFirstKey)
{
    const QStringList keys{"500", "510", "520"};
    EXPECT_EQ(predictComponent(vectorOf({0.0, 0.49, 0.0}), keys, false).highPass, notApplicable);
    EXPECT_EQ(predictComponent(vectorOf({0.0, 0.5, 0.0}), keys, false).highPass, QString("500"));
    EXPECT_EQ(predictComponent(vectorOf({1.0, 0.0, 0.0}), keys, false).highPass, notApplicable);
}

TEST(PredictComponentTest, AFlatAutofluorescenceLiesAtTheFirstKey)
{
    const QStringList keys{"500", "510", "520"};
    const XTNT::Vector<double> flat = vectorOf({0.6, 0.8, 1.0});
    const double middle = (500.0 * 0.6 + 510.0 * 0.8 + 520.0) / 2.4;
    EXPECT_DOUBLE_EQ(predictComponent(flat, keys, true).position, 500.0 * 1000.0 + middle);
    EXPECT_DOUBLE_EQ(predictComponent(flat, keys, false).position, 520.0 * 1000.0 + middle);
    // Half of the peak is not flat.
    const ComponentPrediction half = predictComponent(vectorOf({0.5, 0.8, 1.0}), keys, true);
    EXPECT_GT(half.position, 520.0 * 1000.0);
}

TEST(PredictComponentTest, NoLightHasNoPlaceButDoesNoHarm)
{
    EXPECT_TRUE(std::isnan(predictComponent(vectorOf({0.0, 0.0}), {"500", "510"}, false).position));
    EXPECT_TRUE(std::isnan(predictComponent(vectorOf({0.0, 0.0}), {"500", "510"}, true).position));
    EXPECT_TRUE(std::isnan(predictComponent(vectorOf({std::nan(""), 1.0}), {"500", "510"}, true).position));
    EXPECT_TRUE(std::isnan(predictComponent(XTNT::Vector<double>(), {}, true).position));
    EXPECT_EQ(predictComponent(XTNT::Vector<double>(), {}, true).highPass, notApplicable);
}

TEST(OrderedConstraintsTest, FromBlueToRed)
{
    const SuggestedConstraints suggested =
        orderedConstraints({" Red ", "Blue", "Green"}, {{3.0, "520"}, {1.0, "500"}, {2.0, notApplicable}}, {"500"});
    EXPECT_EQ(suggested.labels, (QStringList{"Blue", "Green", "Red"}));
    ASSERT_EQ(suggested.constraints.size(), 3);
    EXPECT_EQ(suggested.constraints.at(0).HighPass, QString("500"));
    expectDefault(suggested.constraints.at(1));
    EXPECT_EQ(suggested.constraints.at(2).HighPass, QString("520"));
    for (const ComponentConstraint& constraint : suggested.constraints) {
        EXPECT_EQ(constraint.LowPass, notApplicable);
        EXPECT_FALSE(constraint.Locked);
    }
}

TEST(OrderedConstraintsTest, OfOnePlaceTheLastStaysAlone)
{
    const SuggestedConstraints suggested =
        orderedConstraints({"A", "B", "C"}, {{1.0, "500"}, {2.0, "510"}, {1.0, "520"}}, {"500"});
    EXPECT_EQ(suggested.labels, (QStringList{"C", "B"}));
    EXPECT_EQ(suggested.constraints.at(0).HighPass, QString("520"));
}

TEST(OrderedConstraintsTest, ComponentsWithoutLightComeLastAndDisturbNoOther)
{
    const double nan = std::nan("");
    EXPECT_EQ(orderedConstraints({"A", "B", "C"}, {{nan, notApplicable}, {2.0, "510"}, {1.0, "520"}}, {"500"}).labels,
              (QStringList{"C", "B", "A"}));
    EXPECT_EQ(orderedConstraints({"A", "B", "C"}, {{nan, notApplicable}, {2.0, "510"}, {nan, "520"}}, {"500"}).labels,
              (QStringList{"B", "C"}));
}

TEST(OrderedConstraintsTest, OnlyTissueInTheFirstPlaceIsLockedAndNotInTheRed)
{
    const QList<ComponentPrediction> upwards{{1.0, "500"}, {2.0, "510"}};
    EXPECT_TRUE(orderedConstraints({"my TissueAF", "Dye"}, upwards, {"500"}).constraints.at(0).Locked);
    EXPECT_TRUE(orderedConstraints({"TissueAF", "Dye"}, upwards, {"720"}).constraints.at(0).Locked);
    EXPECT_FALSE(orderedConstraints({"TissueAF", "Dye"}, upwards, {"721"}).constraints.at(0).Locked);
    EXPECT_FALSE(orderedConstraints({"tissueaf", "Dye"}, upwards, {"500"}).constraints.at(0).Locked);
    const SuggestedConstraints second = orderedConstraints({"Dye", "TissueAF"}, upwards, {"500"});
    EXPECT_FALSE(second.constraints.at(0).Locked);
    EXPECT_FALSE(second.constraints.at(1).Locked);
}

TEST(SourceOfLabelTest, NamesOfTheWizard)
{
    EXPECT_EQ(sourceOfLabel("TissueAF"), QString("ALFree"));
    EXPECT_EQ(sourceOfLabel("Food"), QString("ALFood"));
    EXPECT_EQ(sourceOfLabel("TissueAF and Food"), QString("ALFood"));
    EXPECT_EQ(sourceOfLabel("tissueAF"), QString("tissueAF"));
    EXPECT_EQ(sourceOfLabel("AlexaFluor 750"), QString("AlexaFluor 750"));
    EXPECT_TRUE(isAutofluorescence("ALFree"));
    EXPECT_TRUE(isAutofluorescence("ALFood"));
    EXPECT_FALSE(isAutofluorescence("TissueAF"));
}

class SuggestTest : public ::testing::Test
{
protected:
    SuggestTest() : m_engine("no sequence")
    {
        m_engine.m_eSeqKind = SEQKIND_EPI_FLUORESCENT;
        m_engine.m_strSubjectType = "Other";
        m_engine.m_primaryKeys = keysFrom(500, 20, 13);
        m_engine.m_suggestedLabels = QStringList{"of before"};
    }

    QList<ComponentConstraint> suggest(const QStringList& labels)
    {
        m_engine.m_labels = labels;
        QList<ComponentConstraint> out;
        m_engine.suggestConstraints(out);
        return out;
    }

    void expectNoPrediction(const QStringList& labels)
    {
        const QList<ComponentConstraint> out = suggest(labels);
        EXPECT_EQ(out.size(), labels.size());
        for (const ComponentConstraint& constraint : out) {
            expectDefault(constraint);
        }
        EXPECT_EQ(m_engine.m_suggestedLabels, QStringList{"of before"});
    }

    UserTables m_tables;
    CORVSpumKyvo m_engine;
};

TEST_F(SuggestTest, WithoutAPredictionThereAreDefaults)
{
    expectNoPrediction({});
    expectNoPrediction({"AlexaFluor 555"});
    expectNoPrediction({"TissueAF", "Unknown"});
    expectNoPrediction({"Unknown", "AlexaFluor 555", "AlexaFluor 647"});
    m_engine.m_eSeqKind = SEQKIND_LUMINESCENT;
    expectNoPrediction({"Firefly Luciferase", "Renilla Luciferase"});
}

TEST_F(SuggestTest, TheBluerOfTwoProbesComesFirst)
{
    m_tables.writeLibrary({"RedEm", "BlueEm"}, [](int i, double w) { return bell(i == 0 ? 620.0 : 580.0, w); });
    const QList<ComponentConstraint> out = suggest({"Red", "Blue"});
    ASSERT_EQ(out.size(), 2);
    EXPECT_EQ(m_engine.m_suggestedLabels, (QStringList{"Blue", "Red"}));
    // exp(-(40 / 25)^2) = 0.077, exp(-(20 / 25)^2) = 0.53
    EXPECT_EQ(out.at(0).HighPass, QString("540"));
    EXPECT_EQ(out.at(1).HighPass, QString("580"));
}

TEST_F(SuggestTest, TheListIsReplaced)
{
    QList<ComponentConstraint> out{ComponentConstraint(), ComponentConstraint(), ComponentConstraint()};
    m_engine.m_labels = QStringList{"AlexaFluor 555", "AlexaFluor 647"};
    m_engine.suggestConstraints(out);
    EXPECT_EQ(out.size(), 2);
}

TEST_F(SuggestTest, TissueShiftsProbesToTheRed)
{
    // Two humps, the bluer one higher; muscle takes more of it than the difference.
    m_tables.writeLibrary({"TwoEm", "OneEm"}, [](int i, double w) {
        return i == 0 ? bell(540.0, w) + 0.9 * bell(660.0, w) : bell(600.0, w);
    });
    suggest({"One", "Two"});
    EXPECT_EQ(m_engine.m_suggestedLabels, (QStringList{"Two", "One"}));
    m_engine.m_strSubjectType = "Mouse";
    suggest({"One", "Two"});
    EXPECT_EQ(m_engine.m_suggestedLabels, (QStringList{"One", "Two"}));
}

TEST_F(SuggestTest, APeakThatTissueLowersTooFarGetsNoHighPass)
{
    m_tables.writeLibrary({"RedEm", "BlueEm"}, [](int i, double w) { return bell(i == 0 ? 620.0 : 580.0, w); });
    m_tables.write("tissues.csv", "tissue,wavelength_nm,absorption_per_cm,reduced_scattering_per_cm\n"
                                  "Muscle,600,5,10\nRMP-7,600,0.01,10\n");
    m_engine.m_strSubjectType = "Mouse";
    QList<ComponentConstraint> out = suggest({"Red", "Blue"});
    EXPECT_EQ(out.at(0).HighPass, notApplicable);
    EXPECT_EQ(out.at(1).HighPass, notApplicable);
    m_engine.m_strSubjectType = "Mouse Phantom";
    out = suggest({"Red", "Blue"});
    EXPECT_EQ(out.at(0).HighPass, QString("540"));
}

TEST_F(SuggestTest, AutofluorescenceCrossesNoTissue)
{
    m_tables.writeLibrary({"ALFreeEm", "BlueEm"}, [](int i, double w) { return bell(i == 0 ? 620.0 : 580.0, w); });
    m_tables.write("tissues.csv",
                   "tissue,wavelength_nm,absorption_per_cm,reduced_scattering_per_cm\nMuscle,600,5,10\n");
    m_engine.m_strSubjectType = "Mouse";
    const QList<ComponentConstraint> out = suggest({"TissueAF", "Blue"});
    EXPECT_EQ(m_engine.m_suggestedLabels, (QStringList{"Blue", "TissueAF"}));
    EXPECT_EQ(out.at(0).HighPass, notApplicable);
    EXPECT_EQ(out.at(1).HighPass, QString("580"));
    // In the second place it is not locked.
    EXPECT_FALSE(out.at(1).Locked);
}

TEST_F(SuggestTest, InstalledNamesOfAMouse)
{
    m_engine.m_strSubjectType = "Mouse";
    const QList<ComponentConstraint> out = suggest({"AlexaFluor 647", "AlexaFluor 555", "TissueAF"});
    ASSERT_EQ(out.size(), 3);
    EXPECT_EQ(m_engine.m_suggestedLabels, (QStringList{"TissueAF", "AlexaFluor 555", "AlexaFluor 647"}));
    EXPECT_TRUE(out.at(0).Locked);
    EXPECT_FALSE(out.at(1).Locked);
    EXPECT_FALSE(out.at(2).Locked);
    EXPECT_EQ(out.at(0).HighPass, notApplicable);
    EXPECT_NE(out.at(2).HighPass, notApplicable);
    EXPECT_LT(out.at(2).HighPass.toInt(), 670);
    EXPECT_GT(out.at(2).HighPass.toInt(), 580);
}

TEST_F(SuggestTest, ASelectionInTheRedLocksNothing)
{
    m_engine.m_primaryKeys = keysFrom(740, 10, 8);
    const QList<ComponentConstraint> out = suggest({"TissueAF", "AlexaFluor 750"});
    ASSERT_EQ(out.size(), 2);
    EXPECT_FALSE(out.at(0).Locked);
    EXPECT_FALSE(out.at(1).Locked);
}

TEST_F(SuggestTest, TheExcitationAxisLooksAtExcitationCurves)
{
    m_tables.writeLibrary({"AEm", "AEx", "BEm", "BEx"}, [](int i, double w) {
        const double peaks[] = {700.0, 560.0, 600.0, 660.0};
        return bell(peaks[i], w);
    });
    suggest({"A", "B"});
    EXPECT_EQ(m_engine.m_suggestedLabels, (QStringList{"B", "A"}));
    m_engine.m_eAxis = SPECTRUMAXIS_EXCITATION;
    suggest({"A", "B"});
    EXPECT_EQ(m_engine.m_suggestedLabels, (QStringList{"A", "B"}));
}

TEST_F(SuggestTest, AProbeThatTheDatabaseLacksComesLast)
{
    QList<ComponentConstraint> out = suggest({"No such dye", "AlexaFluor 647", "AlexaFluor 555"});
    ASSERT_EQ(out.size(), 3);
    EXPECT_EQ(m_engine.m_suggestedLabels, (QStringList{"AlexaFluor 555", "AlexaFluor 647", "No such dye"}));
    expectDefault(out.at(2));
    // Two of them are at one place.
    out = suggest({"No such dye", "AlexaFluor 647", "Another"});
    EXPECT_EQ(m_engine.m_suggestedLabels, (QStringList{"AlexaFluor 647", "Another"}));
    EXPECT_EQ(out.size(), 2);
}

TEST_F(SuggestTest, OfOneNameTwiceTheLaterStays)
{
    EXPECT_EQ(suggest({"AlexaFluor 647", "AlexaFluor 647"}).size(), 1);
}

TEST_F(SuggestTest, ASelectionWithoutWavelengthsDoesNotHarm)
{
    m_engine.m_primaryKeys.clear();
    EXPECT_EQ(suggest({"AlexaFluor 647", "AlexaFluor 555"}).size(), 1);
}

class TakeComponentsTest : public SuggestTest
{
protected:
    void take(const QStringList& names, bool bUseConstraints = true)
    {
        m_engine.m_analysisInput.componentNames = names;
        m_engine.m_analysisInput.useConstraints = bUseConstraints;
        m_engine.m_params.Constraints = {ComponentConstraint()};
        m_engine.takeComponents();
    }
};

TEST_F(TakeComponentsTest, NamesAreTrimmedAndConstraintsSuggested)
{
    m_tables.writeLibrary({"RedEm", "BlueEm"}, [](int i, double w) { return bell(i == 0 ? 620.0 : 580.0, w); });
    take({" Red ", "Blue\t"});
    EXPECT_EQ(m_engine.m_labels, (QStringList{"Red", "Blue"}));
    EXPECT_EQ(m_engine.m_suggestedLabels, (QStringList{"Blue", "Red"}));
    ASSERT_EQ(m_engine.m_params.Constraints.size(), 2);
    EXPECT_EQ(m_engine.m_params.Constraints.at(1).HighPass, QString("580"));
}

TEST_F(TakeComponentsTest, WithoutConstraintsThereAreDefaults)
{
    take({"AlexaFluor 647", "AlexaFluor 555"}, false);
    ASSERT_EQ(m_engine.m_params.Constraints.size(), 2);
    expectDefault(m_engine.m_params.Constraints.at(0));
    expectDefault(m_engine.m_params.Constraints.at(1));
    EXPECT_EQ(m_engine.m_labels.size(), 2);
    EXPECT_EQ(m_engine.m_suggestedLabels, QStringList{"of before"});
}

TEST_F(TakeComponentsTest, ATemporalSequencePredictsNothing)
{
    m_engine.m_eSeqKind = SEQKIND_TEMPORAL;
    take({"AlexaFluor 647", "AlexaFluor 555"});
    ASSERT_EQ(m_engine.m_params.Constraints.size(), 2);
    expectDefault(m_engine.m_params.Constraints.at(0));
    EXPECT_EQ(m_engine.m_suggestedLabels, QStringList{"of before"});
}

TEST_F(TakeComponentsTest, FewerSuggestionsThanNamesLeaveNoConstraints)
{
    take({"AlexaFluor 647", "AlexaFluor 647", "AlexaFluor 555"});
    EXPECT_TRUE(m_engine.m_params.Constraints.isEmpty());
    EXPECT_EQ(m_engine.m_labels.size(), 3);
}

TEST_F(TakeComponentsTest, NoNamesAreNoConstraints)
{
    take({});
    EXPECT_TRUE(m_engine.m_params.Constraints.isEmpty());
    EXPECT_TRUE(m_engine.m_labels.isEmpty());
}

} // namespace

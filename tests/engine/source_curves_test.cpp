// SPDX-License-Identifier: GPL-3.0-or-later
// Sources and tissues over wavelengths, and the spectra and layouts that start an automatic run.
#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"
#include "engine/UserTables.h"
#include "engine/keySelection.h"
#include "engine/sourceCurves.h"
#include "engine/topology.h"

#include "host/CAutoProgressUpdate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

const QString wrongType = "SpumKyvo: do not support this type of initial guess!";
const QString wrongTopology = "SpumKyvo: error in set up wavelength topology";

sSourceSpecFileParameters curveOf(const QVector<double>& wavelengths, const QVector<double>& intensities)
{
    sSourceSpecFileParameters curve;
    curve.n = wavelengths.size();
    curve.wavelength = wavelengths;
    curve.intensity = intensities;
    return curve;
}

TEST(CurveValueTest, EachPointIsWeightedByItsOwnDistance)
{
    const sSourceSpecFileParameters curve = curveOf({500, 600}, {10, 20});
    EXPECT_EQ(curveValue(curve, 525), 17.5);
    EXPECT_EQ(curveValue(curve, 550), 15.0);
    EXPECT_EQ(curveValue(curve, 575), 12.5);
}

TEST(CurveValueTest, APointGivesItsValueExactly)
{
    const sSourceSpecFileParameters curve = curveOf({500, 600, 700}, {10, 20, 5});
    EXPECT_EQ(curveValue(curve, 500), 10.0);
    EXPECT_EQ(curveValue(curve, 600), 20.0);
    EXPECT_EQ(curveValue(curve, 700), 5.0);
}

TEST(CurveValueTest, OutsideTheCurveItIsOne)
{
    const sSourceSpecFileParameters curve = curveOf({500, 600}, {10, 20});
    EXPECT_EQ(curveValue(curve, 499.9), 1.0);
    EXPECT_EQ(curveValue(curve, 600.1), 1.0);
    EXPECT_EQ(curveValue(curve, std::numeric_limits<double>::quiet_NaN()), 1.0);
    EXPECT_EQ(curveValue(sSourceSpecFileParameters(), 500), 1.0);
}

class LookupTest : public ::testing::Test
{
protected:
    LookupTest() : m_engine("no sequence")
    {
        m_tables.write("library_sources.csv", "wavelength_nm,DyeEm,DyeEx\n500,10,2\n600,20,4\n640,3,5\n");
        m_tables.write("luminescent_sources.csv", "wavelength_nm,GlowEm\n500,30\n600,40\n");
        m_tables.write("radioactive_sources.csv", "wavelength_nm,Iso-1\n500,50\n600,60\n");
        m_engine.m_eSeqKind = SEQKIND_EPI_FLUORESCENT;
        m_engine.m_selectedKeyPairs = {{"640nm", "500nm"}, {"Open", "600nm"}, {"640nm", "525nm"}};
    }

    UserTables m_tables;
    CORVSpumKyvo m_engine;
};

TEST_F(LookupTest, TheTableBelongsToTheKindOfSequence)
{
    EXPECT_EQ(m_engine.lookupCurve("DyeEm", "525"), 17.5);
    EXPECT_EQ(m_engine.lookupCurve("GlowEm", "500"), 1.0);
    m_engine.m_bCherenkov = true;
    EXPECT_EQ(m_engine.lookupCurve("DyeEm", "500"), 10.0);
    m_engine.m_eSeqKind = SEQKIND_TEMPORAL;
    EXPECT_EQ(m_engine.lookupCurve("DyeEm", "500"), 10.0);
    m_engine.m_eSeqKind = SEQKIND_LUMINESCENT;
    m_engine.m_bCherenkov = false;
    EXPECT_EQ(m_engine.lookupCurve("GlowEm", "500"), 30.0);
    EXPECT_EQ(m_engine.lookupCurve("DyeEm", "500"), 1.0);
}

TEST_F(LookupTest, CherenkovLightIsLookedUpWithoutAnySuffix)
{
    m_engine.m_eSeqKind = SEQKIND_LUMINESCENT;
    m_engine.m_bCherenkov = true;
    for (const char* pName : {"Iso-1", "Iso-1Em", "Iso-1Ex", "EmIsoEx-1EmEm"}) {
        EXPECT_EQ(m_engine.lookupCurve(pName, "600"), 60.0) << pName;
    }
    EXPECT_EQ(m_engine.lookupCurve("iso-1", "600"), 1.0);
}

TEST_F(LookupTest, WhatIsNotThereGivesOne)
{
    EXPECT_EQ(m_engine.lookupCurve("Nothing", "500"), 1.0);
    EXPECT_EQ(m_engine.lookupCurve("DyeEm", "no number"), 1.0);
    EXPECT_EQ(m_engine.lookupCurve(QString(), QString()), 1.0);
}

TEST_F(LookupTest, AnAutomaticGuessIsEmpty)
{
    EXPECT_TRUE(m_engine.guessSpectrum(0, "Auto").empty());
    EXPECT_TRUE(m_engine.guessSpectrum(3, "an Automatic one").empty());
    EXPECT_EQ(m_engine.guessSpectrum(0, "auto").size(), 3);
}

TEST_F(LookupTest, AnotherTypeOfGuessIsToldAndGivesZeros)
{
    LogCapture log;
    CAutoProgressUpdate progress("");
    m_engine.m_pProgress = &progress;
    const XTNT::Vector<double> guess = m_engine.guessSpectrum(3, "Dye");
    m_engine.m_pProgress = nullptr;
    EXPECT_TRUE(log.has(wrongType, 2));
    ASSERT_EQ(guess.size(), 3);
    EXPECT_EQ(guess.Max(), 0.0);
    EXPECT_EQ(guess.Min(), 0.0);
}

TEST_F(LookupTest, AGuessIsTheProductOfBothWavelengths)
{
    // 640 nm is on the curve itself; "Open" is no wavelength.
    const XTNT::Vector<double> guess = m_engine.guessSpectrum(0, "Dye");
    ASSERT_EQ(guess.size(), 3);
    EXPECT_EQ(guess[0], 10.0 * 3.0);
    EXPECT_EQ(guess[1], 20.0);
    EXPECT_EQ(guess[2], 17.5 * 3.0);
}

TEST_F(LookupTest, TheExcitationAxisLooksAtTheExcitationCurve)
{
    m_engine.m_eAxis = SPECTRUMAXIS_EXCITATION;
    m_engine.m_selectedKeyPairs = {{"600nm", "640nm"}, {"640nm", "Open"}};
    const XTNT::Vector<double> guess = m_engine.guessSpectrum(0, "Dye");
    EXPECT_EQ(guess[0], 4.0 * 5.0);
    EXPECT_EQ(guess[1], 5.0);
}

TEST_F(LookupTest, OfAFluorescentOrTemporalSequenceASuffixOfTheGuessIsCut)
{
    for (const int eKind : {SEQKIND_EPI_FLUORESCENT, SEQKIND_TRANSILLUMINATION, SEQKIND_TEMPORAL}) {
        m_engine.m_eSeqKind = eKind;
        for (const char* pName : {"Dye", "DyeEm", "Dyeem", "DyeEX", "DyeeX"}) {
            EXPECT_EQ(m_engine.guessSpectrum(0, pName)[1], 20.0) << pName;
        }
        EXPECT_EQ(m_engine.guessSpectrum(0, "DyeEmEm")[1], 1.0); // only one is cut
    }
    m_engine.m_eSeqKind = SEQKIND_LUMINESCENT;
    EXPECT_EQ(m_engine.guessSpectrum(0, "Glow")[1], 40.0);
    EXPECT_EQ(m_engine.guessSpectrum(0, "GlowEm")[1], 1.0);
    m_engine.m_bCherenkov = true;
    EXPECT_EQ(m_engine.guessSpectrum(0, "Iso-1Ex")[1], 60.0);
}

TEST(WavelengthDigitsTest, FiltersBecomeThreeDigits)
{
    QString strKey = "Open";
    EXPECT_FALSE(CORVSpumKyvo::wavelengthDigits(strKey));
    EXPECT_EQ(strKey, QString("Open"));
    strKey = "640nm";
    EXPECT_TRUE(CORVSpumKyvo::wavelengthDigits(strKey));
    EXPECT_EQ(strKey, QString("640"));
    strKey = "GFP 500/20";
    EXPECT_TRUE(CORVSpumKyvo::wavelengthDigits(strKey));
    EXPECT_EQ(strKey, QString("500"));
}

class TopologyTest : public ::testing::Test
{
protected:
    TopologyTest() : m_engine("no sequence") {}

    XTNT::Matrix<int> layoutOf(const QList<KeyPair>& selection)
    {
        m_engine.m_selectedKeyPairs = selection;
        m_engine.updateKeys();
        return layout();
    }
    XTNT::Matrix<int> layout()
    {
        CAutoProgressUpdate progress("");
        m_engine.m_pProgress = &progress;
        XTNT::Matrix<int> out;
        m_engine.buildTopology(out);
        m_engine.m_pProgress = nullptr;
        return out;
    }
    static void expectRow(const XTNT::Matrix<int>& out, long long i, const std::vector<int>& row)
    {
        ASSERT_LT(i, out.num_rows());
        ASSERT_EQ(out.num_cols(), static_cast<long long>(row.size()));
        for (std::size_t j = 0; j < row.size(); ++j) {
            EXPECT_EQ(out[i][static_cast<long long>(j)], row[j]) << i << ", " << j;
        }
    }

    LogCapture m_log;
    CORVSpumKyvo m_engine;
};

TEST_F(TopologyTest, OneImageAPrimaryValueIsOneRow)
{
    const XTNT::Matrix<int> out = layoutOf({{"640", "700"}, {"640", "720"}, {"640", "740"}});
    ASSERT_EQ(out.num_rows(), 1);
    expectRow(out, 0, {1, 1, 1});
    // Also where the images stand in several rows.
    const XTNT::Matrix<int> stairs = layoutOf({{"600", "700"}, {"620", "720"}, {"640", "740"}});
    ASSERT_EQ(stairs.num_rows(), 1);
    expectRow(stairs, 0, {1, 1, 1});
}

TEST_F(TopologyTest, AFullGridAndAGridWithGaps)
{
    const XTNT::Matrix<int> full = layoutOf({{"600", "700nm"}, {"600", "720nm"}, {"640", "700nm"}, {"640", "720nm"}});
    ASSERT_EQ(full.num_rows(), 2);
    expectRow(full, 0, {1, 1});
    expectRow(full, 1, {1, 1});
    const XTNT::Matrix<int> gaps = layoutOf({{"600", "700"}, {"600", "720"}, {"640", "720"}, {"640", "740"}});
    ASSERT_EQ(gaps.num_rows(), 2);
    expectRow(gaps, 0, {1, 1, 0});
    expectRow(gaps, 1, {0, 1, 1});
    EXPECT_FALSE(m_log.mentions("topology"));
}

TEST_F(TopologyTest, AlongTheExcitationAxisColumnsAreExcitations)
{
    m_engine.m_eAxis = SPECTRUMAXIS_EXCITATION;
    const XTNT::Matrix<int> out = layoutOf({{"600nm", "700"}, {"620nm", "700"}, {"640nm", "700"}, {"640nm", "720"}});
    ASSERT_EQ(out.num_rows(), 2);
    expectRow(out, 0, {1, 1, 1});
    expectRow(out, 1, {0, 0, 1});
}

TEST_F(TopologyTest, AnImageWithoutAPlaceIsToldAndPassedOver)
{
    m_engine.m_selectedKeyPairs = {{"600", "700"}, {"600", "720"}, {"620", "700"}, {"640", "740"}};
    m_engine.m_primaryKeys = QStringList{"700", "720"};
    m_engine.m_secondaryKeys = QStringList{"600"};
    const XTNT::Matrix<int> out = layout();
    ASSERT_EQ(out.num_rows(), 1);
    expectRow(out, 0, {1, 1});
    EXPECT_EQ(m_log.count(wrongTopology, 16), 2);
}

TEST_F(TopologyTest, ImagesOfOneKeyShareAPlace)
{
    const XTNT::Matrix<int> out = layoutOf({{"600", "500nm"}, {"600", "500/20"}, {"600", "520nm"}});
    ASSERT_EQ(out.num_rows(), 1);
    expectRow(out, 0, {1, 1});
}

TEST(SampledSourceTest, ValuesAreSharesOfTheWholeCurvesLargest)
{
    const sSourceSpecFileParameters curve = curveOf({500, 510, 520.5}, {1, 4, 3});
    const XTNT::Vector<double> values = sampledSource(curve, {"500", "510", "520", "520.5", "no"});
    ASSERT_EQ(values.size(), 5);
    EXPECT_EQ(values[0], 0.25);
    EXPECT_EQ(values[1], 1.0);
    EXPECT_EQ(values[2], 0.0); // exactly or not at all
    EXPECT_EQ(values[3], 0.75);
    EXPECT_EQ(values[4], 0.0);
    // The largest counts also where no key meets it.
    EXPECT_EQ(sampledSource(curve, {"500"})[0], 0.25);
}

TEST(SampledSourceTest, OfARepeatedWavelengthTheFirstCounts)
{
    EXPECT_EQ(sampledSource(curveOf({500, 500}, {2, 4}), {"500"})[0], 0.5);
}

TEST(SampledSourceTest, AnEmptyCurveGivesZerosAndADarkOneDividesByZero)
{
    EXPECT_EQ(sampledSource(sSourceSpecFileParameters(), {"500"})[0], 0.0);
    EXPECT_TRUE(std::isnan(sampledSource(curveOf({500}, {0}), {"500"})[0]));
    EXPECT_EQ(sampledSource(sSourceSpecFileParameters(), {}).size(), 0);
}

TEST_F(LookupTest, ASourceOverKeysComesFromTheSameTables)
{
    const QStringList keys{"500", "600"};
    EXPECT_EQ(m_engine.sourceSpectrum("DyeEm", keys)[0], 0.5);
    EXPECT_EQ(m_engine.sourceSpectrum("DyeEm", keys)[1], 1.0);
    EXPECT_EQ(m_engine.sourceSpectrum("NothingEm", keys)[1], 0.0);
    m_engine.m_eSeqKind = SEQKIND_LUMINESCENT;
    EXPECT_EQ(m_engine.sourceSpectrum("GlowEm", keys)[0], 0.75);
    m_engine.m_bCherenkov = true;
    EXPECT_EQ(m_engine.sourceSpectrum("Iso-1Em", keys)[0], 50.0 / 60.0);
}

// Absorption 1 to 3 and reduced scattering 9 to 7 per centimetre, so that both add up to 1 per millimetre.
const QByteArray slab = "tissue,wavelength_nm,absorption_per_cm,reduced_scattering_per_cm\n"
                        "Slab,600,1,9\nSlab,700,3,7\nMuscle,600,1,9\nRMP-7,600,2,8\n";

double throughSlab(double absorptionPerMillimetre)
{
    return 3.0 * std::exp(-5.0 * std::sqrt(3.0 * absorptionPerMillimetre));
}

class TissueTest : public ::testing::Test
{
protected:
    TissueTest() : m_engine("no sequence") { m_tables.write("tissues.csv", slab); }

    double at(const QString& strTissue, const QString& strKey)
    {
        const XTNT::Vector<double> factors = m_engine.tissueAttenuation(strTissue, {strKey});
        EXPECT_EQ(factors.size(), 1);
        return factors[0];
    }

    UserTables m_tables;
    CORVSpumKyvo m_engine;
};

TEST_F(TissueTest, TheFactorIsThatOfTheDiffusionApproximation)
{
    EXPECT_DOUBLE_EQ(at("Slab", "600"), throughSlab(0.1));
    EXPECT_DOUBLE_EQ(at("Slab", "700"), throughSlab(0.3));
}

TEST_F(TissueTest, PropertiesAreInterpolatedAndHeldBeyondTheEnds)
{
    EXPECT_DOUBLE_EQ(at("Slab", "650"), throughSlab(0.2));
    EXPECT_DOUBLE_EQ(at("Slab", "625"), throughSlab(0.15));
    EXPECT_DOUBLE_EQ(at("Slab", "400"), throughSlab(0.1));
    EXPECT_DOUBLE_EQ(at("Slab", "900"), throughSlab(0.3));
}

TEST_F(TissueTest, AnUnnamedTissueIsThatOfTheSubject)
{
    m_engine.m_strSubjectType = "Phantom";
    EXPECT_DOUBLE_EQ(at("", "600"), throughSlab(0.2));
    m_engine.m_strSubjectType = "Nude Mouse";
    EXPECT_DOUBLE_EQ(at("", "600"), throughSlab(0.1));
    m_engine.m_strSubjectType = "Mouse Phantom";
    EXPECT_DOUBLE_EQ(at("", "600"), throughSlab(0.2));
    m_engine.m_strSubjectType = "Other";
    EXPECT_EQ(at("", "600"), 1.0);
    m_engine.m_strSubjectType = "mouse";
    EXPECT_EQ(at("", "600"), 1.0);
    m_engine.m_strSubjectType.clear();
    EXPECT_DOUBLE_EQ(at("", "600"), throughSlab(0.2));
}

TEST_F(TissueTest, AnUnknownTissueLeavesLightAsItIs)
{
    const XTNT::Vector<double> factors = m_engine.tissueAttenuation("Stone", {"600", "700"});
    ASSERT_EQ(factors.size(), 2);
    EXPECT_EQ(factors[0], 1.0);
    EXPECT_EQ(factors[1], 1.0);
    EXPECT_TRUE(m_engine.tissueAttenuation("Slab", {}).empty());
}

TEST(InstalledTissueTest, MuscleTakesTheBlueSide)
{
    const CORVSpumKyvo engine("no sequence");
    const XTNT::Vector<double> factors = engine.tissueAttenuation("Muscle", {"540", "600", "700", "800"});
    EXPECT_LT(factors[0], factors[1]);
    EXPECT_LT(factors[1], factors[2]);
    EXPECT_GT(factors[0], 0.0);
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
#include "SequenceFolders.h"

#include "platform/orvapi/DecayCorrection.h"

#include <rapidcheck/gtest.h>

#include <cmath>
#include <limits>

using namespace sequencefolders;

namespace {

const double ln2 = 0.69314718055994531;

TEST(DecayTest, FactorsByHandForTwoHalfLives)
{
    // Exposures of 100 s, the second 200 s behind the first.
    const QVector<Exposure> exposures{{1000.0, 100.0}, {1200.0, 100.0}};
    QVector<double> factors;
    ASSERT_TRUE(decayCorrectionFactors(exposures, 100.0, factors));
    ASSERT_EQ(factors.size(), 2);
    EXPECT_NEAR(factors[0], 2.0 * ln2, 1e-12); // ln 2 / (1 - 1/2)
    EXPECT_NEAR(factors[1], 8.0 * ln2, 1e-12); // two half lives later
    ASSERT_TRUE(decayCorrectionFactors(exposures, 50.0, factors));
    EXPECT_NEAR(factors[0], 2.0 * ln2 / 0.75, 1e-12); // two half lives long
    EXPECT_NEAR(factors[1], 16.0 * 2.0 * ln2 / 0.75, 1e-11);
}

TEST(DecayTest, LongExposureAndShortExposureKeepTheirDigits)
{
    QVector<double> factors;
    ASSERT_TRUE(decayCorrectionFactors({{0.0, 1000.0}}, 1.0, factors));
    EXPECT_NEAR(factors[0], 1000.0 * ln2, 1e-9);
    ASSERT_TRUE(decayCorrectionFactors({{0.0, 1e-6}}, 1e6, factors));
    EXPECT_NEAR(factors[0], 1.0, 1e-12);
    ASSERT_TRUE(decayCorrectionFactors({{0.0, 5.0}, {60.0, 5.0}}, std::numeric_limits<double>::infinity(), factors));
    EXPECT_EQ(factors, (QVector<double>{1.0, 1.0}));
}

TEST(DecayTest, TheEarliestStartCountsWhereverItStands)
{
    QVector<double> later;
    QVector<double> earlier;
    ASSERT_TRUE(decayCorrectionFactors({{300.0, 10.0}, {100.0, 10.0}}, 100.0, later));
    ASSERT_TRUE(decayCorrectionFactors({{100.0, 10.0}, {300.0, 10.0}}, 100.0, earlier));
    EXPECT_EQ(later[0], earlier[1]);
    EXPECT_EQ(later[1], earlier[0]);
    EXPECT_NEAR(later[0] / later[1], 4.0, 1e-12);
}

TEST(DecayTest, RefusedFiguresLeaveNoFactors)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    QVector<double> factors{1.0, 2.0};
    for (const double halfLife : {0.0, -1.0, nan}) {
        EXPECT_FALSE(decayCorrectionFactors({{0.0, 1.0}}, halfLife, factors));
        EXPECT_TRUE(factors.isEmpty());
    }
    for (const Exposure& exposure : {Exposure{0.0, 0.0}, Exposure{0.0, -1.0}, Exposure{0.0, nan}, Exposure{nan, 1.0}}) {
        EXPECT_FALSE(decayCorrectionFactors({{0.0, 1.0}, exposure}, 100.0, factors));
    }
    EXPECT_FALSE(decayCorrectionFactors({{0.0, 1.0}, {1e6, 1.0}}, 1.0, factors)); // 2^1e6
    EXPECT_TRUE(factors.isEmpty());
    EXPECT_TRUE(decayCorrectionFactors({}, 100.0, factors));
}

RC_GTEST_PROP(DecayLaw, FactorTurnsTheMeanOfTheExposureIntoTheValueAtTheStart, ())
{
    const double halfLife = *rc::gen::inRange(1, 100000) / 7.0;
    const double start = *rc::gen::inRange(0, 3000) / 100.0 * halfLife / 10.0;
    const double length = *rc::gen::inRange(1, 5000) / 1000.0 * halfLife;
    QVector<double> factors;
    RC_ASSERT(decayCorrectionFactors({{0.0, 1.0}, {start, length}}, halfLife, factors));
    // Mean of 2^(-t / half life) over the exposure by Simpson's rule on 2000 parts.
    const int parts = 2000;
    double sum = 0.0;
    for (int i = 0; i <= parts; ++i) {
        const double weight = i == 0 || i == parts ? 1.0 : i % 2 == 1 ? 4.0 : 2.0;
        sum += weight * std::exp2(-(start + length * i / parts) / halfLife);
    }
    RC_ASSERT(std::abs(factors[1] * sum / (3.0 * parts) - 1.0) < 1e-9);
}

class SequenceDecayTest : public SequenceFolderTest
{
protected:
    void SetUp() override
    {
        add("A", "2021-12-31", "23:59:00");
        add("B", "2022-01-01", "00:00:40.000"); // 100 s later, in another year
        m_sequence.setSequenceID("decay");
    }
    void add(const QString& strClick, const QString& strDate, const QString& strTime)
    {
        auto* pDataset = new CORVDataset;
        pDataset->clickInfo = fullClick(strClick).info;
        setKey(pDataset->clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kAcquisitionDate, strDate);
        setKey(pDataset->clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kAcquisitionTime, strTime);
        setKey(pDataset->clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kExposureTime, "100");
        ASSERT_TRUE(m_sequence.addDataset(pDataset));
    }
    CPLSection& luminescent(const char* pClick)
    {
        return *m_sequence.getDataset(pClick)->clickInfo[ClickKeys::kLuminescentImage];
    }

    CORVSequenceDataset m_sequence;
    QVector<double> m_factors{9.0};
};

TEST_F(SequenceDecayTest, OneFactorAClickNumberInTheirOrder)
{
    ASSERT_TRUE(m_sequence.calculateDecayCorrectFactor_CherenkovData({"B", "A", "B"}, 100.0, m_factors));
    ASSERT_EQ(m_factors.size(), 3);
    EXPECT_NEAR(m_factors[1], 2.0 * ln2, 1e-12);
    EXPECT_NEAR(m_factors[0], 4.0 * ln2, 1e-12);
    EXPECT_EQ(m_factors[2], m_factors[0]);
    // The earliest among those given, not of the sequence.
    ASSERT_TRUE(m_sequence.calculateDecayCorrectFactor_CherenkovData({"B"}, 100.0, m_factors));
    EXPECT_NEAR(m_factors[0], 2.0 * ln2, 1e-12);
}

TEST_F(SequenceDecayTest, MissingDatasetTimeOrLengthGivesFalse)
{
    EXPECT_FALSE(m_sequence.calculateDecayCorrectFactor_CherenkovData({"A", "Z"}, 100.0, m_factors));
    EXPECT_TRUE(m_factors.isEmpty());
    EXPECT_FALSE(m_sequence.calculateDecayCorrectFactor_CherenkovData({"A"}, 0.0, m_factors));
    for (const char* pKey : {ClickKeys::kAcquisitionTime, ClickKeys::kAcquisitionDate, ClickKeys::kExposureTime}) {
        QString before;
        ASSERT_EQ(luminescent("B").getValue(pKey, &before), 0);
        luminescent("B").removeKey(pKey);
        EXPECT_FALSE(m_sequence.calculateDecayCorrectFactor_CherenkovData({"A", "B"}, 100.0, m_factors)) << pKey;
        EXPECT_TRUE(m_sequence.calculateDecayCorrectFactor_CherenkovData({"A"}, 100.0, m_factors)) << pKey;
        luminescent("B").setValue(pKey, before);
    }
    luminescent("B").setValue(ClickKeys::kExposureTime, "0");
    EXPECT_FALSE(m_sequence.calculateDecayCorrectFactor_CherenkovData({"A", "B"}, 100.0, m_factors));
    EXPECT_TRUE(m_factors.isEmpty());
}

TEST_F(SequenceDecayTest, CherenkovIsotopeIsFoundUnderTheDatabasesName)
{
    QString isotope = "before";
    EXPECT_FALSE(m_sequence.isCherenkovIsotopeInData(isotope));
    EXPECT_TRUE(isotope.isEmpty());
    luminescent("A").setValue(ClickKeys::kIsotope, "Tc-99m"); // known, without such light
    EXPECT_FALSE(m_sequence.isCherenkovIsotopeInData(isotope));
    luminescent("B").setValue(ClickKeys::kIsotope, "f-18");
    EXPECT_TRUE(m_sequence.isCherenkovIsotopeInData(isotope));
    EXPECT_EQ(isotope, "F-18");
    luminescent("B").setValue(ClickKeys::kIsotope, "Undefined");
    EXPECT_FALSE(m_sequence.isCherenkovIsotopeInData(isotope));
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/tableOnBands.h"
#include "services/support/CliFixture.h"
#include "services/support/SmallSequence.h"

#include "engine/EngineEnums.h"
#include "host/CORVSequenceDataset.h"
#include "services/session/SpectraTableReader.h"

#include <gtest/gtest.h>

namespace {

// The lines of a table are straight, so that a mean over a band is known to the last digits.
constexpr double rounding = 1e-12;

const QVector<QPointF> tent = {{600, 0}, {700, 1}, {800, 0}};

double over(double centre, double width)
{
    double value = -1.0;
    EXPECT_TRUE(curveOverBand(tent, centre, width, &value)) << centre << " by " << width;
    return value;
}

bool reaches(double centre, double width)
{
    double value = 0.0;
    return curveOverBand(tent, centre, width, &value);
}

QList<SpectralBand> bandsFor(const QList<KeyPair>& pairs, double width = 0.0)
{
    QList<SpectralBand> bands = bandsOf(pairs);
    for (SpectralBand& band : bands) {
        band.emission.width = width;
    }
    return bands;
}

SpectraTable tableOf(const QByteArray& text)
{
    SpectraTable table;
    QString error;
    EXPECT_TRUE(SpectraTableReader::parse(text, QStringLiteral("t.csv"), &table, &error)) << qPrintable(error);
    return table;
}

void expectValues(const QByteArray& text, const QList<SpectralBand>& bands, const std::vector<double>& expected,
                  int axis = SPECTRUMAXIS_EMISSION)
{
    const auto values = tableOnBands(tableOf(text), 0, bands, axis, QStringLiteral("t.csv"));
    ASSERT_EQ(values.n_, static_cast<long long>(expected.size()));
    for (std::size_t j = 0; j < expected.size(); ++j) {
        EXPECT_NEAR(values[static_cast<long long>(j)], expected[j], rounding) << j;
    }
}

QString refusal(const QByteArray& text, const QList<SpectralBand>& bands, int axis = SPECTRUMAXIS_EMISSION)
{
    return failureOf([&] { tableOnBands(tableOf(text), 0, bands, axis, QStringLiteral("t.csv")); });
}

const QByteArray line = "wavelength,A\n600,0\n700,1\n800,0\n";

} // namespace

TEST(CurveOverBandTest, WithoutAWidthItIsTheValueBetweenThePoints)
{
    EXPECT_EQ(over(600, 0), 0.0);
    EXPECT_EQ(over(625, 0), 0.25);
    EXPECT_EQ(over(700, 0), 1.0);
    EXPECT_EQ(over(800, 0), 0.0);
}

TEST(CurveOverBandTest, OverAWidthItIsTheMean)
{
    EXPECT_NEAR(over(650, 40), 0.5, rounding);
    EXPECT_NEAR(over(700, 40), 0.9, rounding);
    EXPECT_NEAR(over(700, 200), 0.5, rounding);
    EXPECT_NEAR(over(610, 20), 0.1, rounding);
    EXPECT_NEAR(over(690, 40), (0.7 + 1.0) / 2 * 0.75 + (1.0 + 0.9) / 2 * 0.25, rounding);
}

TEST(CurveOverBandTest, NothingIsExtrapolated)
{
    EXPECT_FALSE(reaches(599, 0));
    EXPECT_FALSE(reaches(801, 0));
    EXPECT_FALSE(reaches(605, 20));
    EXPECT_FALSE(reaches(700, 202));
    double value = 0.0;
    EXPECT_FALSE(curveOverBand({}, 700, 0, &value));
    EXPECT_TRUE(curveOverBand({{700, 3}}, 700, 0, &value));
    EXPECT_EQ(value, 3.0);
    EXPECT_FALSE(curveOverBand({{700, 3}}, 700, 10, &value));
}

TEST(TableOnBandsTest, ACurveIsBroughtToTheBands)
{
    expectValues(line, bandsFor({{"640", "650"}, {"640", "700"}, {"640", "775"}}), {0.5, 1.0, 0.25});
    expectValues(line, bandsFor({{"640", "650"}, {"640", "700"}}, 40), {0.5, 0.9});
    expectValues("Emission,A\n600,0\n800,2\n", bandsFor({{"", "700"}, {"", "800"}}), {1.0, 2.0});
}

TEST(TableOnBandsTest, EachBandBeyondTheCurveIsNamed)
{
    EXPECT_EQ(
        refusal(line, bandsFor({{"640", "590"}, {"640", "700"}, {"640", "820"}})),
        "t.csv: the spectrum \"A\" has no value for 640/590, 640/820; it reaches from 600 to 800 nm, and nothing is "
        "extrapolated");
    EXPECT_EQ(refusal(line, bandsFor({{"640", "610"}, {"640", "700"}}, 40)),
              "t.csv: the spectrum \"A\" has no value for 640/610 (590 to 630 nm); it reaches from 600 to 800 nm, and "
              "nothing is extrapolated");
    EXPECT_EQ(
        refusal("wavelength,A,B\n600,,1\n650,1,1\n700,1,1\n", bandsFor({{"", "640"}, {"", "700"}})),
        "t.csv: the spectrum \"A\" has no value for 640; it reaches from 650 to 700 nm, and nothing is extrapolated");
}

TEST(TableOnBandsTest, AnEmptyFieldIsBridged)
{
    expectValues("wavelength,A\n600,1\n650,\n700,2\n", bandsFor({{"", "650"}}), {1.5});
}

TEST(TableOnBandsTest, OverExcitationTheExcitationCounts)
{
    const auto bands = bandsFor({{"500", "700"}, {"550", "700"}});
    expectValues("wavelength,A\n500,1\n600,2\n", bands, {1.0, 1.5}, SPECTRUMAXIS_EXCITATION);
    expectValues("excitation,A\n500,1\n600,2\n", bands, {1.0, 1.5}, SPECTRUMAXIS_EXCITATION);
    EXPECT_EQ(refusal("emission,A\n500,1\n700,2\n", bands, SPECTRUMAXIS_EXCITATION),
              "t.csv: the table is over emission, the images are told apart by their excitation");
}

TEST(TableOnBandsTest, ACurveSaysNothingOfSeveralExcitations)
{
    EXPECT_EQ(refusal(line, bandsFor({{"605", "700"}, {"640", "700"}, {"640", "720"}})),
              "t.csv: the table says nothing of the excitation, and the images have several; \"spum library template\" "
              "writes one with both to fill in, --select takes images of one excitation");
}

TEST(TableOnBandsTest, PairsAreTakenAsTheyStand)
{
    const QByteArray pairs = "excitation,emission,A\n605,700,1\n605,720,2\n640,700,3\n640,740,5\n";
    expectValues(pairs, bandsFor({{"640", "700"}, {"605", "720"}}, 40), {3.0, 2.0});
    expectValues(pairs, bandsFor({{"640", "720"}, {"605", "715"}}), {4.0, 1.75});
    EXPECT_EQ(refusal(pairs, bandsFor({{"605", "740"}, {"675", "700"}, {"640", "740"}})),
              "t.csv: the spectrum \"A\" has no value for 605/740, 675/700");
    expectValues("excitation,emission,A\nOpen,700,1\nOpen,720,2\n", bandsFor({{"Open", "720"}, {"Open", "700"}}),
                 {2.0, 1.0});
    expectValues("excitation,emission,A\n600,Open,1\n620,Open,2\n", bandsFor({{"610", "Open"}}), {1.5},
                 SPECTRUMAXIS_EXCITATION);
}

TEST(FilterWidthTest, IsTakenFromTheTextOfAFilter)
{
    EXPECT_EQ(filterWidth("520/30"), 30.0);
    EXPECT_EQ(filterWidth("520/30nm"), 30.0);
    EXPECT_EQ(filterWidth("520nm / 12.5 nm"), 12.5);
    EXPECT_EQ(filterWidth("BP 520/30"), 30.0);
    for (const char* text : {"520nm", "520", "Open", "", "520/", "5/30", "520/30/2", "520-540"}) {
        EXPECT_EQ(filterWidth(text), 0.0) << text;
    }
}

class BandsOfSequenceTest : public CliFixture
{
};

TEST_F(BandsOfSequenceTest, WidthsAreThoseOfTheFilters)
{
    SmallSequence sequence;
    for (const char* emission : {"700/20", "720nm", "740/40nm"}) {
        SmallImage image;
        image.emission = emission;
        sequence.images.append(image);
    }
    const auto opened = sequence.inMemory();
    const auto bands = bandsOf(*opened, {{"640", "740"}, {"640", "700"}, {"640", "720"}, {"640", "900"}});
    ASSERT_EQ(bands.size(), 4);
    EXPECT_EQ(bands[0].emission.centre, 740.0);
    EXPECT_EQ(bands[0].emission.width, 40.0);
    EXPECT_EQ(bands[1].emission.width, 20.0);
    EXPECT_EQ(bands[2].emission.width, 0.0);
    EXPECT_EQ(bands[3].emission.width, 0.0);
    EXPECT_EQ(bands[0].excitation.centre, 640.0);
    EXPECT_EQ(bands[0].text(SPECTRUMAXIS_EMISSION), "640/740 (720 to 760 nm)");
    EXPECT_EQ(bands[2].text(SPECTRUMAXIS_EMISSION), "640/720");
}

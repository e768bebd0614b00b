// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/pictures/ResultPlot.h"

#include "services/support/SmallAnalysis.h"

#include <set>

namespace {

// A result of two components over three images, whose keys a test sets.
class ResultPlotTest : public SmallAnalysis
{
protected:
    void SetUp() override
    {
        SmallAnalysis::SetUp();
        analyse();
    }
    SpectrumPlot plotOver(int eAxis, const QList<KeyPair>& pairs)
    {
        engine().m_eAxis = eAxis;
        engine().m_selectedKeyPairs = pairs;
        return plotOfSpectra(engine(), {QColor("#0c7955"), QColor("#ffffc0")});
    }
};

QStringList labelsOf(const SpectrumPlot& plot)
{
    QStringList labels;
    for (const PlotCurve& curve : plot.curves()) {
        if (!curve.label.isEmpty()) {
            labels.append(curve.label);
        }
    }
    return labels;
}

QList<PlotCurve> drawnOf(const SpectrumPlot& plot)
{
    QList<PlotCurve> drawn;
    for (const PlotCurve& curve : plot.curves()) {
        if (!curve.x.isEmpty()) {
            drawn.append(curve);
        }
    }
    return drawn;
}

} // namespace

TEST_F(ResultPlotTest, OneExcitationGivesALineAComponentOverWavelength)
{
    const SpectrumPlot plot =
        plotOver(SPECTRUMAXIS_EMISSION, {{"640nm", "740nm"}, {"640nm", "700nm"}, {"640nm", "720nm"}});
    ASSERT_EQ(drawnOf(plot).size(), 2);
    EXPECT_EQ(drawnOf(plot)[0].x, (QVector<double>{700, 720, 740}));
    EXPECT_EQ(drawnOf(plot)[0].y, (QVector<double>{0.5, 0.0, 1.0}));
    EXPECT_EQ(labelsOf(plot), QStringList({"Dye A", "Dye B"}));
    EXPECT_EQ(plot.xLabel(), "Emission Wavelength [nm]");
    EXPECT_NE(drawnOf(plot)[0].marker, drawnOf(plot)[1].marker);
}

TEST_F(ResultPlotTest, CurvesHaveTheColoursGivenDarkenedWhereWhiteWouldHideThem)
{
    const QList<PlotCurve> drawn =
        drawnOf(plotOver(SPECTRUMAXIS_EMISSION, {{"640", "700"}, {"640", "720"}, {"640", "740"}}));
    EXPECT_EQ(drawn[0].color, QColor("#0c7955"));
    EXPECT_LT(drawn[1].color.lightness(), QColor("#ffffc0").lightness());
}

TEST_F(ResultPlotTest, LineIsBrokenBetweenExcitationsWhichTheLegendNamesWithTheirUnit)
{
    const SpectrumPlot plot = plotOver(SPECTRUMAXIS_EMISSION, {{"605", "640"}, {"605", "660"}, {"675", "700"}});
    const QList<PlotCurve> drawn = drawnOf(plot);
    ASSERT_EQ(drawn.size(), 4);
    EXPECT_EQ(drawn[0].x, (QVector<double>{640, 660}));
    EXPECT_EQ(drawn[1].x, (QVector<double>{700}));
    EXPECT_EQ(drawn[0].color, drawn[1].color);
    EXPECT_NE(drawn[0].style, drawn[1].style);
    EXPECT_EQ(labelsOf(plot), QStringList({"Dye A", "Dye B", "ex 605 nm", "ex 675 nm"}));
}

TEST_F(ResultPlotTest, SomeImagesOfASequenceHaveTheAxisThatTheirKeysHave)
{
    engine().m_eAxis = SPECTRUMAXIS_EMISSION;
    const PlottedImages images = PlottedImages::of(engine(), {{"605", "780"}, {"640", "780"}});
    EXPECT_EQ(images.axis, SPECTRUMAXIS_EXCITATION);
    EXPECT_EQ(images.pairs.size(), 2);
    // A single image lies along none: as the sequence does.
    EXPECT_EQ(PlottedImages::of(engine(), {{"605", "780"}}).axis, SPECTRUMAXIS_EMISSION);
}

TEST_F(ResultPlotTest, ValuesOfNoneHaveTheirPlaceAmongTheMarkersAndNoCurve)
{
    const PlottedImages images = PlottedImages::of(engine());
    const QList<ValuesOverImages> values = {{"none", Qt::red, {}, false}, {"some", Qt::blue, {1.0, 2.0, 3.0}, false}};
    const SpectrumPlot plot = plotOverImages(images, "", "", values);
    ASSERT_EQ(drawnOf(plot).size(), 1);
    EXPECT_EQ(drawnOf(plot)[0].marker, curveInLegend(values[1], 1).marker);
    EXPECT_NE(drawnOf(plot)[0].marker, curveInLegend(values[0], 0).marker);
}

TEST_F(ResultPlotTest, AlongExcitationsTheLegendNamesTheEmissions)
{
    const SpectrumPlot plot = plotOver(SPECTRUMAXIS_EXCITATION, {{"605", "780"}, {"640", "780"}, {"640", "Open"}});
    EXPECT_EQ(labelsOf(plot), QStringList({"Dye A", "Dye B", "em 780 nm", "em Open"}));
    EXPECT_EQ(plot.xLabel(), "Excitation Wavelength [nm]");
}

TEST_F(ResultPlotTest, TimeRunsOnThroughTheIntervalsAtTheirTrueTimes)
{
    const SpectrumPlot plot = plotOver(SPECTRUMAXIS_TIME, {{"Int1", "0"}, {"Int1", "20"}, {"Int2", "300.5"}});
    ASSERT_EQ(drawnOf(plot).size(), 2);
    EXPECT_EQ(drawnOf(plot)[0].x, (QVector<double>{0.0, 20.0, 300.5}));
    EXPECT_EQ(labelsOf(plot), QStringList({"Dye A", "Dye B"}));
    EXPECT_EQ(plot.xLabel(), "Time Point [s]");
}

TEST_F(ResultPlotTest, LongSeriesAreShownInMinutesOrHours)
{
    const SpectrumPlot minutes = plotOver(SPECTRUMAXIS_TIME, {{"Int1", "0"}, {"Int1", "60"}, {"Int1", "3600"}});
    EXPECT_EQ(drawnOf(minutes)[0].x, (QVector<double>{0.0, 1.0, 60.0}));
    EXPECT_EQ(minutes.xLabel(), "Time Point [min]");
    const SpectrumPlot hours = plotOver(SPECTRUMAXIS_TIME, {{"Int1", "0"}, {"Int1", "3600"}, {"Int1", "86400"}});
    EXPECT_EQ(drawnOf(hours)[0].x, (QVector<double>{0.0, 1.0, 24.0}));
    EXPECT_EQ(hours.xLabel(), "Time Point [h]");
}

TEST_F(ResultPlotTest, IntervalsThatOverlapHaveLinesOfTheirOwn)
{
    const SpectrumPlot plot = plotOver(SPECTRUMAXIS_TIME, {{"Int1", "0"}, {"Int1", "20"}, {"Int2", "10"}});
    EXPECT_EQ(drawnOf(plot).size(), 4);
    EXPECT_EQ(labelsOf(plot), QStringList({"Dye A", "Dye B", "Int1", "Int2"}));
    const SpectrumPlot same = plotOver(SPECTRUMAXIS_TIME, {{"Int1", "0"}, {"Int1", "20"}, {"Int2", "20"}});
    EXPECT_EQ(drawnOf(same).size(), 4);
}

TEST_F(ResultPlotTest, SixExcitationsAreToldApart)
{
    engine().m_spectra = XTNT::Matrix<double>(2, 6);
    QList<KeyPair> pairs;
    for (int i = 0; i < 6; ++i) {
        pairs.append({QString::number(500 + 20 * i), "780"});
        engine().m_spectra[0][i] = engine().m_spectra[1][i] = 0.5;
    }
    std::set<std::pair<int, double>> looks;
    const QList<PlotCurve> drawn = drawnOf(plotOver(SPECTRUMAXIS_EMISSION, pairs));
    ASSERT_EQ(drawn.size(), 12);
    for (int i = 0; i < 6; ++i) {
        looks.insert({static_cast<int>(drawn[i].style), drawn[i].width});
    }
    EXPECT_EQ(looks.size(), 6U);
}

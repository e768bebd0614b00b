// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/pictures/SpectrumPlot.h"

#include <QDomDocument>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

const QSize pageSize(880, 560);
const double notANumber = std::numeric_limits<double>::quiet_NaN();

PlotCurve curveOf(const QVector<double>& x, const QVector<double>& y, const QColor& color = Qt::red)
{
    PlotCurve curve;
    curve.label = QStringLiteral("Dye & <b>");
    curve.color = color;
    curve.x = x;
    curve.y = y;
    return curve;
}

SpectrumPlot plotOf(const QList<PlotCurve>& curves)
{
    SpectrumPlot plot(QStringLiteral("Title"), QStringLiteral("x"), QStringLiteral("y"));
    for (const auto& curve : curves) {
        plot.addCurve(curve);
    }
    return plot;
}

// Pixels that come near a colour, within a part of the page.
int pixelsLike(const QImage& image, const QColor& color, const QRect& part)
{
    int count = 0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            count += std::abs(pixel.red() - color.red()) + std::abs(pixel.green() - color.green()) +
                                 std::abs(pixel.blue() - color.blue()) <
                             60
                         ? 1
                         : 0;
        }
    }
    return count;
}

// Pixels of dark grey, such as those of axes and texts.
int darkPixels(const QImage& image, const QRect& part)
{
    int count = 0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            count += image.pixelColor(x, y).value() < 160 ? 1 : 0;
        }
    }
    return count;
}

void expectTicks(double low, double high, const std::vector<double>& expected)
{
    const auto ticks = SpectrumPlot::ticks(low, high);
    ASSERT_EQ(ticks.size(), static_cast<int>(expected.size()));
    for (int i = 0; i < ticks.size(); ++i) {
        EXPECT_NEAR(ticks[i], expected[static_cast<std::size_t>(i)], 1e-12 * (high - low));
        EXPECT_FALSE(ticks[i] == 0.0 && std::signbit(ticks[i]));
    }
}

QRect plotPart(const QImage& image)
{
    return QRect(0, 0, image.width() * 3 / 4, image.height());
}

QRect legendPart(const QImage& image)
{
    return QRect(image.width() * 3 / 4, 0, image.width() / 4, image.height());
}

QStringList textsOf(const QByteArray& svg)
{
    QDomDocument document;
    EXPECT_TRUE(document.setContent(svg));
    QStringList texts;
    const auto elements = document.elementsByTagName("text");
    for (int i = 0; i < elements.size(); ++i) {
        texts.append(elements.at(i).toElement().text().trimmed());
    }
    return texts;
}

} // namespace

TEST(SpectrumPlotTest, TicksAreRoundNumbersWithinTheRange)
{
    expectTicks(0.0, 1.0, {0.0, 0.2, 0.4, 0.6, 0.8, 1.0});
    expectTicks(633.0, 807.0, {640.0, 660.0, 680.0, 700.0, 720.0, 740.0, 760.0, 780.0, 800.0});
    expectTicks(-3.0, 3.0, {-3.0, -2.0, -1.0, 0.0, 1.0, 2.0, 3.0});
    expectTicks(2e-9, 8e-9, {2e-9, 3e-9, 4e-9, 5e-9, 6e-9, 7e-9, 8e-9});
}

TEST(SpectrumPlotTest, NoRangeHasNoTicks)
{
    EXPECT_TRUE(SpectrumPlot::ticks(1.0, 1.0).isEmpty());
    EXPECT_TRUE(SpectrumPlot::ticks(2.0, 1.0).isEmpty());
    EXPECT_TRUE(SpectrumPlot::ticks(notANumber, 1.0).isEmpty());
    EXPECT_TRUE(SpectrumPlot::ticks(0.0, HUGE_VAL).isEmpty());
}

RC_GTEST_PROP(SpectrumPlotLaws, TicksAreAHandfulAndAscendInsideTheRange, (int mantissa, int exponent, int start))
{
    const double span = (1.0 + std::abs(mantissa % 900) / 100.0) * std::pow(10.0, exponent % 12);
    const double low = span * (start % 1000) / 500.0;
    const auto ticks = SpectrumPlot::ticks(low, low + span);
    RC_ASSERT(ticks.size() >= 4);
    RC_ASSERT(ticks.size() <= 11);
    for (int i = 0; i < ticks.size(); ++i) {
        RC_ASSERT(ticks[i] >= low - span * 1e-6);
        RC_ASSERT(ticks[i] <= low + span * (1.0 + 1e-6));
        RC_ASSERT(i == 0 || ticks[i] > ticks[i - 1]);
    }
}

TEST(SpectrumPlotTest, ACurveIsDrawnAndNamedInTheLegend)
{
    const QImage image = plotOf({curveOf({600, 620, 640}, {0.1, 1.0, 0.4})}).toImage(pageSize);
    EXPECT_EQ(image.size(), pageSize);
    EXPECT_GT(pixelsLike(image, Qt::red, plotPart(image)), 100);
    EXPECT_GT(pixelsLike(image, Qt::red, legendPart(image)), 10);
    EXPECT_GT(darkPixels(image, legendPart(image)), 10);
}

TEST(SpectrumPlotTest, EachCurveHasItsColour)
{
    const QImage image =
        plotOf({curveOf({1, 2}, {0.0, 1.0}, Qt::blue), curveOf({1, 2}, {1.0, 0.0}, Qt::darkGreen)}).toImage(pageSize);
    EXPECT_GT(pixelsLike(image, Qt::blue, plotPart(image)), 50);
    EXPECT_GT(pixelsLike(image, Qt::darkGreen, plotPart(image)), 50);
}

TEST(SpectrumPlotTest, PointsThatAreNotFiniteAreLeftOut)
{
    const QImage with = plotOf({curveOf({1, 2, 3, 4}, {0.2, notANumber, HUGE_VAL, 0.8})}).toImage(pageSize);
    EXPECT_GT(pixelsLike(with, Qt::red, plotPart(with)), 20);
    const QImage joined = plotOf({curveOf({1, 4}, {0.2, 0.8})}).toImage(pageSize);
    // Two markers without the line between them.
    EXPECT_LT(pixelsLike(with, Qt::red, plotPart(with)), pixelsLike(joined, Qt::red, plotPart(joined)));
}

TEST(SpectrumPlotTest, ACurveWithoutAnyFinitePointLeavesAnEmptyFrame)
{
    const QImage image = plotOf({curveOf({1, 2}, {notANumber, notANumber})}).toImage(pageSize);
    EXPECT_EQ(pixelsLike(image, Qt::red, plotPart(image)), 0);
    EXPECT_GT(darkPixels(image, plotPart(image)), 100);
}

TEST(SpectrumPlotTest, APlotWithoutCurvesShowsItsAxes)
{
    const QImage image = plotOf({}).toImage(pageSize);
    EXPECT_GT(darkPixels(image, image.rect()), 100);
    EXPECT_GT(pixelsLike(image, Qt::white, image.rect()), image.width() * image.height() / 2);
}

TEST(SpectrumPlotTest, OnePointIsAMarker)
{
    const QImage image = plotOf({curveOf({700}, {0.5})}).toImage(pageSize);
    const int marks = pixelsLike(image, Qt::red, plotPart(image));
    EXPECT_GT(marks, 10);
    EXPECT_LT(marks, 300);
}

TEST(SpectrumPlotTest, ValuesOfOneSizeStayInsideTheFrame)
{
    for (const double value : {0.0, -2.0, 1e-300, 1e300}) {
        const QImage image = plotOf({curveOf({1, 2, 3}, {value, value, value})}).toImage(pageSize);
        EXPECT_GT(pixelsLike(image, Qt::red, plotPart(image)), 50) << value;
    }
}

TEST(SpectrumPlotTest, ColumnsOfUnequalLengthAreDrawnAsFarAsBothGo)
{
    const QImage image = plotOf({curveOf({1, 2, 3}, {0.5})}).toImage(pageSize);
    EXPECT_GT(pixelsLike(image, Qt::red, plotPart(image)), 10);
}

TEST(SpectrumPlotTest, ALegendThatIsHigherThanThePlotStandsBeneathItWithEveryName)
{
    QList<PlotCurve> curves;
    for (int i = 0; i < 80; ++i) {
        curves.append(curveOf({1, 2}, {i / 80.0, i / 80.0}));
        curves.last().label = QStringLiteral("Dye%1").arg(i);
    }
    const SpectrumPlot plot = plotOf(curves);
    const QImage image = plot.toImage(pageSize);
    EXPECT_GT(pixelsLike(image, Qt::red, plotPart(image)), 2000);
    EXPECT_EQ(image.width(), pageSize.width());
    EXPECT_GT(image.height(), pageSize.height());
    EXPECT_EQ(image.size(), plot.pageSize(pageSize));
    const QStringList texts = textsOf(plot.toSvg(pageSize));
    for (int i = 0; i < 80; ++i) {
        EXPECT_TRUE(texts.contains(QStringLiteral("Dye%1").arg(i))) << i;
    }
}

TEST(SpectrumPlotTest, ALongNameGoesOnInTheNextLineAndIsWhole)
{
    const QString words = "Ferritin of the left upper mammary tumour at seventy two hours";
    const QString letters(90, 'W');
    PlotCurve first = curveOf({1, 2}, {0.5, 0.5});
    first.label = words;
    PlotCurve second = curveOf({1, 2}, {0.2, 0.2});
    second.label = letters;
    const SpectrumPlot plot = plotOf({first, second});
    EXPECT_EQ(plot.pageSize(pageSize), pageSize);
    const QStringList texts = textsOf(plot.toSvg(pageSize));
    EXPECT_FALSE(texts.contains(words));
    EXPECT_TRUE(texts.join(' ').contains(words)) << qPrintable(texts.join('|'));
    EXPECT_EQ(texts.join(QString()).count('W'), letters.size());
}

TEST(SpectrumPlotTest, ACurveWithoutPointsIsInTheLegendAndOneWithoutALabelIsNot)
{
    PlotCurve key = curveOf({}, {}, Qt::blue);
    key.label = "ex 605 nm";
    PlotCurve unnamed = curveOf({1, 2}, {0.5, 0.5});
    unnamed.label.clear();
    const SpectrumPlot plot = plotOf({unnamed, key});
    const QImage image = plot.toImage(pageSize);
    EXPECT_GT(pixelsLike(image, Qt::red, plotPart(image)), 100);
    EXPECT_EQ(pixelsLike(image, Qt::red, legendPart(image)), 0);
    EXPECT_GT(pixelsLike(image, Qt::blue, legendPart(image)), 10);
    EXPECT_TRUE(textsOf(plot.toSvg(pageSize)).contains("ex 605 nm"));
}

TEST(SpectrumPlotTest, NumbersOfAnAxisHaveTheSameDecimalsAndAPowerOfTenInCommon)
{
    const QStringList plain = textsOf(plotOf({curveOf({600, 700}, {0.1, 1.0})}).toSvg(pageSize));
    for (const char* text : {"0.0", "0.2", "0.4", "1.0", "600", "700"}) {
        EXPECT_TRUE(plain.contains(text)) << text << " in " << qPrintable(plain.join('|'));
    }
    EXPECT_FALSE(plain.contains("0"));
    EXPECT_FALSE(plain.contains("1"));
    const QStringList large = textsOf(plotOf({curveOf({1, 2}, {0.0, 8e7})}).toSvg(pageSize));
    EXPECT_TRUE(large.contains("8")) << qPrintable(large.join('|'));
    EXPECT_TRUE(large.contains(QString::fromUtf8("\u00d710\u2077")));
}

TEST(SpectrumPlotTest, MarkersDifferInShape)
{
    QList<QImage> images;
    for (const PlotMarker marker : {PlotMarker::None, PlotMarker::Circle, PlotMarker::Square, PlotMarker::Triangle,
                                    PlotMarker::Diamond, PlotMarker::Cross, PlotMarker::Star}) {
        PlotCurve curve = curveOf({1}, {0.5});
        curve.marker = marker;
        const QImage image = plotOf({curve}).toImage(pageSize);
        EXPECT_EQ(pixelsLike(image, Qt::red, plotPart(image)) > 0, marker != PlotMarker::None);
        EXPECT_FALSE(images.contains(image)) << images.size();
        images.append(image);
    }
}

TEST(SpectrumPlotTest, TheSvgIsXmlWithTheTitleAndTheLabels)
{
    const QByteArray svg = plotOf({curveOf({600, 620, 640}, {0.1, 1.0, 0.4})}).toSvg(pageSize);
    QDomDocument document;
    QString error;
    ASSERT_TRUE(document.setContent(svg, &error)) << qPrintable(error);
    EXPECT_EQ(document.documentElement().tagName(), "svg");
    EXPECT_EQ(document.documentElement().attribute("viewBox"), "0 0 880 560");
    EXPECT_EQ(document.elementsByTagName("title").at(0).toElement().text(), "Title");
    QStringList texts;
    const auto elements = document.elementsByTagName("text");
    for (int i = 0; i < elements.size(); ++i) {
        texts.append(elements.at(i).toElement().text().trimmed());
    }
    EXPECT_TRUE(texts.contains("Dye & <b>")) << qPrintable(texts.join('|'));
    EXPECT_TRUE(texts.contains("600"));
    EXPECT_FALSE(document.elementsByTagName("path").isEmpty());
}

TEST(SpectrumPlotTest, TheSvgHoldsNoNumberThatIsNone)
{
    const QByteArray svg = plotOf({curveOf({1, 2, 3}, {notANumber, HUGE_VAL, 1.0}), curveOf({}, {})}).toSvg(pageSize);
    QDomDocument document;
    EXPECT_TRUE(document.setContent(svg));
    EXPECT_FALSE(svg.contains("nan"));
    EXPECT_FALSE(svg.contains("inf"));
}

TEST(SpectrumPlotTest, DecadesAreTheWholePowersInside)
{
    EXPECT_EQ(SpectrumPlot::decades(-2.5, 1.2), (QVector<double>{0.01, 0.1, 1.0, 10.0}));
    EXPECT_EQ(SpectrumPlot::decades(-1.0, 1.0), (QVector<double>{0.1, 1.0, 10.0}));
    EXPECT_TRUE(SpectrumPlot::decades(0.1, 0.9).isEmpty());
    EXPECT_TRUE(SpectrumPlot::decades(1.0, 1.0).isEmpty());
    EXPECT_TRUE(SpectrumPlot::decades(notANumber, 1.0).isEmpty());
    EXPECT_TRUE(SpectrumPlot::decades(0.0, HUGE_VAL).isEmpty());
    EXPECT_LE(SpectrumPlot::decades(-100.0, 100.0).size(), 8);
    EXPECT_GE(SpectrumPlot::decades(-100.0, 100.0).size(), 4);
}

TEST(SpectrumPlotTest, ALogarithmicAxisHasPowersOfTenAndLeavesZeroOut)
{
    SpectrumPlot plot("Title", "x", "y");
    plot.addCurve(curveOf({1, 2, 3, 4}, {90, 0.0, -5.0, 0.02}));
    plot.setLogarithmicY(true);
    plot.setWholeX(true);
    const QByteArray svg = plot.toSvg(pageSize);
    QDomDocument document;
    ASSERT_TRUE(document.setContent(svg));
    EXPECT_FALSE(svg.contains("nan"));
    EXPECT_FALSE(svg.contains("inf"));
    QStringList texts;
    const auto elements = document.elementsByTagName("text");
    for (int i = 0; i < elements.size(); ++i) {
        texts.append(elements.at(i).toElement().text().trimmed());
    }
    for (const char* text : {"0.01", "0.1", "1", "10", "100", "2", "3", "4"}) {
        EXPECT_TRUE(texts.contains(text)) << text << " in " << qPrintable(texts.join('|'));
    }
    EXPECT_FALSE(texts.contains("1.5"));
    EXPECT_FALSE(texts.contains("2.5"));
}

TEST(SpectrumPlotTest, ALogarithmicPlotWithoutPositiveValuesIsEmptyButSound)
{
    SpectrumPlot plot("Title", "x", "y");
    plot.addCurve(curveOf({1, 2}, {0.0, -1.0}));
    plot.setLogarithmicY(true);
    EXPECT_EQ(pixelsLike(plot.toImage(pageSize), Qt::red, plotPart(plot.toImage(pageSize))), 0);
}

TEST(SpectrumPlotTest, WithoutALegendThePlotIsWider)
{
    SpectrumPlot plot("Title", "x", "y");
    plot.addCurve(curveOf({1, 2}, {0.5, 0.5}));
    const QRect right(int(pageSize.width() * 0.8), 60, int(pageSize.width() * 0.15), pageSize.height() - 160);
    const int before = pixelsLike(plot.toImage(pageSize), Qt::red, right);
    plot.setLegend(false);
    EXPECT_GT(pixelsLike(plot.toImage(pageSize), Qt::red, right), before);
}

TEST(SpectrumPlotTest, AWiderLineTakesMorePixelsAndMarkersCanGo)
{
    PlotCurve curve = curveOf({1, 2}, {0.5, 0.5});
    const auto pixels = [&curve] {
        const QImage image = plotOf({curve}).toImage(pageSize);
        return pixelsLike(image, Qt::red, plotPart(image));
    };
    const int plain = pixels();
    curve.marker = PlotMarker::None;
    const int bare = pixels();
    curve.width = 6.0;
    EXPECT_LT(bare, plain);
    EXPECT_GT(pixels(), 2 * bare);
}

TEST(SpectrumPlotTest, NamesStandAlongTheAxisInPlaceOfNumbers)
{
    for (const int count : {2, 30, 300}) {
        SpectrumPlot plot("title", "Channel", "y");
        PlotCurve curve;
        QVector<PlotName> names;
        for (int i = 1; i <= count; ++i) {
            curve.x.append(i);
            curve.y.append(i);
            names.append({static_cast<double>(i), QStringLiteral("name%1").arg(i)});
        }
        plot.addCurve(curve);
        plot.setXNames(names);
        const QString svg = QString::fromUtf8(plot.toSvg(QSize(1100, 700)));
        EXPECT_TRUE(svg.contains(">name1<")) << count;
        EXPECT_EQ(svg.contains(">name2<"), count <= 30) << count;
        EXPECT_TRUE(svg.contains(">Channel<")) << count;
    }
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/pictures/ResultComposite.h"

#include "services/basis/Failure.h"
#include "services/support/SmallAnalysis.h"

#include "platform/orvutils/LogSinks.h"

#include <QDir>

namespace {

class CompositePictureFileTest : public SmallAnalysis
{
protected:
    // Hands over maps of 4 x 1 pixels, one row a component, spot after spot.
    void handOver(const std::vector<std::vector<double>>& rows, const QStringList& colors, int nSpots = 1)
    {
        analyse();
        XTNT::Matrix<double> data(static_cast<long long>(rows.size()), static_cast<long long>(rows.front().size()));
        QList<CompositeChannel> channels;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            for (std::size_t j = 0; j < rows[i].size(); ++j) {
                data[static_cast<long long>(i)][j] = rows[i][j];
            }
            CompositeChannel channel;
            channel.minFraction = 0.0;
            channel.maxFraction = 1.0;
            channel.color = QColor(colors[static_cast<int>(i)]);
            channel.label = QStringLiteral("Dye %1").arg(i + 1);
            channels.append(channel);
        }
        engine().ownResultView().setCompositeData(nullptr, data, 0, {}, 4, 1, channels, nSpots);
    }
};

// Pixels of exactly this colour from a row on.
int pixelsOf(const QImage& picture, const QColor& color, int nTop)
{
    int count = 0;
    for (int y = nTop; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            count += picture.pixel(x, y) == color.rgb() ? 1 : 0;
        }
    }
    return count;
}

} // namespace

TEST_F(CompositePictureFileTest, WithoutHandedOverMapsThereIsNoPicture)
{
    analyse();
    engine().ownResultView().removeAllUnmixedImages();
    EXPECT_TRUE(compositePictureOf(engine(), 0).isNull());
    EXPECT_TRUE(compositeWithLegendOf(engine(), 0).isNull());
    EXPECT_TRUE(compositeFilesOf(engine()).isEmpty());
}

TEST_F(CompositePictureFileTest, MapsInTheirColoursWithoutAPhotograph)
{
    handOver({{1.0, 0.0, 0.0, 1.0}, {0.0, 1.0, 0.0, 1.0}}, {"red", "blue"});
    const QImage picture = compositePictureOf(engine(), 0);
    ASSERT_EQ(picture.size(), QSize(480, 120));
    EXPECT_EQ(picture.pixel(0, 60), qRgb(255, 0, 0));
    EXPECT_EQ(picture.pixel(180, 60), qRgb(0, 0, 255));
    EXPECT_EQ(picture.pixel(479, 60), qRgb(255, 0, 255));
}

TEST_F(CompositePictureFileTest, PhotographLiesUnderTheMaps)
{
    handOver({{1.0, 0.0, 0.0, 1.0}}, {"red"});
    const CompositeInput input = engine().ownResultView().composite();
    CILImage photo = imageOf(480, 480, [](int i) { return i < 240 ? 0.0F : 100.0F; });
    photo.RefreshImageStats();
    engine().ownResultView().setCompositeData(&photo, input.data, 0, {}, 4, 1, input.channels, 1);
    const QImage picture = compositePictureOf(engine(), 0);
    ASSERT_EQ(picture.size(), QSize(480, 480));
    EXPECT_EQ(picture.pixel(0, 0), qRgb(165, 0, 0));      // 255 * 0.65 = 165.75
    EXPECT_EQ(picture.pixel(240, 479), qRgb(89, 89, 89)); // 255 * 0.35 = 89.25
}

TEST_F(CompositePictureFileTest, EverySpotHasItsFile)
{
    handOver({{1.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 8.0}}, {"red"}, 2);
    EXPECT_EQ(compositePictureOf(engine(), 0).pixel(0, 60), qRgb(255, 0, 0));
    EXPECT_EQ(compositePictureOf(engine(), 1).pixel(479, 60), qRgb(255, 0, 0));
    EXPECT_TRUE(compositePictureOf(engine(), 2).isNull());
    EXPECT_TRUE(compositePictureOf(engine(), -1).isNull());
    const auto files = compositeFilesOf(engine());
    ASSERT_EQ(files.size(), 2);
    EXPECT_EQ(files[0].name, "composite_spot1.png");
    EXPECT_EQ(files[1].name, "composite_spot2.png");
}

TEST_F(CompositePictureFileTest, EachSpotIsShownOverItsOwnRange)
{
    handOver({{1.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 8.0}, {0.0, 0.0, 0.0, 4.0, 4.0, 0.0, 0.0, 0.0}}, {"red", "blue"}, 2);
    const QImage first = compositePictureOf(engine(), 0);
    EXPECT_EQ(first.pixel(0, 60), qRgb(255, 0, 0)); // an eighth over the range of both
    EXPECT_EQ(first.pixel(479, 60), qRgb(0, 0, 255));
}

TEST_F(CompositePictureFileTest, ChannelsThatDoNotFitTheDataGiveNoPicture)
{
    handOver({{1.0, 0.0, 0.0, 1.0}, {0.0, 1.0, 0.0, 1.0}}, {"red", "blue"});
    const CompositeInput input = engine().ownResultView().composite();
    engine().ownResultView().setCompositeData(nullptr, input.data, 0, {}, 3, 1, input.channels, 1);
    QStringList errors;
    const int nSink = orv::addLogSink([&errors](const orv::LogRecord& record) {
        if (record.m_nLevel == 3) {
            errors.append(record.m_strMessage);
        }
    });
    EXPECT_TRUE(compositePictureOf(engine(), 0).isNull());
    orv::removeLogSink(nSink);
    EXPECT_EQ(errors, QStringList("SpUnmixCompositeWnd: input data size mismatch for composite image."));
}

TEST_F(CompositePictureFileTest, LegendStandsUnderThePictureInTheColoursOfTheLayers)
{
    handOver({{1.0, 0.0, 0.0, 1.0}, {0.0, 1.0, 0.0, 1.0}}, {"red", "#0a1400"});
    const QImage picture = compositePictureOf(engine(), 0);
    const QImage page = compositeWithLegendOf(engine(), 0);
    ASSERT_EQ(page.width(), picture.width());
    ASSERT_GT(page.height(), picture.height());
    EXPECT_EQ(page.copy(picture.rect()), picture);
    EXPECT_GT(pixelsOf(page, QColor("red"), picture.height()), 50);
    EXPECT_GT(pixelsOf(page, QColor("#0a1400"), picture.height()), 50) << "a dark colour keeps its patch";
    const QImage left = page.copy(0, 0, page.width() / 8, page.height());
    EXPECT_GT(pixelsOf(left, QColor("red"), picture.height()), 50) << "the first component comes first";
    EXPECT_EQ(pixelsOf(left, QColor("#0a1400"), picture.height()), 0);
}

TEST_F(CompositePictureFileTest, ManyAndLongLabelsTakeMoreRows)
{
    QImage picture(480, 100, QImage::Format_RGB32);
    picture.fill(Qt::black);
    QList<QPair<QString, QColor>> labels = {{"A", Qt::red}};
    const int one = withLegend(picture, labels).height();
    for (int i = 0; i < 20; ++i) {
        labels.append({QStringLiteral("AlexaFluor %1").arg(600 + i), Qt::green});
    }
    EXPECT_GT(withLegend(picture, labels).height(), one);
    EXPECT_EQ(withLegend(picture, {{QString(500, 'W'), Qt::red}}).size(), QSize(480, one));
    EXPECT_EQ(withLegend(picture, {}), picture);
    EXPECT_TRUE(withLegend(QImage(), labels).isNull());
}

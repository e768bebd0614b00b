// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/MaskImage.h"
#include "services/session/OpenedSequence.h"
#include "services/support/CliFixture.h"
#include "services/support/SmallSequence.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/CROIManager.h"
#include "platform/orvapi/ROIShape.h"

namespace {

constexpr int side = 24;

class MaskImageTest : public CliFixture
{
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        SmallSequence sequence;
        const auto one = [](int) { return 1.0F; };
        sequence.addBands({one, one});
        sequence.writeTo(path("seq"));
        m_pOpened = std::make_unique<OpenedSequence>(path("seq"));
        engine().m_nWidth = side;
        engine().m_nHeight = side;
        engine().m_nBinning = 2;
    }
    CORVSpumKyvo& engine() { return m_pOpened->engine(); }
    // Rows of '#' and '.'.
    QStringList picture(const MaskRequest& option)
    {
        const CILImage mask = maskImageOf(option, engine());
        EXPECT_EQ(mask.m_lWidth, side);
        EXPECT_EQ(mask.m_lHeight, side);
        EXPECT_EQ(mask.m_fBinning, 2.0F);
        QStringList rows;
        for (int y = 0; y < side; ++y) {
            rows.append(QString());
            for (int x = 0; x < side; ++x) {
                rows.last() += mask.value(static_cast<std::size_t>(y * side + x)) > 0.0 ? '#' : '.';
            }
        }
        return rows;
    }
    static MaskRequest shape(MaskRequest::Kind eKind, int x, int y, int w, int h)
    {
        MaskRequest option;
        option.kind = eKind;
        option.x = x;
        option.y = y;
        option.width = w;
        option.height = h;
        return option;
    }
    static MaskRequest region(const QString& strRegion)
    {
        MaskRequest option;
        option.kind = MaskRequest::Kind::Region;
        option.region = strRegion;
        return option;
    }
    void keep(int nImage, const QString& strName, const QString& strShape)
    {
        tagROIInfo info;
        info.name = strName;
        QString reason;
        ASSERT_TRUE(ROIShape::fromText(strShape, &info, &reason)) << qPrintable(reason);
        auto& manager = *m_pOpened->sequence().getDatasets().at(nImage)->roiManager();
        ASSERT_TRUE(manager.addRegion(info, &reason)) << qPrintable(reason);
    }
    // A photograph with a bright square of that side, 12 pixels by default.
    void photograph(float fBright, int nSquare = 12)
    {
        m_photo = imageOf(
            side, side,
            [=](int i) {
                const int x = i % side;
                const int y = i / side;
                return x >= 4 && x < 4 + nSquare && y >= 6 && y < 6 + nSquare ? fBright : 10.0F;
            },
            2.0F);
        m_photo.RefreshImageStats();
        engine().m_pPhoto = &m_photo;
    }
    static MaskRequest automatic(double dThreshold = -1.0)
    {
        MaskRequest option;
        option.kind = MaskRequest::Kind::Photograph;
        option.threshold = dThreshold;
        return option;
    }

private:
    std::unique_ptr<OpenedSequence> m_pOpened;
    CILImage m_photo;
};

} // namespace

TEST_F(MaskImageTest, NoneIsNoImage)
{
    EXPECT_TRUE(maskImageOf(MaskRequest(), engine()).isEmpty());
}

TEST_F(MaskImageTest, ARectangleCoversItsPixelsFromTheTopLeft)
{
    const QStringList rows = picture(shape(MaskRequest::Kind::Rectangle, 3, 1, 5, 2));
    for (int y = 0; y < side; ++y) {
        EXPECT_EQ(rows[y], y == 1 || y == 2 ? "...#####" + QString(side - 8, '.') : QString(side, '.')) << y;
    }
}

TEST_F(MaskImageTest, ARectangleMayBeTheWholeImageAndOnePixel)
{
    EXPECT_EQ(picture(shape(MaskRequest::Kind::Rectangle, 0, 0, side, side)).join("").count('#'), side * side);
    EXPECT_EQ(picture(shape(MaskRequest::Kind::Rectangle, side - 1, side - 1, 1, 1)).last(),
              QString(side - 1, '.') + '#');
}

TEST_F(MaskImageTest, AnEllipseLiesInsideItsRectangle)
{
    const QStringList rows = picture(shape(MaskRequest::Kind::Ellipse, 4, 2, 12, 8));
    const QStringList around = picture(shape(MaskRequest::Kind::Rectangle, 4, 2, 12, 8));
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            if (rows[y][x] == '#') {
                EXPECT_EQ(around[y][x], '#') << x << ' ' << y;
            }
        }
    }
    EXPECT_EQ(rows[6][10], '#');
    EXPECT_EQ(rows[2][4], '.');
    EXPECT_EQ(rows[9][15], '.');
    EXPECT_NEAR(rows.join("").count('#'), 12 * 8 * 0.785, 12.0);
}

TEST_F(MaskImageTest, AShapeThatLeavesTheImageIsRefused)
{
    for (const auto& option :
         {shape(MaskRequest::Kind::Rectangle, -1, 0, 5, 5), shape(MaskRequest::Kind::Rectangle, 20, 0, 5, 5),
          shape(MaskRequest::Kind::Ellipse, 0, 20, 5, 5), shape(MaskRequest::Kind::Rectangle, 0, 0, 2147483647, 5)}) {
        EXPECT_TRUE(failureOf([&] {
                        maskImageOf(option, engine());
                    }).contains("leaves the images of 24 x 24 pixels at binning 2"));
    }
}

// In its corners a step: a row of five pixels above one of two, by centres.
TEST_F(MaskImageTest, APolygonHoldsThePixelsWhoseCentresLieInIt)
{
    const QStringList rows = picture(region("polygon:3,1,8,1,8,2,5,2,5,3,3,3"));
    for (int y = 0; y < side; ++y) {
        const QString text = y == 1 ? "...#####" : y == 2 ? "...##" : "";
        EXPECT_EQ(rows[y], text + QString(side - text.size(), '.')) << y;
    }
}

TEST_F(MaskImageTest, AnOutlineMayCrossItselfAndHoldOnePixel)
{
    EXPECT_EQ(picture(region("polygon:4,4,14,14,14,4,4,14")).join("").count('#'), 50);
    EXPECT_EQ(picture(region("freehand:4,4,5,4,5,5,4,5")).join("").count('#'), 1);
}

TEST_F(MaskImageTest, AnOutlineThatLeavesTheImageOrHoldsNoPixelIsRefused)
{
    EXPECT_EQ(failureOf([&] { maskImageOf(region("polygon:0,0,25,0,0,5"), engine()); }),
              "--mask: the shape polygon:0,0,25,0,0,5 leaves the images of 24 x 24 pixels at binning 2");
    EXPECT_EQ(failureOf([&] { maskImageOf(region("polygon:4,4,4.3,4,4,4.3"), engine()); }),
              "--mask: the region holds no pixel of the images of 24 x 24 pixels at binning 2");
}

// Kept in pixels of the sensor, of which two make a pixel of the analysis.
TEST_F(MaskImageTest, ARegionOfTheSequenceServesAtWhateverBinning)
{
    keep(1, "tumour", "polygon:6,2,16,2,16,4,10,4,10,6,6,6");
    const QStringList rows = picture(region("roi:tumour"));
    EXPECT_EQ(rows[1].left(9), "...#####.");
    EXPECT_EQ(rows[2].left(6), "...##.");
    EXPECT_EQ(rows.join("").count('#'), 7);
    keep(0, "at the edge", "ellipse:-8,-8,16,16");
    EXPECT_EQ(picture(region("roi:at the edge"))[0].left(5), "####.") << "what lies on the images";
}

TEST_F(MaskImageTest, ARegionThatIsNotThereOrNotOneIsRefused)
{
    EXPECT_EQ(failureOf([&] { maskImageOf(region("roi:tumour"), engine()); }),
              "--mask: no image has a region of interest \"tumour\"; \"spum roi SEQ add\" and the windows of images "
              "make some");
    keep(0, "lung", "rect:0,0,4,4");
    EXPECT_EQ(failureOf([&] { maskImageOf(region("roi:tumour"), engine()); }),
              "--mask: no image has a region of interest \"tumour\"; the regions are: \"lung\"");
    keep(1, "lung", "rect:0,0,4,6");
    EXPECT_EQ(failureOf([&] { maskImageOf(region("roi:lung"), engine()); }),
              "--mask: images have different regions of interest \"lung\"; \"spum roi SEQ list\" tells them; give one "
              "of them another name");
}

TEST_F(MaskImageTest, TheBodyIsFoundInThePhotograph)
{
    photograph(200.0F);
    const QStringList rows = picture(automatic());
    EXPECT_EQ(rows.join("").count('#'), 144);
    EXPECT_EQ(rows[6].mid(4, 12), QString(12, '#'));
    EXPECT_EQ(rows[5], QString(side, '.'));
}

TEST_F(MaskImageTest, AThresholdOfTheUserTakesTheTurnOfTheFoundOne)
{
    photograph(200.0F);
    EXPECT_EQ(picture(automatic(1.0)).join("").count('#'), 144);
    // At the minimum itself everything brighter counts, here the same.
    EXPECT_EQ(picture(automatic(0.0)).join("").count('#'), 144);
}

// What holds no square of 7 pixels is no body.
TEST_F(MaskImageTest, AFewBrightPixelsAreRefusedWithWhatHelps)
{
    photograph(200.0F, 5);
    const QString refused = failureOf([&] { maskImageOf(automatic(50.0), engine()); });
    EXPECT_TRUE(refused.startsWith("--mask auto: only 0 pixels of the photograph are brighter than 50 % of its range; "
                                   "--threshold sets another limit"))
        << qPrintable(refused);
}

TEST_F(MaskImageTest, APhotographOfOneBrightnessHasNoBody)
{
    photograph(10.0F);
    EXPECT_TRUE(failureOf([&] { maskImageOf(automatic(), engine()); }).startsWith("--mask auto: only 0 pixels"));
}

TEST_F(MaskImageTest, WithoutAPhotographThereIsNoAutomaticMask)
{
    engine().m_pPhoto = nullptr;
    EXPECT_EQ(failureOf([&] { maskImageOf(automatic(), engine()); }), "--mask auto: there is no photograph");
}

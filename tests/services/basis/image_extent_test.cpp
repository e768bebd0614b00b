// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/ImageExtent.h"

#include "services/basis/Failure.h"
#include "services/session/OpenedSequence.h"
#include "services/support/CliFixture.h"
#include "services/support/SmallSequence.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/imagePadding.h"

#include <memory>

namespace {

class ImageExtentTest : public CliFixture
{
protected:
    // Two images of that side and binning, in an analysis of another binning.
    void analyse(int side, int stored, int analysed)
    {
        SmallSequence sequence;
        const auto one = [](int) { return 1.0F; };
        sequence.addBands({one, one});
        for (SmallImage& image : sequence.images) {
            image.width = image.height = side;
            image.binning = stored;
        }
        m_pOpened.reset();
        sequence.writeTo(path("seq"));
        m_pOpened = std::make_unique<OpenedSequence>(path("seq"));
        ASSERT_TRUE(engine().createImageList());
        engine().m_nBinning = analysed;
        ASSERT_TRUE(engine().setBinningAndSize(false));
    }
    // What an import notes of the images before it padded them.
    void tellExtents(const QStringList& extents)
    {
        for (int i = 0; i < extents.size(); ++i) {
            CORVDataset* dataset = m_pOpened->sequence().getDataset(engine().m_imageList[i]);
            CPLSection* image = dataset->clickInfo[QLatin1String(ClickKeys::kLuminescentImage)];
            ASSERT_NE(image, nullptr);
            image->setValue(QLatin1String(ClickKeys::kImageExtent), extents[i]);
        }
    }
    // "valid.tif" with a 0 at each of these places.
    void invalidAt(int side, const QList<QPoint>& places)
    {
        writeTiffFile("seq/valid.tif", imageOf(side, side, [&](int i) {
                          return places.contains(QPoint(i % side, i / side)) ? 0.0F : 1.0F;
                      }));
    }
    // Rows of '#' and '.' of the mask that is left of one of every pixel; empty for no mask.
    QStringList rest()
    {
        const CILImage mask = withoutPadding(CILImage(), engine());
        QStringList rows;
        for (long y = 0; y < mask.m_lHeight; ++y) {
            rows.append(QString());
            for (long x = 0; x < mask.m_lWidth; ++x) {
                rows.last() += mask.value(static_cast<std::size_t>(y * mask.m_lWidth + x)) > 0.0 ? '#' : '.';
            }
        }
        return rows;
    }
    CORVSpumKyvo& engine() { return m_pOpened->engine(); }

    std::unique_ptr<OpenedSequence> m_pOpened;
};

} // namespace

TEST_F(ImageExtentTest, WithoutAWordAllOfTheImagesIsTheirs)
{
    analyse(6, 1, 2);
    EXPECT_EQ(analysedExtent(engine()), QSize(3, 3));
    EXPECT_EQ(rest(), QStringList());
}

TEST_F(ImageExtentTest, WhatWasPaddedIsNoPartOfTheAnalysis)
{
    analyse(6, 1, 1);
    tellExtents({"6 x 4", "6 x 4"});
    EXPECT_EQ(analysedExtent(engine()), QSize(6, 4));
    EXPECT_EQ(extentOfPicture(engine(), 12, 12), QSize(12, 8));
    EXPECT_EQ(rest(), QStringList({"######", "######", "######", "######", "......", "......"}));
}

// Of the second row of four stored ones three were there.
TEST_F(ImageExtentTest, APixelThatHangsOverTheEdgeIsLeftOut)
{
    analyse(8, 1, 4);
    tellExtents({"8 x 7", "8 x 7"});
    EXPECT_EQ(analysedExtent(engine()), QSize(2, 1));
    EXPECT_EQ(rest(), QStringList({"##", ".."}));
}

TEST_F(ImageExtentTest, ImagesOfDifferentExtentsHaveTheWholeSquare)
{
    analyse(6, 1, 1);
    tellExtents({"6 x 4", "6 x 5"});
    EXPECT_EQ(analysedExtent(engine()), QSize(6, 6));
    tellExtents({"6 x 4", "a lot"});
    EXPECT_EQ(analysedExtent(engine()), QSize(6, 6));
}

TEST_F(ImageExtentTest, APixelWithoutAValueTakesThePixelThatGathersItAlong)
{
    analyse(8, 1, 2);
    invalidAt(8, {{5, 2}, {0, 7}});
    EXPECT_EQ(rest(), QStringList({"####", "##.#", "####", ".###"}));
}

// At binning 2 seven pixels become three: counts gather two each and drop the last, in other units each is 7/3 of one.
TEST_F(ImageExtentTest, WhereABinningDoesNotDivideTheSideNoPixelWithAPartInItIsLeft)
{
    analyse(7, 1, 2);
    invalidAt(7, {{0, 2}});
    EXPECT_EQ(rest(), QStringList({".##", ".##", "###"}));
    invalidAt(7, {{6, 6}});
    EXPECT_EQ(rest(), QStringList({"###", "###", "##."}));
}

TEST_F(ImageExtentTest, AtAFinerBinningAllPixelsOfAStoredOneAreLeftOut)
{
    analyse(3, 2, 1);
    ASSERT_EQ(engine().m_nWidth, 6);
    invalidAt(3, {{1, 0}});
    EXPECT_EQ(rest(), QStringList({"##..##", "##..##", "######", "######", "######", "######"}));
}

TEST_F(ImageExtentTest, ABrokenFileOfValidPixelsIsRefused)
{
    analyse(4, 1, 1);
    write("seq/valid.tif", "II*");
    EXPECT_TRUE(failureOf([&] { withoutPadding(CILImage(), engine()); }).contains("valid.tif"));
}

TEST(CroppedImageTest, KeepsTypeAndBinningOfTheUpperLeftPart)
{
    CILImage image;
    ASSERT_EQ(image.InitWithType(ORVTYPE_USHORT, 3, 2), EIL_SUCCESS);
    image.m_fBinning = 4.0F;
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        image.setValue(i, static_cast<double>(10 + i));
    }
    const CILImage part = croppedImage(image, 2, 2);
    EXPECT_EQ(part.dataType(), ORVTYPE_USHORT);
    EXPECT_EQ(part.m_fBinning, 4.0F);
    ASSERT_EQ(part.pixelCount(), 4U);
    EXPECT_EQ(part.value(0), 10.0);
    EXPECT_EQ(part.value(1), 11.0);
    EXPECT_EQ(part.value(2), 13.0);
    EXPECT_EQ(part.value(3), 14.0);
    EXPECT_EQ(croppedImage(image, 9, 9).pixelCount(), 6U);
    EXPECT_TRUE(croppedImage(CILImage(), 2, 2).isEmpty());
}

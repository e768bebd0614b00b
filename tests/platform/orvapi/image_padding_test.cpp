// SPDX-License-Identifier: GPL-3.0-or-later
// What an import added to images.
#include "host/CORVDataset.h"
#include "host/CPLSection.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/imagePadding.h"

#include <gtest/gtest.h>

namespace {

// The size of so many pixels in a dataset that tells this of its image.
QSize ownOf(const char* pExtent, long lWidth, long lHeight)
{
    CORVDataset dataset;
    CPLSection image(QString::fromLatin1(ClickKeys::kLuminescentImage));
    image.setValue(QString::fromLatin1(ClickKeys::kImageExtent), QString::fromLatin1(pExtent));
    dataset.clickInfo.addSection(&image);
    return ownSize(extentBeforePadding(dataset).value_or(QSize()), lWidth, lHeight);
}

TEST(ImagePaddingTest, TheOwnSizeIsThatBeforeASquareWasMade)
{
    EXPECT_EQ(ownOf("6 x 4", 6, 6), QSize(6, 4));
    EXPECT_EQ(ownOf("4 x 6", 6, 6), QSize(4, 6));
    EXPECT_EQ(ownOf("6 x 6", 6, 6), QSize(6, 6));
    EXPECT_EQ(ownSize(QSize(), 6, 6), QSize(6, 6)) << "where nothing is told";
}

TEST(ImagePaddingTest, AtAnotherResolutionItIsTheSameShareInWholePixels)
{
    EXPECT_EQ(ownOf("600 x 401", 300, 300), QSize(300, 200));
    EXPECT_EQ(ownOf("6 x 4", 12, 12), QSize(12, 8));
    EXPECT_EQ(ownOf("1000 x 1", 10, 10), QSize(10, 1)) << "one pixel at least";
}

TEST(ImagePaddingTest, WhatIsNoSquareOrTellsNoSizeStaysWhole)
{
    EXPECT_EQ(ownOf("6 x 4", 8, 4), QSize(8, 4));
    EXPECT_EQ(ownOf("0 x 4", 6, 6), QSize(6, 6));
    EXPECT_EQ(ownOf("-6 x 4", 6, 6), QSize(6, 6));
    EXPECT_EQ(ownOf("six", 6, 6), QSize(6, 6));
    EXPECT_EQ(ownOf("", 6, 6), QSize(6, 6));
}

} // namespace

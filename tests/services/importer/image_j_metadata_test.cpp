// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/ImageJMetadata.h"

#include "services/importer/figureTexts.h"

#include <gtest/gtest.h>

namespace {

QString read(const QString& description, const QStringList& labels, int pages, QStringList* pDoubts = nullptr)
{
    ImageJMetadata metadata;
    metadata.parse(description, labels, pages);
    if (pDoubts != nullptr) {
        *pDoubts = metadata.doubts();
    }
    return figureTexts(metadata.pages());
}

} // namespace

TEST(ImageJMetadataTest, FramesHaveTimes)
{
    EXPECT_EQ(read("ImageJ=1.53t\nimages=3\nframes=3\nfinterval=2.5\nloop=false\n", {}, 3), "t0|t2.5|t5");
    EXPECT_EQ(read("ImageJ=1.53t\nimages=3\nframes=3\nfinterval=2\ntunit=min\n", {}, 3), "t0|t120|t240");
}

TEST(ImageJMetadataTest, FramesWithoutAnIntervalAreNumbers)
{
    EXPECT_EQ(read("ImageJ=1.53t\nimages=2\nframes=2\n", {}, 2), "frame0|frame1");
    EXPECT_EQ(read("ImageJ=1.53t\nimages=2\nframes=2\nfinterval=0\n", {}, 2), "frame0|frame1");
}

TEST(ImageJMetadataTest, ChannelsAndSlicesComeBeforeFrames)
{
    EXPECT_EQ(read("ImageJ=1.53t\nimages=4\nchannels=2\nframes=2\nfinterval=3\nhyperstack=true\n", {}, 4),
              "t0|t0|t3|t3");
}

TEST(ImageJMetadataTest, LabelsTellWavelengths)
{
    EXPECT_EQ(read("ImageJ=1.53t\nimages=3\nchannels=3\n", {"ex640_em700", "640-720", "slice 12"}, 3),
              "ex640 em700|ex640 em720|");
}

TEST(ImageJMetadataTest, WhatDoesNotFitIsADoubt)
{
    QStringList doubts;
    read("ImageJ=1.53t\nimages=300\nframes=300\nfinterval=1\n", {}, 1, &doubts);
    EXPECT_EQ(doubts, QStringList("ImageJ's description tells of 300 images, the file has 1 pages"));
    read("ImageJ=1.53t\nimages=2\nframes=2\nfinterval=1\ntunit=fortnight\n", {}, 2, &doubts);
    EXPECT_EQ(doubts, QStringList("ImageJ's unit of time \"fortnight\" is not known"));
    read("ImageJ=1.53t\nimages=1\n", {"640_700_720"}, 1, &doubts);
    ASSERT_EQ(doubts.size(), 1);
    EXPECT_TRUE(doubts[0].startsWith("label of page 1: ")) << qPrintable(doubts[0]);
}

TEST(ImageJMetadataTest, NonsenseIsPassedOver)
{
    EXPECT_EQ(read("ImageJ=\nimages=-3\nchannels=99999999999\nslices=x\n=\n", {}, 2), "|");
    EXPECT_EQ(read("ImageJ=1\nchannels=2147483647\nslices=2147483647\nframes=2\nfinterval=1\n", {}, 2), "t0|t0");
    EXPECT_FALSE(ImageJMetadata::isImageJ("an ImageJ= file"));
}

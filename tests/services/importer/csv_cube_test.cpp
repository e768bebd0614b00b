// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/CsvCube.h"

#include "services/importer/ImporterFixture.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

class CsvCubeTest : public ImporterFixture
{
protected:
    QString refusal(const QByteArray& text)
    {
        CsvCube cube;
        QString error;
        EXPECT_FALSE(cube.open(write("cube.csv", text), &error)) << text.constData();
        EXPECT_TRUE(error.startsWith(path("cube.csv"))) << qPrintable(error);
        return error.mid(path("cube.csv").size());
    }
};

} // namespace

TEST_F(CsvCubeTest, ARowAPixelAndAColumnAnImage)
{
    CsvCube cube;
    QString error;
    ASSERT_TRUE(cube.open(write("cube.csv", "\xEF\xBB\xBFx,y,em700,\"a,b\"\r\n0,0,1,-2\r\n1,0,3,4e-3\r\n2,0,5,6\r\n\r\n"
                                            "0,1,7,8\r\n1,1,nan,10\r\n2,1,0.333333343,12\r\n"),
                          &error))
        << qPrintable(error);
    EXPECT_EQ(cube.width(), 3);
    EXPECT_EQ(cube.height(), 2);
    EXPECT_EQ(cube.names(), (QStringList{"em700", "a,b"}));
    CILImage image;
    ASSERT_TRUE(cube.readBand(0, image, &error)) << qPrintable(error);
    ASSERT_EQ(image.dataType(), ORVTYPE_FLOAT);
    EXPECT_EQ(image.floats()[2], 5.0F);
    EXPECT_TRUE(std::isnan(image.floats()[4]));
    EXPECT_EQ(image.floats()[5], 1.0F / 3.0F);
    ASSERT_TRUE(cube.readBand(1, image, &error));
    EXPECT_EQ(image.floats()[0], -2.0F);
    EXPECT_EQ(image.floats()[1], 0.004F);
    EXPECT_FALSE(cube.readBand(2, image, &error));
    EXPECT_TRUE(image.isEmpty());
}

TEST_F(CsvCubeTest, TheNamesCanBeHadWithoutThePixels)
{
    QStringList names;
    QString error;
    ASSERT_TRUE(CsvCube::readNames(write("cube.csv", "x,y,em700,em720\nno pixel"), &names, &error))
        << qPrintable(error);
    EXPECT_EQ(names, (QStringList{"em700", "em720"}));
    EXPECT_FALSE(CsvCube::readNames(write("cube.csv", "file,emission\n"), &names, &error));
    EXPECT_TRUE(error.startsWith(path("cube.csv") + ":1: ")) << qPrintable(error);
    EXPECT_FALSE(CsvCube::readNames(path("none.csv"), &names, &error));
}

TEST_F(CsvCubeTest, ReadingTellsHowFarItIsAndCanBeStopped)
{
    QByteArray text = "x,y,a\n";
    for (int i = 0; i < 10000; ++i) {
        text += QByteArray::number(i) + ",0,1\n";
    }
    const QString file = write("cube.csv", text);
    CsvCube cube;
    QString error;
    std::vector<double> shares;
    ASSERT_TRUE(cube.open(file, &error, [&shares](double share) {
        shares.push_back(share);
        return true;
    })) << qPrintable(error);
    ASSERT_GT(shares.size(), 5U);
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_GT(shares.front(), 0.0);
    EXPECT_LT(shares.front(), 0.2);
    EXPECT_GT(shares.back(), 0.8);
    EXPECT_LE(shares.back(), 1.0);
    int calls = 0;
    EXPECT_FALSE(cube.open(file, &error, [&calls](double) { return ++calls < 3; }));
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(error, file + ": the reading was aborted");
}

TEST_F(CsvCubeTest, OneRowAndOneColumnAreImages)
{
    CsvCube cube;
    QString error;
    ASSERT_TRUE(cube.open(write("cube.csv", "x,y,a\n0,0,1\n1,0,2"), &error));
    EXPECT_EQ(cube.width(), 2);
    EXPECT_EQ(cube.height(), 1);
    ASSERT_TRUE(cube.open(write("cube.csv", "x,y,a\n0,0,1\n0,1,2\n0,2,3"), &error)) << qPrintable(error);
    EXPECT_EQ(cube.width(), 1);
    EXPECT_EQ(cube.height(), 3);
}

TEST_F(CsvCubeTest, WhatIsNoCubeIsToldByItsLine)
{
    EXPECT_EQ(refusal(""), ":1: the first line is not \"x,y\" and a name an image: this is no cube");
    EXPECT_EQ(refusal("file,emission\n"), ":1: the first line is not \"x,y\" and a name an image: this is a table of "
                                          "images, which --images takes beside their folder");
    EXPECT_EQ(refusal("wavelength,a\n"), ":1: the first line is not \"x,y\" and a name an image: this is no cube");
    EXPECT_EQ(refusal("x,y,a\n"), ":1: the cube has no pixel");
    EXPECT_EQ(refusal("x,y,a\n0,0,1\n1,0\n"), ":3: 2 fields where the first line names 3");
    EXPECT_EQ(refusal("x,y,a\n0,0,1\n1,0,?\n"), ":3: \"?\" is not a number");
    EXPECT_EQ(refusal("x,y,a\n0,0,1\n1,0,1,5\n"), ":3: 4 fields where the first line names 3");
    EXPECT_EQ(refusal("x,y,a\n0,0,1\n2,0,1\n"), ":3: pixel 2, 0 comes where pixel 1, 0 is due");
    EXPECT_EQ(refusal("x,y,a\n0,0,1\n1,0,1\n0,1,1\n"), ":4: the last row of the image ends after 1 of 2 pixels");
    EXPECT_EQ(refusal("x,y,a\n0,0,1\n1,0,1\n0,1,1\n0,2,1\n"), ":5: pixel 0, 2 comes where pixel 1, 1 is due");
}

TEST_F(CsvCubeTest, ALineWithoutEndIsRefused)
{
    EXPECT_FALSE(refusal("x,y,a\n0,0," + QByteArray(3 * 1024 * 1024, '1')).isEmpty());
}

// 3000 columns take a block of rows each 1400 pixels or so.
TEST_F(CsvCubeTest, ImagesAreWholeOverManyBlocks)
{
    constexpr int bands = 3000;
    constexpr int side = 60;
    const auto value = [](int i, int k) { return (i * 31 + k) % 1000; };
    QByteArray text = "x,y";
    for (int k = 0; k < bands; ++k) {
        text += ",t" + QByteArray::number(k) + "s";
    }
    text += '\n';
    for (int i = 0; i < side * side; ++i) {
        text += QByteArray::number(i % side) + ',' + QByteArray::number(i / side);
        for (int k = 0; k < bands; ++k) {
            text += ',' + QByteArray::number(value(i, k));
        }
        text += '\n';
    }
    CsvCube cube;
    QString error;
    ASSERT_TRUE(cube.open(write("cube.csv", text), &error)) << qPrintable(error);
    for (const int k : {0, 1, 1499, bands - 1}) {
        CILImage image;
        ASSERT_TRUE(cube.readBand(k, image, &error)) << qPrintable(error);
        for (int i = 0; i < side * side; ++i) {
            ASSERT_EQ(image.floats()[i], static_cast<float>(value(i, k))) << k << " " << i;
        }
    }
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/DarkImages.h"

#include "services/importer/ImporterFixture.h"

#include <cmath>

namespace {

class DarkImagesTest : public ImporterFixture
{
protected:
    // Opens what lies at that place for images with these names, all of 4 x 3 pixels.
    bool open(const QString& source, const QStringList& images)
    {
        QVector<ImageRow> rows;
        QVector<QSize> sizes;
        for (const QString& image : images) {
            ImageRow row;
            row.file = image;
            rows.append(row);
            sizes.append(QSize(4, 3));
        }
        return m_dark.open(path(source), rows, images, sizes, &m_error);
    }
    double first(int i)
    {
        std::vector<double> pixels;
        EXPECT_TRUE(m_dark.read(i, pixels, &m_error)) << qPrintable(m_error);
        return pixels.empty() ? -1.0 : pixels.front();
    }
    QString refusal(const QString& source, const QStringList& images)
    {
        EXPECT_FALSE(open(source, images));
        EXPECT_TRUE(m_dark.isEmpty());
        return m_error.remove(path(source) + ": ");
    }

    DarkImages m_dark;
    QString m_error;
};

const QStringList twoImages{"a.tif", "b.tif"};

} // namespace

TEST_F(DarkImagesTest, OneServesAllImages)
{
    writeRamp("dark.tif", 7);
    ASSERT_TRUE(open("dark.tif", {"a.tif", "b.tif", "c.tif"})) << qPrintable(m_error);
    EXPECT_EQ(m_dark.matching(), "one for all");
    EXPECT_EQ(m_dark.name(2), "dark.tif");
    EXPECT_TRUE(m_dark.isSame(0, 2));
    EXPECT_EQ(first(2), 7.0);
    // So does the only one of a folder, whatever its name is.
    writeRamp("one/z.tif", 9);
    ASSERT_TRUE(open("one", twoImages)) << qPrintable(m_error);
    EXPECT_EQ(first(1), 9.0);
}

TEST_F(DarkImagesTest, PagesServeInTheirOrder)
{
    writePages("darks.tif", 2);
    ASSERT_TRUE(open("darks.tif", twoImages)) << qPrintable(m_error);
    EXPECT_EQ(m_dark.matching(), "in their order");
    EXPECT_EQ(first(0), 100.0);
    EXPECT_EQ(first(1), 200.0);
    EXPECT_FALSE(m_dark.isSame(0, 1));
    EXPECT_EQ(refusal("darks.tif", {"a.tif", "b.tif", "c.tif"}),
              "there are 2 dark images where the images are 3; one is needed for all, one each in the same order, or a "
              "folder "
              "with one each of the same name");
}

TEST_F(DarkImagesTest, PlanesOfAStackInDepthServeInTheirOrder)
{
    writeStack("deep.tif", "ImageJ=1.53\nimages=2\nslices=2\nhyperstack=true\n", {"", ""});
    ASSERT_TRUE(open("deep.tif", twoImages)) << qPrintable(m_error);
    EXPECT_FALSE(m_dark.isSame(0, 1));
}

TEST_F(DarkImagesTest, FilesOfAFolderServeByTheirNames)
{
    writeRamp("named/b.tif", 20);
    writeRamp("named/A.TIF", 10);
    writeRamp("named/c.tif", 30);
    ASSERT_TRUE(open("named", twoImages)) << qPrintable(m_error);
    EXPECT_EQ(m_dark.matching(), "by name");
    EXPECT_EQ(first(0), 10.0);
    EXPECT_EQ(first(1), 20.0);
    writeRamp("dark named/dark_b.tif", 21);
    writeRamp("dark named/a-Dark.tif", 11);
    ASSERT_TRUE(open("dark named", twoImages)) << qPrintable(m_error);
    EXPECT_EQ(first(0), 11.0);
    EXPECT_EQ(first(1), 21.0);
}

TEST_F(DarkImagesTest, AFileServesAllImagesOfAFileOfThatName)
{
    writeRamp("two/s.tif", 5);
    writeRamp("two/t.tif", 6);
    QVector<ImageRow> rows(3);
    rows[0].file = rows[1].file = "s.tif";
    rows[0].page = 1;
    rows[1].page = 2;
    rows[2].file = "t.tif";
    const QVector<QSize> sizes(3, QSize(4, 3));
    ASSERT_TRUE(m_dark.open(path("two"), rows, {"s.tif page 1", "s.tif page 2", "t.tif"}, sizes, &m_error))
        << qPrintable(m_error);
    EXPECT_EQ(first(1), 5.0);
    EXPECT_EQ(first(2), 6.0);
}

TEST_F(DarkImagesTest, FilesOfOtherNamesServeInTheirOrder)
{
    writeRamp("other/d10.tif", 10);
    writeRamp("other/d9.tif", 9);
    ASSERT_TRUE(open("other", twoImages)) << qPrintable(m_error);
    EXPECT_EQ(m_dark.matching(), "in their order");
    EXPECT_EQ(first(0), 9.0) << "numbers by value";
    EXPECT_EQ(first(1), 10.0);
}

TEST_F(DarkImagesTest, AnImageWithoutOneIsNamed)
{
    writeRamp("some/a.tif", 10);
    writeRamp("some/x.tif", 20);
    EXPECT_EQ(refusal("some", twoImages), "no dark image is named as b.tif");
}

TEST_F(DarkImagesTest, AnotherSizeIsRefusedByImage)
{
    writeRamp("small.tif", 1, 3, 3);
    EXPECT_EQ(refusal("small.tif", twoImages), "the dark image has 3 x 3 pixels where a.tif has 4 x 3");
    writeRamp("mixed/a.tif", 1);
    writeRamp("mixed/b.tif", 1, 8, 8);
    EXPECT_EQ(refusal("mixed", twoImages), "the dark image b.tif has 8 x 8 pixels where b.tif has 4 x 3");
}

TEST_F(DarkImagesTest, WhatCannotBeReadIsRefused)
{
    EXPECT_EQ(refusal("absent.tif", twoImages), "there is no such file or folder");
    QDir().mkpath(path("empty"));
    EXPECT_TRUE(refusal("empty", twoImages).startsWith("there is no TIFF file"));
    write("text.tif", "no image");
    EXPECT_FALSE(refusal("text.tif", twoImages).isEmpty());
    writeTiffFile("nan.tif",
                  makeImage(ORVTYPE_FLOAT, 4, 3, [](long x, long y) { return x == 1 && y == 2 ? std::nan("") : 0.0; }));
    ASSERT_TRUE(open("nan.tif", twoImages));
    std::vector<double> pixels;
    EXPECT_FALSE(m_dark.read(0, pixels, &m_error));
    EXPECT_EQ(m_error, path("nan.tif") + ": the pixel in column 1, row 2 is not finite or too large");
}

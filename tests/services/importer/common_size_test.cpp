// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/CommonSize.h"

#include "services/importer/ImporterFixture.h"

#include <cmath>

namespace {

class CommonSizeTest : public ImporterFixture
{
protected:
    bool choose(const QVector<QSize>& sizes, SizeRule eRule)
    {
        QStringList names;
        for (int i = 0; i < sizes.size(); ++i) {
            names.append(QString(QChar('a' + i)));
        }
        m_reason.clear();
        return m_size.choose(sizes, names, eRule, &m_reason, &m_nImage);
    }
    // Row by row: 0, 1, 2, ...
    static CILImage counting(ORVDataTypes type, long w, long h)
    {
        return makeImage(type, w, h, [w](long x, long y) { return static_cast<double>(y * w + x); });
    }
    static std::vector<double> valuesOf(const CILImage& image)
    {
        std::vector<double> values;
        for (std::size_t i = 0; i < image.pixelCount(); ++i) {
            values.push_back(image.value(i));
        }
        return values;
    }

    CommonSize m_size;
    QString m_reason;
    int m_nImage = -1;
};

using Values = std::vector<double>;
using Marks = std::vector<bool>;

} // namespace

TEST_F(CommonSizeTest, ImagesOfOneSizeStayWhateverTheRule)
{
    for (const SizeRule rule : {SizeRule::Refuse, SizeRule::Crop, SizeRule::Bin, SizeRule::Pad}) {
        ASSERT_TRUE(choose({{4, 3}, {4, 3}}, rule));
        EXPECT_FALSE(m_size.isNeeded());
        EXPECT_TRUE(m_size.text().isEmpty());
        CILImage image = counting(ORVTYPE_BYTE, 4, 3);
        Marks marks;
        ASSERT_TRUE(m_size.fit(1, false, image, marks));
        EXPECT_EQ(image.dataType(), ORVTYPE_BYTE);
        EXPECT_EQ(valuesOf(image), valuesOf(counting(ORVTYPE_BYTE, 4, 3)));
        EXPECT_TRUE(marks.empty());
    }
}

TEST_F(CommonSizeTest, TheFirstImageOfAnotherSizeIsRefusedWithTheOption)
{
    EXPECT_FALSE(choose({{4, 3}, {4, 3}, {3, 4}, {8, 6}}, SizeRule::Refuse));
    EXPECT_EQ(m_nImage, 2);
    EXPECT_EQ(m_reason, "c has 3 x 4 pixels where a has 4 x 3; --sizes crop, bin or pad brings them to one size");
}

TEST_F(CommonSizeTest, CropKeepsTheUpperLeftOfAll)
{
    ASSERT_TRUE(choose({{4, 2}, {3, 3}}, SizeRule::Crop));
    EXPECT_EQ(m_size.width(), 3);
    EXPECT_EQ(m_size.height(), 2);
    for (const ORVDataTypes type : {ORVTYPE_BYTE, ORVTYPE_USHORT, ORVTYPE_INT, ORVTYPE_FLOAT, ORVTYPE_DOUBLE}) {
        CILImage first = counting(type, 4, 2);
        Marks marks{false, false, false, true, false, true, false, false};
        ASSERT_TRUE(m_size.fit(0, false, first, marks));
        EXPECT_EQ(first.dataType(), type);
        EXPECT_EQ(valuesOf(first), (Values{0, 1, 2, 4, 5, 6}));
        EXPECT_EQ(marks, (Marks{false, false, false, false, true, false}));
        CILImage second = counting(type, 3, 3);
        Marks none;
        ASSERT_TRUE(m_size.fit(1, false, second, none));
        EXPECT_EQ(valuesOf(second), (Values{0, 1, 2, 3, 4, 5}));
        EXPECT_TRUE(none.empty());
    }
}

TEST_F(CommonSizeTest, PadMarksWhatItAdds)
{
    ASSERT_TRUE(choose({{2, 1}, {1, 2}, {2, 2}}, SizeRule::Pad));
    EXPECT_EQ(m_size.width(), 2);
    EXPECT_EQ(m_size.height(), 2);
    CILImage wide = counting(ORVTYPE_USHORT, 2, 1);
    Marks marks;
    ASSERT_TRUE(m_size.fit(0, false, wide, marks));
    EXPECT_EQ(valuesOf(wide), (Values{0, 1, 0, 0}));
    EXPECT_EQ(marks, (Marks{false, false, true, true}));
    CILImage high = counting(ORVTYPE_USHORT, 1, 2);
    marks = {true, false};
    ASSERT_TRUE(m_size.fit(1, false, high, marks));
    EXPECT_EQ(valuesOf(high), (Values{0, 0, 1, 0}));
    EXPECT_EQ(marks, (Marks{true, true, false, true}));
    CILImage whole = counting(ORVTYPE_USHORT, 2, 2);
    marks.clear();
    ASSERT_TRUE(m_size.fit(2, false, whole, marks));
    EXPECT_TRUE(marks.empty());
}

TEST_F(CommonSizeTest, BinSumsCountsAndAveragesDensities)
{
    ASSERT_TRUE(choose({{4, 2}, {2, 1}}, SizeRule::Bin));
    EXPECT_EQ(m_size.factor(0), 2);
    EXPECT_EQ(m_size.factor(1), 1);
    CILImage counts = counting(ORVTYPE_BYTE, 4, 2);
    counts.setValue(7, 255.0);
    Marks marks;
    ASSERT_TRUE(m_size.fit(0, false, counts, marks));
    EXPECT_EQ(valuesOf(counts), (Values{0 + 1 + 4 + 5, 2 + 3 + 6 + 255})) << "beyond a byte";
    EXPECT_EQ(counts.m_fBinning, 1.0F) << "all images have the same pixels now";
    CILImage density = counting(ORVTYPE_DOUBLE, 4, 2);
    ASSERT_TRUE(m_size.fit(0, true, density, marks));
    EXPECT_EQ(valuesOf(density), (Values{2.5, 4.5}));
    CILImage small = counting(ORVTYPE_BYTE, 2, 1);
    ASSERT_TRUE(m_size.fit(1, false, small, marks));
    EXPECT_EQ(small.dataType(), ORVTYPE_BYTE);
}

TEST_F(CommonSizeTest, ABinnedPixelNeedsAllOfItsPixels)
{
    ASSERT_TRUE(choose({{2, 2}, {4, 4}}, SizeRule::Bin));
    Marks marks(16, false);
    marks[3] = true; // at the right of the first row
    CILImage image = counting(ORVTYPE_FLOAT, 4, 4);
    ASSERT_TRUE(m_size.fit(1, false, image, marks));
    EXPECT_EQ(marks, (Marks{false, true, false, false}));
}

TEST_F(CommonSizeTest, BinNeedsOneWholeNumberAlongBothSides)
{
    EXPECT_FALSE(choose({{4, 4}, {2, 2}, {5, 4}}, SizeRule::Bin));
    EXPECT_EQ(m_nImage, 2);
    EXPECT_EQ(m_reason, "c has 5 x 4 pixels, which cannot be binned to the 2 x 2 of b by a whole number, the same "
                        "along both sides; --sizes crop or pad brings them to one size");
    EXPECT_FALSE(choose({{4, 2}, {2, 2}}, SizeRule::Bin)) << "pixels would be no squares";
    EXPECT_FALSE(choose({{2, 4}, {4, 2}}, SizeRule::Bin));
    EXPECT_FALSE(choose({{2147483647, 2147483647}, {2, 3}}, SizeRule::Bin)) << "without overflow";
}

TEST_F(CommonSizeTest, OnePixelIsASize)
{
    ASSERT_TRUE(choose({{3, 3}, {1, 1}}, SizeRule::Bin));
    Marks marks;
    CILImage image = counting(ORVTYPE_INT, 3, 3);
    ASSERT_TRUE(m_size.fit(0, false, image, marks));
    EXPECT_EQ(valuesOf(image), Values{36});
    ASSERT_TRUE(choose({{3, 3}, {1, 1}}, SizeRule::Crop));
    image = counting(ORVTYPE_INT, 3, 3);
    ASSERT_TRUE(m_size.fit(0, false, image, marks));
    EXPECT_EQ(valuesOf(image), Values{0});
    EXPECT_FALSE(choose({{3, 4}, {1, 1}}, SizeRule::Bin));
}

TEST_F(CommonSizeTest, NaNsStayWhereTheyAre)
{
    ASSERT_TRUE(choose({{2, 2}, {4, 4}}, SizeRule::Bin));
    CILImage image = counting(ORVTYPE_FLOAT, 4, 4);
    image.setValue(15, std::nan(""));
    Marks marks;
    ASSERT_TRUE(m_size.fit(1, false, image, marks));
    EXPECT_EQ(image.value(0), 10.0);
    EXPECT_TRUE(std::isnan(image.value(3)));
}

TEST_F(CommonSizeTest, RulesHaveNames)
{
    SizeRule rule = SizeRule::Refuse;
    EXPECT_TRUE(CommonSize::ruleOf("crop", &rule));
    EXPECT_EQ(rule, SizeRule::Crop);
    EXPECT_TRUE(CommonSize::ruleOf("bin", &rule));
    EXPECT_EQ(rule, SizeRule::Bin);
    EXPECT_TRUE(CommonSize::ruleOf("pad", &rule));
    EXPECT_EQ(rule, SizeRule::Pad);
    EXPECT_FALSE(CommonSize::ruleOf("refuse", &rule));
    EXPECT_FALSE(CommonSize::ruleOf("", &rule));
}

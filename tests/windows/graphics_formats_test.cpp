// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/graphicsFormats.h"

#include "host/CORVPreference.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

TEST(GraphicsFormatsTest, FiltersAreTheseInThisOrder)
{
    EXPECT_EQ(
        graphicsFormats::filters(),
        QStringList({"Bitmap Image (*.bmp)", "JPEG Image (*.jpg)", "PNG Image (*.png)",
                     "Windows Metafile Format (*.wmf)", "Enhanced Metafile Format (*.emf)",
                     "Postscript Enhanced Metafile (*.eps)", "Tagged Image File Format (*.tiff)", "DICOM (*.dcm)"}));
}

TEST(GraphicsFormatsTest, EachFilterHasItsSuffix)
{
    const QStringList suffixes = graphicsFormats::suffixes();
    EXPECT_EQ(suffixes, QStringList({"bmp", "jpg", "png", "wmf", "emf", "eps", "tiff", "dcm"}));
    for (int i = 0; i < suffixes.size(); ++i) {
        EXPECT_TRUE(graphicsFormats::filters().at(i).endsWith("(*." + suffixes[i] + ")")) << i;
    }
}

struct NameCase
{
    const char* file;
    const char* remembered;
    bool isDicom;
};

std::ostream& operator<<(std::ostream& stream, const NameCase& nameCase)
{
    return stream << nameCase.file;
}

class GraphicsNameTest : public ::testing::TestWithParam<NameCase>
{
};

INSTANTIATE_TEST_SUITE_P(Names, GraphicsNameTest,
                         ::testing::Values(NameCase{"/a/b.png", "png", false}, NameCase{"/a/b.dcm", "dcm", true},
                                           NameCase{"/a/b.DCM", "DCM", true}, NameCase{"/a/b.Dcm", "Dcm", true},
                                           NameCase{"/a/mouse 1.5.png", "5.png", false},
                                           NameCase{"/a/b.dcm.png", "dcm.png", false},
                                           NameCase{"/a/b.png.dcm", "png.dcm", true}, NameCase{"/a/b", "", false},
                                           NameCase{"/a.dcm/b.png", "png", false}, NameCase{"/a.dcm/b", "", false},
                                           NameCase{"/a/dcm", "", false}, NameCase{"/a/b.dcm5", "dcm5", false}));

TEST_P(GraphicsNameTest, TheFirstDotIsRememberedAndTheLastOneDecides)
{
    EXPECT_EQ(graphicsFormats::rememberedFormat(GetParam().file), GetParam().remembered) << GetParam().file;
    EXPECT_EQ(graphicsFormats::isDicom(GetParam().file), GetParam().isDicom) << GetParam().file;
}

TEST(GraphicsFormatsTest, ThePreferredFormatComesFirst)
{
    QStringList filters = graphicsFormats::filters();
    CORVPreference::setUsersPreferredFormat("tiff");
    CORVPreference::modifySaveFilterListByPreference(filters);
    EXPECT_EQ(filters.first(), "Tagged Image File Format (*.tiff)");
    EXPECT_EQ(filters.size(), 8);
    QStringList others = graphicsFormats::filters();
    CORVPreference::setUsersPreferredFormat("5.png");
    CORVPreference::modifySaveFilterListByPreference(others);
    EXPECT_EQ(others, graphicsFormats::filters());
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/PictureOptions.h"

#include "host/CILPalette.h"
#include "services/support/CliFixture.h"
#include "workbench/commands/ParsedOptions.h"

namespace {

PictureRequest requestOf(const QStringList& arguments)
{
    return pictureRequestOf(ParsedOptions(declarePictureOptions, arguments).parser(), "unmix");
}

} // namespace

TEST(PictureOptionsTest, WithoutThemPicturesAreTheSequencesAndScansHaveOneScaleAComponent)
{
    const PictureRequest request = requestOf({});
    EXPECT_EQ(request.colorTable, -1);
    EXPECT_EQ(request.scale, MapScale::Component);
}

TEST(PictureOptionsTest, ColorsNameATable)
{
    EXPECT_EQ(requestOf({"--colors", "viridis"}).colorTable, CILPalette::colorTableIndex("Viridis"));
    EXPECT_TRUE(requestOf({"--colors", "magma:reversed"}).reversed);
}

TEST(PictureOptionsTest, ScaleNamesTheMapsThatShareOne)
{
    EXPECT_EQ(requestOf({"--scale", "own"}).scale, MapScale::Own);
    EXPECT_EQ(requestOf({"--scale", "component"}).scale, MapScale::Component);
    EXPECT_EQ(requestOf({"--scale", "all"}).scale, MapScale::All);
}

TEST(PictureOptionsTest, OtherWordsAreBadCallsThatTellWhatIsTaken)
{
    const QString colors = failureOf([] { requestOf({"--colors", "jet"}); });
    EXPECT_TRUE(colors.startsWith("[2] --colors takes ")) << qPrintable(colors);
    EXPECT_TRUE(colors.contains("viridis") && colors.contains("\"jet\"")) << qPrintable(colors);
    EXPECT_TRUE(failureOf([] { requestOf({"--colors", ""}); }).startsWith("[2] "));
    const QString scale = failureOf([] { requestOf({"--scale", "shared"}); });
    EXPECT_TRUE(scale.startsWith("[2] --scale takes own, component or all, not \"shared\"")) << qPrintable(scale);
}

TEST(PictureOptionsTest, ACommandWithoutScaleTakesColorsAlone)
{
    const ParsedOptions options(declareColorsOption, {"--colors", "plasma"});
    EXPECT_EQ(pictureRequestOf(options.parser(), "compare").colorTable, CILPalette::colorTableIndex("Plasma"));
}

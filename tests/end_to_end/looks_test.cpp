// SPDX-License-Identifier: GPL-3.0-or-later
// Every window on the way from a sequence to maps, on screens and in palettes that people have: nothing is cut, every
// control has a name. The pictures are kept to be looked at.
#include "end_to_end/Screen.h"
#include "end_to_end/WorkbenchFixture.h"
#include "support/simulated.h"

namespace {

class LooksTest : public WorkbenchFixture, public ::testing::WithParamInterface<Screen>
{
protected:
    void look(const QString& strStage, const QString& strWindow = QStringLiteral("mainWindow"))
    {
        ::look(program(), GetParam(), strStage, strWindow);
    }
};

TEST_P(LooksTest, NothingIsCutAndEverythingHasAName)
{
    startOn(GetParam());
    const QJsonArray place = program().state("mainWindow")["place"].toArray();
    EXPECT_LE(place[2].toInt(), GetParam().width);
    EXPECT_LE(place[3].toInt(), GetParam().height);
    look("start");
    program().call(
        {{"do", "drop"}, {"widget", "mainWindow"}, {"files", QJsonArray{simulated::sequence({"--size", "128"})}}});
    ASSERT_TRUE(program().waitFor("m_pWaveLengthTable/.QCheckBox"));
    look("sequence");
    program().call({{"do", "item"}, {"widget", "m_pThumbnailView"}, {"row", 0}, {"column", 0}, {"double", true}});
    ASSERT_TRUE(program().waitFor("m_pImageBox"));
    look("image");
    program().key("Ctrl+W");
    ASSERT_TRUE(program().waitUntil([&] { return !program().isVisible("m_pImageBox"); }));
    ASSERT_TRUE(openWizard());
    look("wizard");
    program().click("m_pDrawMaskRB");
    ASSERT_TRUE(program().waitUntilEnabled("m_pRectRB"));
    look("drawn_mask");
    program().click("m_pPhotoRB");
    ASSERT_TRUE(finishWizard());
    look("tiles");
    ASSERT_TRUE(openComposite());
    look("composite");
    ASSERT_TRUE(openCube());
    look("cube");
    program().click("m_pLoadDatabaseTB");
    program().waitFor("SpUnmixSpectrumLibraryWnd", 5000);
    look("library", "SpUnmixSpectrumLibraryWnd");
}

INSTANTIATE_TEST_SUITE_P(Screens, LooksTest, screens(), nameOfScreen);

} // namespace

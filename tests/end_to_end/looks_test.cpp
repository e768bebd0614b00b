// SPDX-License-Identifier: GPL-3.0-or-later
// Every window on the way from a sequence to maps, on screens and in palettes that people have: nothing is cut, every
// control has a name. The pictures are kept to be looked at.
#include "end_to_end/WorkbenchFixture.h"
#include "support/simulated.h"

namespace {

struct Screen
{
    const char* name;
    const char* scale;
    int width;
    int height;
    bool dark;
};

std::ostream& operator<<(std::ostream& out, const Screen& screen)
{
    return out << screen.name;
}

std::string joined(const QJsonArray& texts)
{
    QStringList lines;
    for (const QJsonValue& text : texts) {
        lines.append(text.toString());
    }
    return lines.join('\n').toStdString();
}

class LooksTest : public WorkbenchFixture, public ::testing::WithParamInterface<Screen>
{
protected:
    void look(const QString& strStage, const QString& strWindow = QStringLiteral("mainWindow"))
    {
        program().call({{"do", "quiet"}, {"ms", 100}});
        program().picture(QStringLiteral("looks/%1_%2.png").arg(GetParam().name, strStage));
        const QJsonObject faults = program().call({{"do", "faults"}, {"widget", strWindow}});
        EXPECT_EQ(joined(faults["cut"].toArray()), "") << strStage.toStdString();
        EXPECT_EQ(joined(faults["nameless"].toArray()), "") << strStage.toStdString();
    }
};

TEST_P(LooksTest, NothingIsCutAndEverythingHasAName)
{
    program().setVariable("QT_SCALE_FACTOR", GetParam().scale);
    startProgram({});
    if (GetParam().dark) {
        program().call({{"do", "dark"}});
    }
    program().call(
        {{"do", "resize"}, {"widget", "mainWindow"}, {"size", QJsonArray{GetParam().width, GetParam().height}}});
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

INSTANTIATE_TEST_SUITE_P(Screens, LooksTest,
                         ::testing::Values(Screen{"usual", "1", 1600, 1200, false},
                                           Screen{"small", "1", 1024, 700, false},
                                           Screen{"sharp", "2", 800, 600, false}, Screen{"dark", "1", 1280, 900, true}),
                         [](const auto& each) { return std::string(each.param.name); });

} // namespace

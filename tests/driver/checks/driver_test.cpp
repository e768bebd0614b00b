// SPDX-License-Identifier: GPL-3.0-or-later
#include "driver/DrivenProgram.h"

#include <QFileInfo>
#include <QImage>

#include <gtest/gtest.h>

namespace {

class DriverTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_sample.start({}));
        ASSERT_TRUE(m_sample.waitFor("said"));
    }

    std::string said() { return m_sample.state("said")["text"].toString().toStdString(); }
    bool says(const QString& strText)
    {
        return m_sample.waitUntil([&] { return m_sample.state("said")["text"].toString() == strText; }, 5000);
    }

    DrivenProgram m_sample{ORV_BINARY_DIR "/tests/driver_sample"};
};

TEST_F(DriverTest, AClickOpensADialogInWhichTheNextClickAnswers)
{
    EXPECT_TRUE(m_sample.click("ask"));
    ASSERT_TRUE(m_sample.waitFor(".QMessageBox"));
    EXPECT_EQ(m_sample.state(".QMessageBox")["message"].toString().toStdString(), "Really?");
    EXPECT_TRUE(m_sample.click(".QMessageBox/.QPushButton[Yes]"));
    EXPECT_TRUE(says("yes")) << said();
    EXPECT_FALSE(m_sample.isVisible(".QMessageBox"));
}

TEST_F(DriverTest, TheWindowBehindADialogGetsNoClicks)
{
    m_sample.click("ask");
    ASSERT_TRUE(m_sample.waitFor(".QMessageBox"));
    m_sample.click("list");
    m_sample.key("Esc");
    EXPECT_TRUE(says("no")) << said();
}

TEST_F(DriverTest, WhatIsOffStaysUntouched)
{
    EXPECT_TRUE(m_sample.click("off"));
    EXPECT_EQ(said(), "");
    EXPECT_FALSE(m_sample.state("off")["enabled"].toBool());
}

TEST_F(DriverTest, CommandsGoOnWhileASlotTurnsTheEventLoop)
{
    m_sample.click("busy");
    m_sample.click("ask");
    ASSERT_TRUE(m_sample.waitFor(".QMessageBox"));
    m_sample.key("Esc");
    EXPECT_TRUE(says("stopped")) << said();
}

TEST_F(DriverTest, KeysGoToTheFocusAndTextIntoEdits)
{
    m_sample.click("edit");
    EXPECT_TRUE(m_sample.type(QString::fromUtf8("a1 µöя,%")));
    m_sample.key("Return");
    EXPECT_TRUE(says(QString::fromUtf8("entered a1 µöя,%"))) << said();
    m_sample.key("Tab");
    EXPECT_TRUE(m_sample.state("slider")["focus"].toBool());
}

TEST_F(DriverTest, SlidersAreDragged)
{
    const QJsonArray place = m_sample.state("slider")["place"].toArray();
    const int nWidth = place[2].toInt();
    const int nMiddle = place[3].toInt() / 2;
    EXPECT_TRUE(m_sample
                    .call({{"do", "drag"},
                           {"widget", "slider"},
                           {"from", QJsonArray{5, nMiddle}},
                           {"to", QJsonArray{nWidth / 2, nMiddle}}})["ok"]
                    .toBool());
    const double dValue = m_sample.state("slider")["value"].toDouble();
    EXPECT_GT(dValue, 30.0);
    EXPECT_LT(dValue, 70.0);
}

TEST_F(DriverTest, EntriesTabsAndMenusAreReachedByTheirTexts)
{
    m_sample.call({{"do", "item"}, {"widget", "list"}, {"text", "two"}});
    EXPECT_TRUE(says("two")) << said();
    m_sample.call({{"do", "choose"}, {"widget", "fruit"}, {"text", "plum"}});
    EXPECT_TRUE(m_sample.waitUntil([&] { return m_sample.state("fruit")["text"].toString() == "plum"; }, 5000));
    EXPECT_TRUE(m_sample.isVisible("tabs/.QCheckBox[Inside]"));
    m_sample.call({{"do", "tab"}, {"widget", "tabs"}, {"text", "Second"}});
    EXPECT_TRUE(m_sample.waitFor("tabs/.QLabel[Other]", 5000));
    m_sample.call({{"do", "menu"}, {"text", "File"}});
    ASSERT_TRUE(m_sample.waitFor(".QMenu", 5000));
    EXPECT_TRUE(m_sample.call({{"do", "menu"}, {"text", "Open..."}})["ok"].toBool());
    EXPECT_TRUE(says("open")) << said();
}

TEST_F(DriverTest, FilesAreDropped)
{
    m_sample.call({{"do", "drop"}, {"widget", "said"}, {"files", QJsonArray{"/tmp/a file.tif"}}});
    EXPECT_TRUE(says("dropped a file.tif")) << said();
}

TEST_F(DriverTest, PausesOfTheEventLoopAreTold)
{
    m_sample.call({{"do", "stalls"}});
    m_sample.click("slow");
    m_sample.call({{"do", "quiet"}, {"ms", 100}});
    EXPECT_GT(m_sample.call({{"do", "stalls"}})["ms"].toArray()[0].toInt(), 250);
}

TEST_F(DriverTest, AMissingWidgetIsAnError)
{
    EXPECT_FALSE(m_sample.click("absent"));
    EXPECT_FALSE(m_sample.call({{"do", "dance"}, {"widget", "said"}})["ok"].toBool());
}

TEST_F(DriverTest, PicturesAreWritten)
{
    EXPECT_TRUE(m_sample.picture("driver/sample.png"));
    EXPECT_GT(QFileInfo(ORV_BINARY_DIR "/pictures/driver/sample.png").size(), 1000);
}

TEST_F(DriverTest, TextsWithoutRoomAndControlsWithoutANameAreTold)
{
    const QJsonObject faults = m_sample.call({{"do", "faults"}, {"widget", "said"}});
    EXPECT_EQ(faults["cut"].toArray(), QJsonArray()) << "what lies below the label alone";
    const QJsonObject all = m_sample.call({{"do", "faults"}, {"widget", ".QMainWindow"}});
    EXPECT_EQ(all["cut"].toArray(), (QJsonArray{"QLabel long: A text that is longer than its place"}));
    const QJsonArray nameless = all["nameless"].toArray();
    EXPECT_TRUE(nameless.contains("QSlider slider: "));
    EXPECT_TRUE(nameless.contains("QComboBox fruit: apple")) << "a value is no name";
    EXPECT_FALSE(nameless.contains("QDial dial: "));
    EXPECT_FALSE(nameless.contains("QPushButton ask: &Ask"));
}

// The sample draws with the style of Qt's own as it is.
TEST_F(DriverTest, BoxesThatAreHardlySeenInADarkPaletteAreTold)
{
    const auto faint = [this] {
        return m_sample.call({{"do", "faults"}, {"widget", ".QMainWindow"}})["faint"].toArray();
    };
    EXPECT_EQ(faint(), QJsonArray());
    m_sample.call({{"do", "dark"}});
    EXPECT_EQ(faint(), QJsonArray{"QCheckBox : Inside"});
}

TEST_F(DriverTest, WindowsAreResizedAndDarkened)
{
    const auto middle = [this] {
        m_sample.picture("driver/dark.png", ".QMainWindow");
        const QImage picture(ORV_BINARY_DIR "/pictures/driver/dark.png");
        return picture.isNull() ? -1 : qGray(picture.pixel(2, picture.height() - 2));
    };
    EXPECT_GT(middle(), 150);
    m_sample.call({{"do", "dark"}});
    m_sample.call({{"do", "resize"}, {"widget", ".QMainWindow"}, {"size", QJsonArray{777, 666}}});
    EXPECT_TRUE(m_sample.waitUntil([&] { return middle() < 100; }, 5000));
    const QJsonArray place = m_sample.state(".QMainWindow")["place"].toArray();
    EXPECT_EQ(place[2].toInt(), 777);
    EXPECT_EQ(place[3].toInt(), 666);
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
// The plug-in, and what is shown where it should be.
#include "MainWindowFixture.h"

#include "workbench/application/pluginFile.h"
#include "workbench/application/settingNames.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

namespace {

const QString plugins = QStringLiteral(ORV_BINARY_DIR "/tests/plugins/");

class PluginLoadingTest : public MainWindowFixture
{
protected:
    QString missingText() const
    {
        EXPECT_TRUE(find("pluginMissingPage")->isVisible());
        return find<QPlainTextEdit>("pluginMissingReason")->toPlainText();
    }
    void start(const QString& strFolder)
    {
        m_options.pluginFolder = strFolder;
        makeWindow();
    }
};

TEST_F(PluginLoadingTest, AMissingFileIsToldWithItsPath)
{
    makeWindow();
    EXPECT_TRUE(missingText().contains("There is no file liborvspum.so"));
    EXPECT_TRUE(missingText().contains(m_options.pluginFolder));
}

TEST_F(PluginLoadingTest, AFileThatIsNoLibraryIsToldWithItsPath)
{
    QFile file(m_folder.filePath("liborvspum.so"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("not a library");
    file.close();
    start(m_folder.path());
    EXPECT_TRUE(missingText().contains("no plug-in that this program can load")) << qPrintable(missingText());
    EXPECT_TRUE(missingText().contains(file.fileName()));
}

TEST_F(PluginLoadingTest, APlugInOfAnotherBuildIsToldWithWhatItLacks)
{
    start(plugins + "other_build");
    EXPECT_TRUE(missingText().contains("another build")) << qPrintable(missingText());
    EXPECT_TRUE(missingText().contains("functionThatNoLibraryHas"));
    EXPECT_TRUE(missingText().contains(plugins + "other_build/liborvspum.so"));
}

TEST_F(PluginLoadingTest, APlugInWithoutAPaletteIsTold)
{
    start(plugins + "no_palette");
    EXPECT_TRUE(missingText().contains("brings no tool palette")) << qPrintable(missingText());
}

TEST_F(PluginLoadingTest, TheRestWorksWithoutThePlugIn)
{
    makeWindow();
    EXPECT_TRUE(m_pWindow->open(mouse()));
    EXPECT_TRUE(find("pluginMissingPage")->isVisible());
    EXPECT_TRUE(m_pWindow->documents().closeCurrent());
}

TEST_F(PluginLoadingTest, APlugInIsLoadedAndItsPaletteShown)
{
    start(plugins + "plain");
    ASSERT_TRUE(m_pWindow->plugin().isLoaded());
    EXPECT_EQ(m_pWindow->plugin().name(), "Plain Tool");
    EXPECT_FALSE(find("plainPalette")->isVisible());
    EXPECT_EQ(find<QLabel>("paletteReason")->text(), "Open a sequence to unmix its images.");
    m_pWindow->open(mouse());
    EXPECT_TRUE(find("plainPalette")->isVisible());
    m_pWindow->documents().closeAll();
    settle();
    EXPECT_FALSE(find("plainPalette")->isVisible());
}

TEST_F(PluginLoadingTest, AnotherFolderCanBeNamedAndIsKept)
{
    makeWindow();
    m_pWindow->open(mouse());
    m_script.m_file = plugins + "plain";
    QTest::mouseClick(find<QPushButton>("pluginFolderButton"), Qt::LeftButton);
    EXPECT_TRUE(find("plainPalette")->isVisible());
    EXPECT_EQ(CORVPreference::getSettings()->value(settingNames::pluginFolder()).toString(), plugins + "plain");
}

TEST_F(PluginLoadingTest, AFolderThatIsOfNoUseIsNotKept)
{
    makeWindow();
    m_script.m_file = m_folder.path();
    QTest::mouseClick(find<QPushButton>("pluginFolderButton"), Qt::LeftButton);
    EXPECT_TRUE(missingText().contains(m_folder.path()));
    EXPECT_FALSE(CORVPreference::getSettings()->contains(settingNames::pluginFolder()));
}

TEST_F(PluginLoadingTest, ThePlugInGoesWithTheWindowAfterItsSequences)
{
    makeWindowWithTool();
    m_pWindow->open(mouse());
    m_pTool->m_told.clear();
    QStringList testament;
    m_pTool->m_pTestament = &testament;
    m_pWindow.reset();
    EXPECT_EQ(testament, QStringList("removed mouse"));
}

TEST(PluginFolderTest, OptionBeforeSettingBeforeTheUsualPlaces)
{
    EXPECT_EQ(pluginFile::folders("/option", "/setting", "/opt/bin"), QStringList("/option"));
    EXPECT_EQ(pluginFile::folders(QString(), "/setting", "/opt/bin"), QStringList("/setting"));
    const QStringList usual = pluginFile::folders(QString(), QString(), "/opt/bin");
    ASSERT_EQ(usual.size(), 2);
    EXPECT_EQ(usual[0], "/opt/bin/plugins");
    EXPECT_TRUE(usual[1].startsWith("/opt/lib")) << qPrintable(usual[1]);
    EXPECT_TRUE(usual[1].endsWith("/orvspum/plugins"));
}

TEST(PluginFolderTest, AFolderFromTheCommandLineIsThatOfThisMoment)
{
    EXPECT_EQ(pluginFile::folders("here", QString(), "/opt/bin"), QStringList(QDir::currentPath() + "/here"));
}

} // namespace

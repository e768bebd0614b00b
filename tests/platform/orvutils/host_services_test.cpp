// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVPreference.h"
#include "host/CORVPreferenceSignals.h"
#include "host/CORVSettings.h"
#include "host/CORVUtilityFns.h"
#include "host/S3DViewSettings.h"
#include "host/orv_paths.h"
#include "support/ForkedChild.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QWidget>

#include <gtest/gtest.h>

#include <map>

namespace {

// Environment variables that come back at the end of a test.
class EnvironmentTest : public ::testing::Test
{
protected:
    void setVariable(const char* pName, const QByteArray& value)
    {
        remember(pName);
        qputenv(pName, value);
    }
    void unsetVariable(const char* pName)
    {
        remember(pName);
        qunsetenv(pName);
    }
    void TearDown() override
    {
        for (const auto& [name, value] : m_earlier) {
            value.isNull() ? qunsetenv(name.c_str()) : qputenv(name.c_str(), value);
        }
    }

    QTemporaryDir m_folder;

private:
    void remember(const char* pName)
    {
        if (m_earlier.count(pName) == 0) {
            m_earlier[pName] = qEnvironmentVariableIsSet(pName) ? qgetenv(pName) : QByteArray();
        }
    }

    std::map<std::string, QByteArray> m_earlier;
};

class PathsTest : public EnvironmentTest
{
};
class PreferenceTest : public EnvironmentTest
{
protected:
    void SetUp() override { setVariable("XDG_DATA_HOME", QFile::encodeName(m_folder.path())); }
};

TEST_F(PathsTest, UserFoldersLieInTheDataHomeOfTheMoment)
{
    setVariable("XDG_DATA_HOME", QFile::encodeName(m_folder.filePath("one place")));
    EXPECT_EQ(getORVPath(ORV_PATH_USER, false, nullptr), m_folder.filePath("one place/orvia/"));
    setVariable("XDG_DATA_HOME", QFile::encodeName(m_folder.filePath("another//")));
    EXPECT_EQ(getORVPath(ORV_PATH_USER_DATA, false, nullptr), m_folder.filePath("another/orvia/data/"));
    EXPECT_FALSE(QDir(m_folder.filePath("another")).exists());
}

TEST_F(PathsTest, WithoutADataHomeTheHomeFolderServes)
{
    unsetVariable("XDG_DATA_HOME");
    setVariable("HOME", QFile::encodeName(m_folder.path()));
    EXPECT_EQ(getORVPath(ORV_PATH_USER, false, nullptr), m_folder.filePath(".local/share/orvia/"));
    // A relative folder would move with the working directory.
    setVariable("XDG_DATA_HOME", "relative/folder");
    EXPECT_EQ(getORVPath(ORV_PATH_USER, false, nullptr), m_folder.filePath(".local/share/orvia/"));
}

TEST_F(PathsTest, WithoutAHomeThereIsNoUserFolder)
{
    unsetVariable("XDG_DATA_HOME");
    unsetVariable("HOME");
    EXPECT_EQ(getORVPath(ORV_PATH_USER, true, nullptr), QString());
    EXPECT_EQ(getORVPath(ORV_PATH_USER_DATA, true, nullptr), QString());
}

TEST_F(PathsTest, UserDataIsMadeWhenAskedFor)
{
    setVariable("XDG_DATA_HOME", QFile::encodeName(m_folder.filePath("new home")));
    const QString folder = getORVPath(static_cast<ORV_PATH_TAGS>(2), true, nullptr);
    EXPECT_EQ(folder, m_folder.filePath("new home/orvia/data/"));
    EXPECT_TRUE(QDir(folder).exists());
    EXPECT_EQ(getORVPath(ORV_PATH_USER_DATA, true, nullptr), folder);
}

TEST_F(PathsTest, FolderThatCannotBeMadeIsEmpty)
{
    QFile file(m_folder.filePath("a file"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    setVariable("XDG_DATA_HOME", QFile::encodeName(file.fileName()));
    EXPECT_EQ(getORVPath(ORV_PATH_USER_DATA, true, nullptr), QString());

    setVariable("XDG_DATA_HOME", QFile::encodeName(m_folder.path()));
    ASSERT_EQ(::chmod(QFile::encodeName(m_folder.path()), 0555), 0);
    const int status = inForkedChild([] {
        if (!becomePlainUser()) {
            return 1;
        }
        return getORVPath(ORV_PATH_USER_DATA, true, nullptr).isEmpty() ? 0 : 2;
    });
    ASSERT_EQ(::chmod(QFile::encodeName(m_folder.path()), 0755), 0);
    EXPECT_EQ(status, 0);
}

TEST_F(PathsTest, EnvironmentNamesTheTablesAndAWrongNameIsNotCoveredUp)
{
    setVariable("ORVIA_DATA_DIR", QFile::encodeName(m_folder.path()));
    EXPECT_EQ(getORVPath(ORV_PATH_PROGRAM_DATA, false, nullptr), m_folder.path() + "/");
    setVariable("ORVIA_DATA_DIR", QFile::encodeName(m_folder.filePath("none")));
    EXPECT_EQ(getORVPath(ORV_PATH_PROGRAM_DATA, false, nullptr), QString());
}

TEST_F(PathsTest, TablesAreFoundInTheBuildTree)
{
    unsetVariable("ORVIA_DATA_DIR");
    const QString folder = getORVPath(ORV_PATH_PROGRAM_DATA, false, nullptr);
    EXPECT_TRUE(folder.endsWith('/'));
    EXPECT_TRUE(QFile::exists(folder + "README.md")) << folder.toStdString();
}

TEST_F(PathsTest, TemporaryFolderFollowsTheEnvironment)
{
    setVariable("TMPDIR", QFile::encodeName(m_folder.path()));
    EXPECT_EQ(getORVPath(ORV_PATH_TEMP, false, nullptr), m_folder.path() + "/");
}

TEST_F(PreferenceTest, VersionHasThreeNumbers)
{
    EXPECT_EQ(CORVPreference::getAppVersion().split('.').size(), 3);
}

TEST_F(PreferenceTest, SettingsLieInTheUsersFolder)
{
    CORVSettings* pSettings = CORVPreference::getSettings();
    ASSERT_NE(pSettings, nullptr);
    pSettings->setValue("a/b", 12.5);
    pSettings->sync();
    EXPECT_EQ(pSettings->status(), QSettings::NoError);
    EXPECT_TRUE(QFile::exists(m_folder.filePath("orvia/settings.ini")));
    EXPECT_EQ(CORVPreference::getSettings(), pSettings);
    EXPECT_EQ(QSettings(m_folder.filePath("orvia/settings.ini"), QSettings::IniFormat).value("a/b").toDouble(), 12.5);
}

TEST_F(PreferenceTest, WithoutAHomeSettingsLiveAsLongAsTheProgram)
{
    unsetVariable("XDG_DATA_HOME");
    unsetVariable("HOME");
    CORVPreference::getSettings()->setValue("lasting", 7);
    EXPECT_EQ(CORVPreference::getSettings()->value("lasting").toInt(), 7);
}

TEST_F(PreferenceTest, TheRecentFolderIsThatOfTheFileSavedLast)
{
    CORVSettings& settings = *CORVPreference::getSettings();
    EXPECT_EQ(settings.getRecentFilePath(), QDir::homePath());
    const QString folder = m_folder.filePath("Messungen f\u00fcr M\u00e4use, 2");
    ASSERT_TRUE(QDir().mkpath(folder));
    settings.setRecentFilePath(folder + "/not there yet.csv");
    EXPECT_EQ(settings.getRecentFilePath(), folder);
    settings.setRecentFilePath(m_folder.path() + '/');
    EXPECT_EQ(settings.getRecentFilePath(), m_folder.path());
    settings.setRecentFilePath(folder);
    settings.setRecentFilePath(QString());
    settings.sync();
    const CORVSettings again(settings.fileName(), QSettings::IniFormat);
    EXPECT_EQ(again.getRecentFilePath(), folder);
    // A folder that is gone is none to start in.
    ASSERT_TRUE(QDir(folder).removeRecursively());
    EXPECT_EQ(settings.getRecentFilePath(), QDir::homePath());
}

TEST_F(PreferenceTest, LettersOfTheViewsAreThoseOfTheSettings)
{
    S3DViewSettings views;
    CORVPreference::get3DViewPreferences(views);
    EXPECT_EQ(views.fontFamily, "DejaVu Sans");
    EXPECT_EQ(views.labelFontSize, 10);
    EXPECT_EQ(views.barFontSize, 10);
    CORVSettings& settings = *CORVPreference::getSettings();
    settings.setValue("Views/FontFamily", "Serif");
    settings.setValue("Views/LabelFontSize", 14);
    settings.setValue("Views/BarFontSize", 48);
    CORVPreference::get3DViewPreferences(views);
    EXPECT_EQ(views.fontFamily, "Serif");
    EXPECT_EQ(views.labelFontSize, 14);
    EXPECT_EQ(views.barFontSize, 48);
    for (const char* odd : {"5", "49", "large", "-3", ""}) {
        settings.setValue("Views/BarFontSize", odd);
        CORVPreference::get3DViewPreferences(views);
        EXPECT_EQ(views.barFontSize, 10) << odd;
    }
}

TEST_F(PreferenceTest, PreferredFormatComesFirstAndTheRestKeepsItsOrder)
{
    const QStringList original = {"PNG image (*.png)", "JPEG image (*.jpg *.jpeg)", "TIFF image (*.tiff)", "All (*)"};
    QStringList filters = original;
    CORVPreference::modifySaveFilterListByPreference(filters);
    EXPECT_EQ(filters, original);
    CORVPreference::setUsersPreferredFormat("TIF");
    EXPECT_EQ(CORVPreference::usersPreferredFormat(), "tif");
    CORVPreference::modifySaveFilterListByPreference(filters);
    EXPECT_EQ(filters, QStringList({original[2], original[0], original[1], original[3]}));
    CORVPreference::setUsersPreferredFormat(".jpeg");
    filters = original;
    CORVPreference::modifySaveFilterListByPreference(filters);
    EXPECT_EQ(filters.first(), original[1]);
    CORVPreference::setUsersPreferredFormat("bmp");
    filters = original;
    CORVPreference::modifySaveFilterListByPreference(filters);
    EXPECT_EQ(filters, original);
    QStringList none;
    CORVPreference::modifySaveFilterListByPreference(none);
    EXPECT_TRUE(none.isEmpty());
}

TEST_F(PreferenceTest, SequencesAreLoadingOneByOneOrAny)
{
    const int first = 0;
    const int second = 0;
    EXPECT_FALSE(CORVPreference::isSequenceLoading(nullptr));
    CORVPreference::setSequenceLoading(&first, true);
    EXPECT_TRUE(CORVPreference::isSequenceLoading(&first));
    EXPECT_FALSE(CORVPreference::isSequenceLoading(&second));
    EXPECT_TRUE(CORVPreference::isSequenceLoading(nullptr));
    CORVPreference::setSequenceLoading(&first, true);
    CORVPreference::setSequenceLoading(&first, false);
    EXPECT_TRUE(CORVPreference::isSequenceLoading(&first));
    CORVPreference::setSequenceLoading(&first, false);
    CORVPreference::setSequenceLoading(&first, false);
    EXPECT_FALSE(CORVPreference::isSequenceLoading(nullptr));
}

TEST_F(PreferenceTest, SignalHandlerIsOneAndSends)
{
    QSignalSpy spy(CORVPreference::getSignalHandler(), &CORVPreferenceSignals::updatePreferenceSetting);
    Q_EMIT CORVPreference::getSignalHandler()->updatePreferenceSetting();
    EXPECT_EQ(spy.count(), 1);
}

TEST(UtilityFnsTest, ApplicationIsCalledOrvia)
{
    EXPECT_EQ(CORVUtilityFns::getAppName(), "Orvia");
}

TEST(UtilityFnsTest, WithoutAWindowTheCursorStays)
{
    ASSERT_TRUE(QGuiApplication::topLevelWindows().isEmpty());
    CORVUtilityFns::setCursor(Qt::WaitCursor);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    CORVUtilityFns::restoreCursor();
    CORVUtilityFns::restoreCursor();
}

TEST(UtilityFnsTest, WithAWindowTheCursorChangesAndComesBack)
{
    // Set while there was no window: its counterpart must not take back another's cursor.
    CORVUtilityFns::setCursor(Qt::BusyCursor);
    {
        QWidget window;
        window.show();
        CORVUtilityFns::setCursor(Qt::WaitCursor);
        ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
        EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
        CORVUtilityFns::restoreCursor();
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
        QGuiApplication::setOverrideCursor(Qt::CrossCursor);
        CORVUtilityFns::restoreCursor();
        EXPECT_NE(QGuiApplication::overrideCursor(), nullptr);
        QGuiApplication::restoreOverrideCursor();
    }
}

TEST(UtilityFnsTest, FlagsHoldWhatWasSet)
{
    EXPECT_TRUE(CORVUtilityFns::canClose());
    CORVUtilityFns::setCanClose(false);
    EXPECT_FALSE(CORVUtilityFns::canClose());
    CORVUtilityFns::setCanClose(true);

    EXPECT_FALSE(CORVUtilityFns::getCloseAllClicked());
    CORVUtilityFns::setCloseAllClicked(true);
    EXPECT_TRUE(CORVUtilityFns::getCloseAllClicked());
    CORVUtilityFns::setCloseAllClicked(false);

    EXPECT_FALSE(CORVUtilityFns::getNoToAllClicked());
    CORVUtilityFns::setNoToAllClicked(true);
    EXPECT_TRUE(CORVUtilityFns::getNoToAllClicked());
    CORVUtilityFns::setNoToAllClicked(false);
}

TEST(UtilityFnsTest, BatchStateHoldsWhatWasSet)
{
    EXPECT_FALSE(CORVUtilityFns::getSpumBatchStatus());
    EXPECT_FALSE(CORVUtilityFns::getSpumBatchNewFolderStatus());
    EXPECT_EQ(CORVUtilityFns::getSpumBatchProcessingCount(), 0);
    CORVUtilityFns::setSpumBatchStatus(true);
    CORVUtilityFns::setSpumBatchNewFolderStatus(true);
    CORVUtilityFns::setSpumBatchProcessingCount(3);
    CORVUtilityFns::setAdaptFLBgModeForSpumBatch(2);
    EXPECT_TRUE(CORVUtilityFns::getSpumBatchStatus());
    EXPECT_TRUE(CORVUtilityFns::getSpumBatchNewFolderStatus());
    EXPECT_EQ(CORVUtilityFns::getSpumBatchProcessingCount(), 3);
    EXPECT_EQ(CORVUtilityFns::getAdaptFLBgModeForSpumBatch(), 2);
    CORVUtilityFns::setSpumBatchStatus(false);
    CORVUtilityFns::setSpumBatchNewFolderStatus(false);
    CORVUtilityFns::setSpumBatchProcessingCount(0);
    CORVUtilityFns::setAdaptFLBgModeForSpumBatch(0);
}

} // namespace

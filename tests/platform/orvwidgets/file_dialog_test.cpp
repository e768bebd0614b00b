// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVColorDialog.h"
#include "host/CORVErrorHandler.h"
#include "host/CORVFileDialog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVPreference.h"
#include "host/CORVSettings.h"
#include "host/CORVUtilityFns.h"
#include "platform/orvutils/MessageResponder.h"
#include "platform/orvwidgets/chosenFolder.h"
#include "platform/orvwidgets/fileSuffix.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct SuffixCase
{
    const char* filter;
    const char* suffix;
};

class FirstSuffixTest : public ::testing::TestWithParam<SuffixCase>
{
};

TEST_P(FirstSuffixTest, IsThatOfTheFirstPattern)
{
    EXPECT_EQ(orv::firstSuffix(GetParam().filter).toStdString(), GetParam().suffix);
}

INSTANTIATE_TEST_SUITE_P(Table, FirstSuffixTest,
                         ::testing::Values(SuffixCase{"PNG image (*.png *.PNG)", "png"}, SuffixCase{"*.csv", "csv"},
                                           SuffixCase{"DICOM (*.dcm)", "dcm"}, SuffixCase{"Data (old) (*.dat)", "dat"},
                                           SuffixCase{"JPEG (*.jpg;*.jpeg)", "jpg"}, SuffixCase{"All files (*)", ""},
                                           SuffixCase{"Archive (*.tar.gz)", "tar.gz"}, SuffixCase{"Any (*.*)", ""},
                                           SuffixCase{"TIFF (*.tif?)", ""}, SuffixCase{"", ""}));

struct NameCase
{
    const char* path;
    const char* suffix;
    const char* expected;
};

class WithSuffixTest : public ::testing::TestWithParam<NameCase>
{
};

TEST_P(WithSuffixTest, ANameWithoutASuffixGetsOne)
{
    const NameCase& c = GetParam();
    EXPECT_EQ(orv::withSuffix(c.path, c.suffix).toStdString(), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, WithSuffixTest,
    ::testing::Values(NameCase{"/a/map", "png", "/a/map.png"}, NameCase{"/a/map.jpg", "png", "/a/map.jpg"},
                      NameCase{"/a.b/map", "png", "/a.b/map.png"}, NameCase{"/a/map.", "png", "/a/map.png"},
                      NameCase{"/a/.hidden", "png", "/a/.hidden.png"}, NameCase{"/a/map", "", "/a/map"},
                      NameCase{"/a/", "png", "/a/"}, NameCase{"", "png", ""}));

// Answers questions for files with paths in a row, and every box with one button.
class Scripted : public orv::MessageResponder
{
public:
    struct Log
    {
        QVector<orv::FileAnswer> files; // taken from the front; the last one stays
        int button = CORVMessageBox::NoButtonAnswer;
        QColor color;
        QVector<orv::FileRequest> requests;
        QVector<orv::MessageRequest> boxes;
        QVector<orv::ColorRequest> colors;
    };

    explicit Scripted(Log& log) : m_log(log) {}
    int ask(const orv::MessageRequest& request) override
    {
        m_log.boxes.append(request);
        return m_log.button;
    }
    std::optional<orv::FileAnswer> chooseFile(const orv::FileRequest& request) override
    {
        m_log.requests.append(request);
        if (m_log.files.isEmpty()) {
            return std::nullopt;
        }
        return m_log.files.size() == 1 ? m_log.files.first() : m_log.files.takeFirst();
    }
    std::optional<QColor> chooseColor(const orv::ColorRequest& request) override
    {
        m_log.colors.append(request);
        return m_log.color.isValid() ? std::optional<QColor>(m_log.color) : std::nullopt;
    }

private:
    Log& m_log;
};

class FileDialogTest : public ::testing::Test
{
protected:
    FileDialogTest() { m_pBefore = orv::setMessageResponder(std::make_unique<Scripted>(m_log)); }
    ~FileDialogTest() override { orv::setMessageResponder(std::move(m_pBefore)); }

    QString path(const char* pName) const { return m_folder.filePath(QString::fromLatin1(pName)); }
    QString existing(const char* pName) const
    {
        QFile file(path(pName));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return path(pName);
    }

    QTemporaryDir m_folder;
    Scripted::Log m_log;
    std::unique_ptr<orv::MessageResponder> m_pBefore;
};

TEST_F(FileDialogTest, AppendsTheSuffixOfTheFilterInUse)
{
    m_log.files = {{path("map"), "JPEG Image (*.jpg)"}};
    QString selected = "PNG Image (*.png)";
    const QString filters = "Bitmap Image (*.bmp);;PNG Image (*.png);;JPEG Image (*.jpg)";
    EXPECT_EQ(CORVFileDialog::getSaveFileName(nullptr, "Export Graphics", m_folder.path(), filters, &selected),
              path("map.jpg"));
    EXPECT_EQ(selected, "JPEG Image (*.jpg)");
    ASSERT_EQ(m_log.requests.size(), 1);
    const orv::FileRequest& request = m_log.requests.first();
    EXPECT_EQ(request.m_eKind, orv::FileRequest::SaveFile);
    EXPECT_EQ(request.m_strTitle, "Export Graphics");
    EXPECT_EQ(request.m_strFolder, m_folder.path());
    EXPECT_EQ(request.m_filters.size(), 3);
    EXPECT_EQ(request.m_strSelectedFilter, "PNG Image (*.png)");
}

TEST_F(FileDialogTest, ProposesTheFirstFilterWhenTheWishIsNone)
{
    QString selected = "Nonsense";
    CORVFileDialog::getSaveFileName(nullptr, "t", m_folder.path(), "A (*.a);;B (*.b)", &selected);
    EXPECT_EQ(m_log.requests.first().m_strSelectedFilter, "A (*.a)");
    EXPECT_EQ(selected, "Nonsense");
}

TEST_F(FileDialogTest, BackingOutAnswersNothingAndKeepsTheRecentFolder)
{
    CORVPreference::getSettings()->setRecentFilePath(m_folder.path());
    EXPECT_EQ(CORVFileDialog::getSaveFileName(nullptr, "t", "/", "*.csv"), "");
    EXPECT_EQ(CORVFileDialog::getOpenFileName(nullptr, "t", "/", "*.csv"), "");
    EXPECT_EQ(CORVFileDialog::getExistingDirectory(nullptr, "t", "/"), "");
    EXPECT_EQ(CORVPreference::getSettings()->getRecentFilePath(), m_folder.path());
}

TEST_F(FileDialogTest, StartsWhereSomethingWasSavedOrOpenedLast)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("sub"));
    m_log.files = {{path("sub/a.csv"), "*.csv"}};
    CORVFileDialog::getSaveFileName(nullptr, "t", "/", "*.csv");
    EXPECT_EQ(CORVPreference::getSettings()->getRecentFilePath(), path("sub"));
    CORVFileDialog::getOpenFileName(nullptr, "t", QString(), "*.csv");
    EXPECT_EQ(m_log.requests.last().m_strFolder, path("sub"));
    EXPECT_EQ(m_log.requests.last().m_eKind, orv::FileRequest::OpenFile);
    m_log.files = {{m_folder.path() + "/", QString()}};
    EXPECT_EQ(CORVFileDialog::getExistingDirectory(nullptr, "t", QString()), m_folder.path());
    EXPECT_EQ(m_log.requests.last().m_eKind, orv::FileRequest::Folder);
    EXPECT_EQ(CORVPreference::getSettings()->getRecentFilePath(), m_folder.path());
}

TEST_F(FileDialogTest, AsksBeforeItNamesAFileThatExists)
{
    m_log.files = {{existing("a.csv"), "*.csv"}};
    m_log.button = CORVMessageBox::YesButton;
    EXPECT_EQ(CORVFileDialog::getSaveFileName(nullptr, "t", "/", "*.csv"), path("a.csv"));
    ASSERT_EQ(m_log.boxes.size(), 1);
    EXPECT_EQ(m_log.boxes[0].m_strCaption, CORVUtilityFns::getAppName());
    EXPECT_TRUE(m_log.boxes[0].m_strText.contains(path("a.csv")));
    EXPECT_EQ(m_log.boxes[0].m_nDefault, CORVMessageBox::NoButtonAnswer);
}

TEST_F(FileDialogTest, AsksAboutTheNameWithItsSuffix)
{
    existing("a.csv");
    m_log.files = {{path("a"), "*.csv"}};
    m_log.button = CORVMessageBox::YesButton;
    EXPECT_EQ(CORVFileDialog::getSaveFileName(nullptr, "t", "/", "*.csv"), path("a.csv"));
    EXPECT_EQ(m_log.boxes.size(), 1);
}

TEST_F(FileDialogTest, AfterANoAsksForAnotherName)
{
    m_log.files = {{existing("a.csv"), "*.csv"}, {path("b.csv"), "*.csv"}};
    EXPECT_EQ(CORVFileDialog::getSaveFileName(nullptr, "t", "/", "*.csv"), path("b.csv"));
    ASSERT_EQ(m_log.requests.size(), 2);
    EXPECT_EQ(m_log.requests[1].m_strFolder, path("a.csv"));
}

TEST_F(FileDialogTest, ANameThatIsGivenAgainAfterANoEndsTheQuestion)
{
    m_log.files = {{existing("a.csv"), "*.csv"}};
    EXPECT_EQ(CORVFileDialog::getSaveFileName(nullptr, "t", "/", "*.csv"), "");
    EXPECT_EQ(m_log.boxes.size(), 1);
}

TEST_F(FileDialogTest, LeavesTheQuestionToACallerWhoAsks)
{
    m_log.files = {{existing("a.csv"), "*.csv"}};
    EXPECT_EQ(CORVFileDialog::getSaveFileName(nullptr, "t", "/", "*.csv", nullptr, true), path("a.csv"));
    EXPECT_TRUE(m_log.boxes.isEmpty());
}

TEST_F(FileDialogTest, AColorIsAskedForByTheResponder)
{
    EXPECT_FALSE(CORVColorDialog::getColor(Qt::red, nullptr, "Select Solid Color").isValid());
    m_log.color = QColor("gold");
    EXPECT_EQ(CORVColorDialog::getColor(Qt::red, nullptr, "Select Solid Color"), QColor("gold"));
    EXPECT_EQ(m_log.colors.last().m_strTitle, "Select Solid Color");
    EXPECT_EQ(m_log.colors.last().m_initial, QColor(Qt::red));
}

TEST_F(FileDialogTest, AnErrorOfAFolderNamesIt)
{
    CORVErrorHandler::errorMessage(nullptr, 64, "/some/where");
    ASSERT_EQ(m_log.boxes.size(), 1);
    EXPECT_EQ(m_log.boxes[0].m_eKind, orv::MessageRequest::Error);
    EXPECT_EQ(m_log.boxes[0].m_strCaption, CORVUtilityFns::getAppName());
    EXPECT_EQ(m_log.boxes[0].m_strText, "The folder \"/some/where\" cannot be written to. Choose another folder or "
                                        "change its permissions.");
}

TEST_F(FileDialogTest, AnErrorWithoutAFolderIsOfTheOneThatWasChosenLast)
{
    m_log.files = {{path("a.csv"), "*.csv"}};
    CORVFileDialog::getSaveFileName(nullptr, "t", "/", "*.csv");
    CORVErrorHandler::errorMessage(nullptr, 64, QString());
    EXPECT_TRUE(m_log.boxes.last().m_strText.contains('"' + m_folder.path() + '"'));
    orv::setLastChosenFolder(QString());
    CORVErrorHandler::errorMessage(nullptr, 64, QString());
    EXPECT_TRUE(m_log.boxes.last().m_strText.startsWith("The folder cannot be written to."));
}

TEST_F(FileDialogTest, OtherErrorsTellTheirNumber)
{
    CORVErrorHandler::errorMessage(nullptr, 7, "the lamp");
    EXPECT_EQ(m_log.boxes.last().m_strText, "The operation failed with error 7.\nthe lamp");
}

} // namespace

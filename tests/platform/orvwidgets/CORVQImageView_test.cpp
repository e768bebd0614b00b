// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures with labels, as they are seen and as they are saved.
#include "host/CORVQImageView.h"

#include "host/CORVImageExporter.h"
#include "platform/orvutils/MessageResponder.h"
#include "support/screen.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace {

const QColor kPaper(40, 40, 40);

QImage plainPicture(int nWidth, int nHeight)
{
    QImage picture(nWidth, nHeight, QImage::Format_RGB32);
    picture.fill(kPaper);
    return picture;
}

// What is drawn over the plain picture; a share of all pixels.
double inkShare(const QImage& picture)
{
    int nInk = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            nInk += picture.pixelColor(x, y) != kPaper ? 1 : 0;
        }
    }
    return nInk / (1.0 * picture.width() * picture.height());
}

// Answers with a file, and keeps what was asked.
class FileAnswers : public orv::MessageResponder
{
public:
    FileAnswers(const QString& strFile, QStringList& asked) : m_strFile(strFile), m_asked(asked) {}
    int ask(const orv::MessageRequest& request) override
    {
        m_asked << request.m_strText;
        return 0;
    }
    std::optional<orv::FileAnswer> chooseFile(const orv::FileRequest& request) override
    {
        m_asked << request.m_strTitle;
        return orv::FileAnswer{m_strFile, request.m_filters.value(0)};
    }

private:
    QString m_strFile;
    QStringList& m_asked;
};

class LabelledPictureTest : public ::testing::Test
{
protected:
    LabelledPictureTest() { m_view.setLabelList({{"Cy5.5", QColor("red")}, {"TissueAF", QColor("blue")}}); }

    // The entries of the context menu, by text.
    QMap<QString, QAction*> menuEntries()
    {
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(10, 10), m_view.mapToGlobal(QPoint(10, 10)));
        QApplication::sendEvent(&m_view, &event);
        QMap<QString, QAction*> entries;
        if (const auto* pMenu = m_view.findChild<QMenu*>()) {
            for (QAction* pAction : pMenu->actions()) {
                entries[pAction->text()] = pAction;
            }
        }
        return entries;
    }

    CORVQImageView m_view;
};

TEST_F(LabelledPictureTest, HasTheSizeOfThePictureAndItsLabelsAtTheUpperLeft)
{
    m_view.setImage(plainPicture(640, 480));
    const QImage labelled = m_view.labelledPicture();
    ASSERT_EQ(labelled.size(), QSize(640, 480));
    screen::keep(labelled, "labelled_picture");
    EXPECT_GT(inkShare(labelled.copy(0, 0, 150, 60)), 0.1);
    EXPECT_EQ(inkShare(labelled.copy(0, 60, 640, 420)), 0.0);
    EXPECT_EQ(m_view.picture(), plainPicture(640, 480)) << "which stays as it is";
}

TEST_F(LabelledPictureTest, LettersGrowWithThePicture)
{
    m_view.setImage(plainPicture(640, 480));
    const double share = inkShare(m_view.labelledPicture());
    m_view.setImage(plainPicture(1920, 1440));
    const QImage large = m_view.labelledPicture();
    ASSERT_EQ(large.size(), QSize(1920, 1440));
    screen::keep(large, "labelled_picture_large");
    EXPECT_NEAR(inkShare(large), share, 0.1 * share);
}

TEST_F(LabelledPictureTest, ASmallPictureIsEnlargedByAWholeNumber)
{
    QImage small = plainPicture(60, 100);
    small.setPixelColor(59, 99, Qt::green);
    m_view.setImage(small);
    const QImage labelled = m_view.labelledPicture();
    ASSERT_EQ(labelled.size(), QSize(480, 800));
    EXPECT_EQ(labelled.pixelColor(472, 792), QColor(Qt::green));
    EXPECT_EQ(labelled.pixelColor(471, 792), kPaper);
    EXPECT_GT(inkShare(labelled.copy(0, 0, 150, 60)), 0.1);
}

TEST_F(LabelledPictureTest, APictureLikeALineStaysOfAReasonableSize)
{
    m_view.setImage(plainPicture(5000, 1));
    EXPECT_EQ(m_view.labelledPicture().size(), QSize(5000, 1));
    m_view.setImage(plainPicture(1, 2000));
    EXPECT_EQ(m_view.labelledPicture().size(), QSize(2, 4000));
    m_view.setImage(QImage());
    EXPECT_TRUE(m_view.labelledPicture().isNull());
}

TEST_F(LabelledPictureTest, ALongLabelEndsBeforeTheEdge)
{
    m_view.setLabelList({{QString(300, 'W'), QColor("yellow")}});
    m_view.setImage(plainPicture(640, 480));
    const QImage labelled = m_view.labelledPicture();
    EXPECT_GT(inkShare(labelled.copy(560, 0, 60, 40)), 0.1);
    EXPECT_EQ(inkShare(labelled.copy(637, 0, 3, 480)), 0.0);
}

TEST_F(LabelledPictureTest, IsSavedFromTheMenu)
{
    m_view.setImage(plainPicture(640, 480));
    screen::show(m_view);
    const QTemporaryDir folder;
    const QString strFile = folder.filePath("labelled.png");
    QStringList asked;
    auto before = orv::setMessageResponder(std::make_unique<FileAnswers>(strFile, asked));
    const auto entries = menuEntries();
    ASSERT_TRUE(entries.contains("Save Picture with &Labels ..."));
    entries["Save Picture with &Labels ..."]->trigger();
    orv::setMessageResponder(std::move(before));
    EXPECT_EQ(asked, QStringList{"Save Picture"});
    EXPECT_EQ(QImage(strFile).convertToFormat(QImage::Format_RGB32), m_view.labelledPicture());
}

TEST_F(LabelledPictureTest, WithoutLabelsOrAPictureThereIsNothingToSave)
{
    screen::show(m_view);
    const auto entries = menuEntries();
    ASSERT_TRUE(entries.contains("Save Picture with &Labels ..."));
    EXPECT_FALSE(entries["Save Picture with &Labels ..."]->isEnabled());
    delete m_view.findChild<QMenu*>();
    m_view.setImage(plainPicture(64, 48));
    m_view.setLabelList({});
    EXPECT_FALSE(menuEntries().contains("Save Picture with &Labels ..."));
}

// Every format that other programs may want; the suffix names it, and the one of last time is offered first.
TEST_F(LabelledPictureTest, IsSavedInEveryFormatOfTheExporter)
{
    m_view.setImage(plainPicture(64, 48));
    const QTemporaryDir folder;
    for (const QString& suffix : CORVImageExporter::suffixes()) {
        const QString strFile = folder.filePath("picture." + suffix);
        QStringList asked;
        auto before = orv::setMessageResponder(std::make_unique<FileAnswers>(strFile, asked));
        m_view.savePicture();
        orv::setMessageResponder(std::move(before));
        EXPECT_EQ(asked, QStringList{"Save Picture"}) << qPrintable(suffix);
        EXPECT_GT(QFileInfo(strFile).size(), 100) << qPrintable(suffix);
    }
    EXPECT_EQ(QImage(folder.filePath("picture.bmp")).size(), QSize(64, 48));
    QFile dicom(folder.filePath("picture.dcm"));
    ASSERT_TRUE(dicom.open(QIODevice::ReadOnly));
    EXPECT_EQ(dicom.read(132).right(4), "DICM");
}

// A picture that cannot be written is told with its reason.
TEST_F(LabelledPictureTest, AFailureIsTold)
{
    m_view.setImage(plainPicture(64, 48));
    const QTemporaryDir folder;
    QStringList asked;
    auto before = orv::setMessageResponder(std::make_unique<FileAnswers>(folder.filePath("none/a.png"), asked));
    m_view.savePicture();
    m_view.saveLabelledPicture();
    orv::setMessageResponder(std::move(before));
    ASSERT_EQ(asked.size(), 4);
    for (const int i : {1, 3}) {
        EXPECT_TRUE(asked[i].contains("none/a.png")) << qPrintable(asked[i]);
    }
}

} // namespace

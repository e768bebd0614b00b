// SPDX-License-Identifier: GPL-3.0-or-later
// Export of what a window shows: the question, the formats, what is told.
#include "CompositeFixture.h"
#include "ConsoleFixture.h"
#include "Exports.h"

#include "host/CORVPreference.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "host/CORVSettings.h"
#include "windows/graphicsFormats.h"
#include "windows/widgets/exportGraphics.h"

#include <QToolButton>

namespace {

QImage twoColours()
{
    QImage picture(20, 10, QImage::Format_RGB32);
    picture.fill(Qt::red);
    picture.setPixelColor(19, 9, Qt::blue);
    return picture;
}

class ExportGraphicsTest : public ::testing::Test
{
protected:
    Exports m_exports;
    Talk& m_talk = m_exports.m_talk;
};

TEST_F(ExportGraphicsTest, AsksWithTheFormatsAndWritesTheFile)
{
    m_talk.files << m_exports.path("picture.png");
    EXPECT_TRUE(exportGraphics(nullptr, twoColours()));
    EXPECT_EQ(m_talk.questions, QStringList{"Export Graphics"});
    EXPECT_EQ(m_talk.filters, graphicsFormats::filters());
    EXPECT_EQ(QImage(m_exports.path("picture.png")), twoColours());
}

TEST_F(ExportGraphicsTest, TheFilterInUseGivesTheSuffix)
{
    for (const QString& strFilter : graphicsFormats::filters()) {
        m_talk.files << m_exports.path("picture");
        m_talk.inUse = strFilter;
        EXPECT_TRUE(exportGraphics(nullptr, twoColours())) << qPrintable(strFilter);
    }
    for (const QString& strSuffix : graphicsFormats::suffixes()) {
        EXPECT_FALSE(m_exports.bytes("picture." + strSuffix).isEmpty()) << qPrintable(strSuffix);
    }
}

TEST_F(ExportGraphicsTest, TheFormatThatWasChosenIsOfferedFirstTheNextTime)
{
    m_talk.files << m_exports.path("a.tiff") << m_exports.path("b.jpg");
    exportGraphics(nullptr, twoColours());
    exportGraphics(nullptr, twoColours());
    exportGraphics(nullptr, twoColours());
    EXPECT_EQ(m_talk.proposed,
              QStringList({"Bitmap Image (*.bmp)", "Tagged Image File Format (*.tiff)", "JPEG Image (*.jpg)"}));
}

TEST_F(ExportGraphicsTest, WhatFollowsTheFirstDotIsRemembered)
{
    m_talk.files << m_exports.path("mouse 1.5.png");
    EXPECT_TRUE(exportGraphics(nullptr, twoColours()));
    EXPECT_EQ(CORVPreference::usersPreferredFormat(), "5.png");
}

TEST_F(ExportGraphicsTest, TheNextQuestionStartsInTheSameFolder)
{
    m_talk.files << m_exports.path("a.png");
    exportGraphics(nullptr, twoColours());
    exportGraphics(nullptr, twoColours());
    EXPECT_EQ(m_talk.folders.last(), QFileInfo(m_exports.path("a.png")).absolutePath());
}

TEST_F(ExportGraphicsTest, WhoBacksOutWritesNothing)
{
    EXPECT_FALSE(exportGraphics(nullptr, twoColours()));
    EXPECT_EQ(m_talk.questions.size(), 1);
    EXPECT_EQ(CORVPreference::usersPreferredFormat(), "");
    EXPECT_TRUE(m_exports.isEmpty());
}

TEST_F(ExportGraphicsTest, AFileThatExistsIsReplacedOnlyAfterAYes)
{
    m_talk.files << m_exports.path("a.bmp") << m_exports.path("a.bmp");
    EXPECT_TRUE(exportGraphics(nullptr, twoColours()));
    const QByteArray before = m_exports.bytes("a.bmp");
    m_talk.buttons << CORVMessageBox::NoButtonAnswer;
    EXPECT_FALSE(exportGraphics(nullptr, twoColours().scaled(3, 3)));
    EXPECT_EQ(m_exports.bytes("a.bmp"), before);
    m_talk.files << m_exports.path("a.bmp");
    m_talk.buttons << CORVMessageBox::YesButton;
    EXPECT_TRUE(exportGraphics(nullptr, twoColours().scaled(3, 3)));
    EXPECT_EQ(QImage(m_exports.path("a.bmp")).size(), QSize(3, 3));
}

TEST_F(ExportGraphicsTest, AFailureIsToldWithItsReason)
{
    m_talk.files << m_exports.path("none/a.png");
    EXPECT_FALSE(exportGraphics(nullptr, twoColours()));
    ASSERT_EQ(m_talk.questions.size(), 2);
    EXPECT_EQ(m_talk.questions[1], m_exports.path("none/a.png") + ": cannot be written: No such file or directory");
}

TEST_F(ExportGraphicsTest, AnUnknownSuffixIsToldWithThoseThatAreKnown)
{
    m_talk.files << m_exports.path("a.gif");
    EXPECT_FALSE(exportGraphics(nullptr, twoColours()));
    ASSERT_EQ(m_talk.questions.size(), 2);
    EXPECT_TRUE(m_talk.questions[1].endsWith(
        "Give the name one of these endings: bmp, jpg, jpeg, png, wmf, emf, eps, tiff, tif, dcm"))
        << qPrintable(m_talk.questions[1]);
    EXPECT_TRUE(m_exports.isEmpty());
}

TEST_F(ExportGraphicsTest, WithoutAPictureNothingIsAsked)
{
    EXPECT_FALSE(exportGraphics(nullptr, QImage()));
    EXPECT_EQ(m_talk.questions, QStringList{"There is no picture to export."});
}

TEST_F(ExportGraphicsTest, ADicomFileTellsTheSubjectOfTheSequenceInWhoseWindowItWasMade)
{
    CORVSequenceDataset sequence;
    auto* pDataset = new CORVDataset;
    CPLSection number("ClickNumber");
    number.addKeyValue("ClickNumber", "EXPORT-1");
    pDataset->clickInfo.addSection(&number);
    CPLSection luminescent("luminescent image");
    luminescent.addKeyValue("Subject Type", "Mouse");
    pDataset->clickInfo.addSection(&luminescent);
    CPLSection input("User Input");
    input.addKeyValue("Animal Number", "4711");
    pDataset->clickInfo.addSection(&input);
    ASSERT_TRUE(sequence.addDataset(pDataset));
    CORVSequenceWindow window(&sequence);
    QWidget tab;
    QWidget inner(&tab);
    window.addTabWidget(&tab, nullptr, nullptr, QIcon(), "Composite", -1, true);
    m_talk.files << m_exports.path("a.DCM") << m_exports.path("b.dcm");
    EXPECT_TRUE(exportGraphics(&inner, twoColours()));
    EXPECT_TRUE(m_exports.bytes("a.DCM").contains("Mouse 4711"));
    EXPECT_TRUE(exportGraphics(nullptr, twoColours()));
    EXPECT_FALSE(m_exports.bytes("b.dcm").contains("4711")) << "of no sequence";
    window.removeTabWidget("Composite");
}

// Deletes a widget while the question is open.
class Deleting : public TalkingResponder
{
public:
    Deleting(Talk& talk, QWidget* pWidget) : TalkingResponder(talk), m_pWidget(pWidget) {}
    std::optional<orv::FileAnswer> chooseFile(const orv::FileRequest& request) override
    {
        delete m_pWidget;
        return TalkingResponder::chooseFile(request);
    }

private:
    QPointer<QWidget> m_pWidget;
};

TEST_F(ExportGraphicsTest, TheWindowMayGoWhileTheQuestionIsOpen)
{
    auto* pWindow = new QWidget;
    m_talk.files << m_exports.path("none/a.dcm");
    auto pBefore = orv::setMessageResponder(std::make_unique<Deleting>(m_talk, pWindow));
    EXPECT_FALSE(exportGraphics(pWindow, twoColours()));
    EXPECT_EQ(m_talk.questions.size(), 2);
    orv::setMessageResponder(std::move(pBefore));
}

using CompositeExportTest = CompositeWindowTest;

TEST_F(CompositeExportTest, TheButtonExportsThePictureWithoutLabels)
{
    Exports exports;
    fillAndShow();
    exports.m_talk.files << exports.path("composite.bmp") << exports.path("composite.png");
    m_window.m_pToolbarFrame->show();
    m_window.m_pExportGraphicButton->click();
    m_window.m_pExportGraphicButton->click();
    EXPECT_EQ(exports.m_talk.questions, QStringList({"Export Graphics", "Export Graphics"}));
    EXPECT_EQ(QImage(exports.path("composite.png")).convertToFormat(QImage::Format_RGB32),
              m_window.getCompositeImage());
    EXPECT_EQ(QImage(exports.path("composite.bmp")).convertToFormat(QImage::Format_RGB32),
              m_window.getCompositeImage());
}

TEST_F(CompositeExportTest, WithoutMapsThereIsNothingToExport)
{
    const Exports exports;
    m_window.m_pExportGraphicButton->click();
    EXPECT_EQ(exports.m_talk.questions, QStringList{"There is no picture to export."});
}

using ConsoleExportTest = ConsoleTest;

TEST_F(ConsoleExportTest, TheButtonExportsTheWindowAsItIs)
{
    Exports exports;
    openCube();
    QImage picture;
    m_pConsole->getViewImage(&picture);
    exports.m_talk.files << exports.path("console.png");
    click(m_pConsole->m_pExportGraphicsButton);
    QImage exported(exports.path("console.png"));
    exported.setDevicePixelRatio(picture.devicePixelRatio());
    EXPECT_EQ(exports.m_talk.questions, QStringList{"Export Graphics"});
    EXPECT_EQ(exported.size(), picture.size());
    screen::keep(exported, "exported_console");
    // What the views show is in it: the colour of the cube's overview.
    const QPoint inView =
        m_pConsole->m_pImageCubeView->mapTo(m_pConsole, m_pConsole->m_pImageCubeView->rect().center());
    EXPECT_EQ(exported.pixelColor(inView * picture.devicePixelRatio()), QColor(30, 60, 120));
}

TEST_F(ConsoleExportTest, UnmixedImagesAreExportedWithLabelsAndColorBar)
{
    Exports exports;
    openCube();
    std::vector<std::unique_ptr<CILImage>> images;
    for (const char* pColor : {"red", "lime", "blue"}) {
        QImage picture(40, 30, QImage::Format_RGB32);
        picture.fill(QColor(pColor));
        images.push_back(std::make_unique<CILImage>());
        images.back()->setRGBImage(picture);
        m_pConsole->addUnmixedImage(images.back().get(), QStringLiteral("Map of ") + pColor);
    }
    m_pConsole->selectUnmixedTab(false);
    m_pConsole->setColorBar(2, false, 1, 1.2e6, 3.4e8, true, false);
    m_pConsole->setHideColorBar(false);
    QApplication::processEvents();
    exports.m_talk.files << exports.path("maps.eps") << exports.path("maps.png");
    click(m_pConsole->m_pExportGraphicsButton);
    click(m_pConsole->m_pExportGraphicsButton);
    QImage exported(exports.path("maps.png"));
    exported.setDevicePixelRatio(m_pConsole->devicePixelRatioF());
    screen::keep(exported, "exported_maps");
    QSet<QRgb> colours;
    for (int y = 0; y < exported.height(); ++y) {
        for (int x = 0; x < exported.width(); ++x) {
            colours.insert(exported.pixel(x, y));
        }
    }
    EXPECT_TRUE(colours.contains(qRgb(255, 0, 0)));
    EXPECT_TRUE(colours.contains(qRgb(0, 255, 0)));
    EXPECT_TRUE(colours.contains(qRgb(0, 0, 255)));
    EXPECT_GT(colours.size(), 256) << "with the colours of the bar";
    const QByteArray box = "%%BoundingBox: 0 0 " + QByteArray::number(exported.width()) + ' ' +
                           QByteArray::number(exported.height()) + '\n';
    EXPECT_TRUE(exports.bytes("maps.eps").contains(box));
    m_pConsole->removeAllUnmixedImages();
}

TEST_F(ConsoleExportTest, EveryFormatIsWrittenFromTheWindow)
{
    Exports exports;
    openCube();
    for (const QString& strSuffix : graphicsFormats::suffixes()) {
        exports.m_talk.files << exports.path("console." + strSuffix);
        click(m_pConsole->m_pExportGraphicsButton);
        EXPECT_FALSE(exports.bytes("console." + strSuffix).isEmpty()) << qPrintable(strSuffix);
    }
    EXPECT_EQ(exports.m_talk.questions.size(), graphicsFormats::suffixes().size());
}

} // namespace

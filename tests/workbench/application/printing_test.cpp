// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures on paper, as another program reads the pages that are written, and as the preview shows them.
#include "workbench/application/printing.h"

#include "support/screen.h"

#include <QDir>
#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <ostream>

namespace {

const QRgb paper = qRgb(255, 255, 255);

struct Sheet
{
    QPageSize::PageSizeId size;
    QPageLayout::Orientation orientation;
    QSize picture;
};

void PrintTo(const Sheet& sheet, std::ostream* pStream)
{
    *pStream << QPageSize::name(sheet.size).toStdString()
             << (sheet.orientation == QPageLayout::Landscape ? " wide" : "") << ", " << sheet.picture.width() << " x "
             << sheet.picture.height();
}

// Blue, with a corner of its own colour in each corner.
QPixmap pictureOf(const QSize& size)
{
    QPixmap picture(size);
    picture.fill(Qt::blue);
    QPainter painter(&picture);
    const QSize corner = size / 5;
    painter.fillRect(QRect(QPoint(), corner), Qt::red);
    painter.fillRect(QRect(QPoint(size.width() - corner.width(), 0), corner), Qt::green);
    painter.fillRect(QRect(QPoint(0, size.height() - corner.height()), corner), Qt::black);
    painter.fillRect(QRect(QPoint(size.width() - corner.width(), size.height() - corner.height()), corner),
                     Qt::magenta);
    return picture;
}

// Whether the colour is one of the picture's: each of its parts all or nothing, but not white.
bool isOfPicture(QRgb color)
{
    const auto extreme = [](int nPart) { return nPart < 40 || nPart > 215; };
    return extreme(qRed(color)) && extreme(qGreen(color)) && extreme(qBlue(color)) &&
           (qRed(color) < 40 || qGreen(color) < 40 || qBlue(color) < 40);
}

template <typename Test>
QRect boundsOf(const QImage& image, const Test& belongs)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (belongs(image.pixel(x, y))) {
                bounds |= QRect(x, y, 1, 1);
            }
        }
    }
    return bounds;
}

// Where the picture lies on the paper, in parts of the paper's sides.
QRectF partOf(const QRect& inner, const QRect& outer)
{
    const double width = outer.width();
    const double height = outer.height();
    return QRectF((inner.x() - outer.x()) / width, (inner.y() - outer.y()) / height, inner.width() / width,
                  inner.height() / height);
}

class PrintedPageTest : public ::testing::TestWithParam<Sheet>
{
protected:
    void setUp(QPrinter& printer) const
    {
        printer.setPageSize(QPageSize(GetParam().size));
        printer.setPageOrientation(GetParam().orientation);
    }
    // The pages of the file, 72 points an inch.
    QList<QImage> pages(const QString& strFile) const
    {
        QProcess reader;
        reader.start(QStringLiteral("gs"), {"-q", "-dNOPAUSE", "-dBATCH", "-dSAFER", "-sDEVICE=png16m", "-r72",
                                            "-sOutputFile=" + m_folder.filePath("page%d.png"), strFile});
        EXPECT_TRUE(reader.waitForFinished(60000));
        EXPECT_EQ(reader.exitCode(), 0) << reader.readAllStandardOutput().constData();
        QList<QImage> all;
        for (const QString& strName : QDir(m_folder.path()).entryList({"page*.png"}, QDir::Files, QDir::Name)) {
            all.append(QImage(m_folder.filePath(strName)));
        }
        return all;
    }
    QImage printed(const QPixmap& picture) const
    {
        QPrinter printer(QPrinter::HighResolution);
        setUp(printer);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(m_folder.filePath("print.pdf"));
        printing::paint(printer, picture);
        const QList<QImage> all = pages(m_folder.filePath("print.pdf"));
        EXPECT_EQ(all.size(), 1);
        return all.isEmpty() ? QImage() : all.first();
    }
    // As it is seen in the dialog, once the user has turned the paper.
    QImage previewed(const QPixmap& picture) const
    {
        QImage seen;
        QTimer::singleShot(0, qApp, [&seen] {
            auto* pDialog = qobject_cast<QPrintPreviewDialog*>(QApplication::activeModalWidget());
            EXPECT_NE(pDialog, nullptr);
            if (pDialog == nullptr) {
                return;
            }
            auto* pView = pDialog->findChild<QPrintPreviewWidget*>();
            if (GetParam().orientation == QPageLayout::Landscape) {
                pView->setLandscapeOrientation();
            } else {
                pView->setPortraitOrientation();
            }
            EXPECT_TRUE(QTest::qWaitForWindowExposed(pDialog));
            QTest::qWait(100); // the page is fitted to the view
            EXPECT_EQ(pView->pageCount(), 1);
            seen = pView->grab().toImage();
            pDialog->reject();
        });
        QPrinter printer(QPrinter::HighResolution);
        setUp(printer);
        printing::preview(nullptr, picture, printer);
        return seen;
    }

    QTemporaryDir m_folder;
};

TEST_P(PrintedPageTest, ThePictureStandsWholeOnOnePage)
{
    const QPixmap picture = pictureOf(GetParam().picture);
    const QImage page = printed(picture);
    ASSERT_FALSE(page.isNull());
    QSize points = QPageSize(GetParam().size).sizePoints();
    points = GetParam().orientation == QPageLayout::Landscape ? points.transposed() : points;
    EXPECT_NEAR(page.width(), points.width(), 1);
    EXPECT_NEAR(page.height(), points.height(), 1);
    const QRect place = boundsOf(page, isOfPicture);
    EXPECT_NEAR(double(place.width()) / place.height(), double(picture.width()) / picture.height(), 0.02);
    // Its corners are there, and paper around it.
    EXPECT_EQ(page.pixel(place.topLeft() + QPoint(3, 3)), QColor(Qt::red).rgb());
    EXPECT_EQ(page.pixel(place.topRight() + QPoint(-3, 3)), QColor(Qt::green).rgb());
    EXPECT_EQ(page.pixel(place.bottomLeft() + QPoint(3, -3)), QColor(Qt::black).rgb());
    EXPECT_EQ(page.pixel(place.bottomRight() + QPoint(-3, -3)), QColor(Qt::magenta).rgb());
    EXPECT_TRUE(page.rect().adjusted(5, 5, -5, -5).contains(place));
    // As large as the page allows: one of the sides is full but for the margins.
    EXPECT_TRUE(place.width() > page.width() * 0.85 || place.height() > page.height() * 0.85);
}

TEST_P(PrintedPageTest, ThePreviewShowsThePageAsItIsPrinted)
{
    const QPixmap picture = pictureOf(GetParam().picture);
    const QImage page = printed(picture);
    const QImage seen = previewed(picture);
    ASSERT_FALSE(page.isNull());
    ASSERT_FALSE(seen.isNull());
    const QRect sheet = boundsOf(seen, [](QRgb color) { return (color | 0xff000000U) == paper; });
    const QRectF shown = partOf(boundsOf(seen.copy(sheet), isOfPicture), QRect(QPoint(), sheet.size()));
    const QRectF written = partOf(boundsOf(page, isOfPicture), page.rect());
    // Three pixels of a preview of some 300.
    EXPECT_NEAR(shown.left(), written.left(), 0.01);
    EXPECT_NEAR(shown.top(), written.top(), 0.01);
    EXPECT_NEAR(shown.width(), written.width(), 0.015);
    EXPECT_NEAR(shown.height(), written.height(), 0.015);
}

constexpr QPageLayout::Orientation high = QPageLayout::Portrait;
constexpr QPageLayout::Orientation wide = QPageLayout::Landscape;

INSTANTIATE_TEST_SUITE_P(
    Sheets, PrintedPageTest,
    ::testing::Values(Sheet{QPageSize::A4, high, {700, 450}}, Sheet{QPageSize::A4, wide, {700, 450}},
                      Sheet{QPageSize::A4, high, {300, 900}}, Sheet{QPageSize::A4, wide, {300, 900}},
                      Sheet{QPageSize::Letter, high, {700, 450}}, Sheet{QPageSize::Letter, wide, {700, 450}},
                      Sheet{QPageSize::Letter, high, {300, 900}}, Sheet{QPageSize::Letter, wide, {300, 900}}));

// On a screen with several pixels a point.
TEST(PrintingTest, APictureOfAFineScreenIsNoSmaller)
{
    QTemporaryDir folder;
    QPixmap picture = pictureOf({600, 400});
    QByteArray pages[2];
    for (const int nRatio : {1, 2}) {
        picture.setDevicePixelRatio(nRatio);
        const QRectF page(0.0, 0.0, 1000.0, 1400.0);
        EXPECT_EQ(printing::placeOnPage(picture.size(), page).width(), 1000.0);
        QPrinter printer;
        printer.setOutputFormat(QPrinter::PdfFormat);
        const QString file = folder.filePath(QString::number(nRatio));
        printer.setOutputFileName(file);
        printing::paint(printer, picture);
        QProcess reader;
        reader.start("gs",
                     {"-q", "-dNOPAUSE", "-dBATCH", "-dSAFER", "-sDEVICE=bmp16m", "-r20", "-sOutputFile=-", file});
        EXPECT_TRUE(reader.waitForFinished(60000));
        pages[nRatio - 1] = reader.readAllStandardOutput();
    }
    EXPECT_GT(pages[0].size(), 1000);
    EXPECT_TRUE(pages[0] == pages[1]);
}

} // namespace

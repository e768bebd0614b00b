// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVQImageView.h"

#include "platform/orvwidgets/ScaledPicture.h"
#include "support/pointer.h"
#include "support/screen.h"

#include <QClipboard>
#include <QPainter>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// Four quarters: red, green, blue, white.
QImage quarters(int w, int h)
{
    QImage image(w, h, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.fillRect(0, 0, w / 2, h / 2, Qt::red);
    painter.fillRect(w / 2, 0, w - w / 2, h / 2, Qt::green);
    painter.fillRect(0, h / 2, w / 2, h - h / 2, Qt::blue);
    painter.fillRect(w / 2, h / 2, w - w / 2, h - h / 2, Qt::white);
    return image;
}

QColor colorAt(const QImage& seen, double x, double y)
{
    const double ratio = seen.devicePixelRatio();
    return seen.pixelColor(static_cast<int>(x * ratio), static_cast<int>(y * ratio));
}

void expectQuarters(const QImage& seen)
{
    EXPECT_EQ(colorAt(seen, 100, 100), QColor(Qt::red));
    EXPECT_EQ(colorAt(seen, 300, 100), QColor(Qt::green));
    EXPECT_EQ(colorAt(seen, 100, 200), QColor(Qt::blue));
    EXPECT_EQ(colorAt(seen, 300, 200), QColor(Qt::white));
}

class GLImageViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_view.resize(400, 300);
        m_view.setImage(quarters(80, 40)); // shown at (0, 50), 400 by 200
        screen::show(m_view);
    }

    CORVQImageView m_view;
};

TEST_F(GLImageViewTest, ShowsThePictureFittedOnTheScreen)
{
    expectQuarters(screen::grab(m_view));
    const QImage frame = m_view.grabFramebuffer();
    ASSERT_FALSE(frame.isNull());
    EXPECT_EQ(frame.size(), m_view.size() * m_view.devicePixelRatioF());
}

TEST_F(GLImageViewTest, SharesThePicture)
{
    const QImage picture = quarters(30, 30);
    m_view.setImage(picture);
    EXPECT_EQ(m_view.picture().constBits(), picture.constBits());
}

TEST_F(GLImageViewTest, TheWheelZoomsAboutThePointerAndADoubleClickFits)
{
    const QPointF before = m_view.toPicture({300, 200});
    pointer::wheel(m_view, {300, 200}, 120);
    EXPECT_NEAR(m_view.zoom(), 6.25, 1e-9);
    EXPECT_NEAR(m_view.toPicture({300, 200}).x(), before.x(), 1e-9);
    QTest::mouseDClick(&m_view, Qt::LeftButton);
    EXPECT_TRUE(m_view.isFitted());
}

TEST_F(GLImageViewTest, AMiddleDragPans)
{
    m_view.setZoom(20.0);
    const QPointF before = m_view.pictureRect().topLeft();
    pointer::drag(m_view, {200, 150}, {170, 160}, Qt::MiddleButton);
    EXPECT_EQ(m_view.pictureRect().topLeft() - before, QPointF(-30, 10));
    pointer::move(m_view, {10, 10});
    EXPECT_EQ(m_view.pictureRect().topLeft() - before, QPointF(-30, 10)) << "the drag is over";
}

TEST_F(GLImageViewTest, KeysZoomFitAndPan)
{
    QTest::keyClick(&m_view, Qt::Key_Plus);
    EXPECT_NEAR(m_view.zoom(), 6.25, 1e-9);
    QTest::keyClick(&m_view, Qt::Key_Minus);
    EXPECT_TRUE(m_view.isFitted());
    m_view.setZoom(20.0);
    const double before = m_view.pictureRect().left();
    QTest::keyClick(&m_view, Qt::Key_Right);
    EXPECT_LT(m_view.pictureRect().left(), before);
    QTest::keyClick(&m_view, Qt::Key_0);
    EXPECT_TRUE(m_view.isFitted());
}

TEST_F(GLImageViewTest, KeepsTheZoomAcrossPicturesOfOneSize)
{
    m_view.setZoom(20.0);
    m_view.setImage(quarters(80, 40));
    EXPECT_NEAR(m_view.zoom(), 20.0, 1e-9);
    m_view.setImage(quarters(40, 80));
    EXPECT_TRUE(m_view.isFitted());
}

TEST_F(GLImageViewTest, TellsThePixelUnderThePointer)
{
    QSignalSpy pixel(&m_view, &GLImageView::pixelUnderPointer);
    pointer::move(m_view, {2, 52});
    pointer::move(m_view, {397, 247});
    pointer::move(m_view, {397, 20});
    ASSERT_EQ(pixel.count(), 3);
    EXPECT_EQ(pixel.at(0), (QList<QVariant>{0, 0}));
    EXPECT_EQ(pixel.at(1), (QList<QVariant>{79, 39}));
    EXPECT_EQ(pixel.at(2), (QList<QVariant>{-1, -1}));
}

TEST_F(GLImageViewTest, CopiesThePictureAtItsOwnSize)
{
    m_view.copyPicture();
    EXPECT_EQ(QApplication::clipboard()->image().size(), QSize(80, 40));
}

TEST_F(GLImageViewTest, LabelsAreLegibleInAnyColourAndOneLineEach)
{
    QImage black(80, 40, QImage::Format_RGB32);
    black.fill(Qt::black);
    m_view.setImage(black);
    m_view.setLabelList({{"black\nin one line", Qt::black},
                         {"gold", QColor("gold")},
                         {QString(300, 'M'), QColor("white")},
                         {"<b>plain</b>", QColor("lime")}});
    const QImage seen = screen::grab(m_view);
    screen::keep(seen, "labels");
    // Rows of the first label's height on the black of the picture would be all black without an outline.
    m_view.setLabelList({{"MMMM", Qt::black}});
    m_view.setZoom(10.0); // the picture lies under the label
    const QImage dark = screen::grab(m_view);
    int light = 0;
    for (int y = 6; y < 20; ++y) {
        for (int x = 6; x < 40; ++x) {
            light += colorAt(dark, x, y).lightness() > 128 ? 1 : 0;
        }
    }
    EXPECT_GT(light, 40);
}

TEST_F(GLImageViewTest, SurvivesMovesBetweenTabsAndWindows)
{
    QTabWidget tabs;
    tabs.resize(500, 400);
    screen::show(tabs);
    auto* pView = new CORVQImageView;
    pView->setImage(quarters(80, 40));
    for (int i = 0; i < 10; ++i) {
        tabs.addTab(pView, "view");
        tabs.setCurrentWidget(pView);
        pView->show();
        QApplication::processEvents();
        tabs.removeTab(0);
        pView->setParent(nullptr);
        pView->resize(400, 300);
        screen::show(*pView);
    }
    expectQuarters(screen::grab(*pView));
    delete pView;
}

TEST(GLImageViewHiddenTest, RendersItsPictureWithoutOpenGLAndWithoutAWindow)
{
    CORVQImageView view;
    view.resize(400, 300);
    view.setImage(quarters(80, 40));
    const QImage picture = view.renderImage();
    EXPECT_EQ(picture.size(), QSize(400, 300) * view.devicePixelRatioF());
    EXPECT_EQ(picture.devicePixelRatio(), view.devicePixelRatioF());
    expectQuarters(picture);
}

TEST(GLImageViewHiddenTest, IsShownWithoutOpenGLAndHasNoFramebuffer)
{
    if (QGuiApplication::platformName() != "offscreen") {
        GTEST_SKIP() << "this platform has OpenGL; the offscreen run of this program checks it";
    }
    CORVQImageView view;
    view.resize(400, 300);
    view.setImage(quarters(80, 40));
    view.show();
    QApplication::processEvents();
    EXPECT_TRUE(view.grabFramebuffer().isNull());
    pointer::wheel(view, {100, 100}, 240);
    view.grab();
    view.resize(300, 300);
    QApplication::processEvents();
    EXPECT_FALSE(view.renderImage().isNull());
}

TEST(ScaledPictureTest, KeepsAReducedCopyWhileItIsDrawnMuchSmaller)
{
    orvwidgets::ScaledPicture scaled;
    scaled.setPicture(quarters(1000, 1000));
    QImage page(400, 400, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&page);
    scaled.draw(painter, QRectF(0, 0, 100, 100), true);
    const qint64 key = scaled.reduced().cacheKey();
    EXPECT_EQ(scaled.reduced().size(), QSize(100, 100));
    scaled.draw(painter, QRectF(200, 200, 100, 100), true);
    EXPECT_EQ(scaled.reduced().cacheKey(), key) << "made once";
    EXPECT_EQ(page.pixelColor(225, 225), QColor(Qt::red));
    EXPECT_EQ(page.pixelColor(275, 275), QColor(Qt::white));
    scaled.setPicture(quarters(1000, 1000));
    EXPECT_TRUE(scaled.reduced().isNull());
    scaled.draw(painter, QRectF(0, 0, 900, 900), true);
    EXPECT_TRUE(scaled.reduced().isNull()) << "nearly its own size";
}

TEST(ScaledPictureTest, AReductionTakesMeans)
{
    QImage lines(1000, 1000, QImage::Format_RGB32);
    for (int y = 0; y < 1000; ++y) {
        for (int x = 0; x < 1000; ++x) {
            lines.setPixel(x, y, x % 10 == 0 ? 0xffffffffU : 0xff000000U);
        }
    }
    orvwidgets::ScaledPicture scaled;
    scaled.setPicture(lines);
    QImage page(100, 100, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&page);
    scaled.draw(painter, QRectF(0, 0, 100, 100), true);
    for (int x = 5; x < 95; ++x) {
        EXPECT_NEAR(page.pixelColor(x, 50).red(), 25, 4);
    }
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CILImage.h"
#include "host/CORVMultiImageView.h"
#include "host/CORVPreference.h"
#include "host/CORVSettings.h"
#include "host/CORVTextTag.h"
#include "host/S3DViewSettings.h"

#include "platform/orvwidgets/TilePicture.h"
#include "platform/orvwidgets/barTicks.h"
#include "support/pointer.h"
#include "support/screen.h"

#include <QHelpEvent>
#include <QOpenGLContext>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

namespace {

// An image that shows one colour.
CILImage plain(const QColor& color, int w = 64, int h = 64)
{
    QImage picture(w, h, QImage::Format_ARGB32);
    picture.fill(color);
    CILImage image;
    image.setRGBImage(picture);
    return image;
}

QColor colorAt(const QImage& seen, const QPointF& at)
{
    return seen.pixelColor((at * seen.devicePixelRatio()).toPoint());
}

class MultiImageViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_view.resize(600, 400);
        add({"red", "green", "blue", "gold", "magenta"});
    }
    // A tile in each colour, labelled by it.
    void add(const QStringList& colors)
    {
        for (const QString& color : colors) {
            m_view.addImage(keep(plain(QColor(color))), false, color, 1);
        }
    }
    // An image that outlives the view.
    CILImage* keep(CILImage image)
    {
        m_images.push_back(std::make_unique<CILImage>(std::move(image)));
        return m_images.back().get();
    }

    std::vector<std::unique_ptr<CILImage>> m_images;
    CORVMultiImageView m_view;
};

TEST_F(MultiImageViewTest, ShowsTheTilesInOrder)
{
    m_view.m_bShowLabels = false;
    screen::show(m_view);
    const QImage seen = screen::grab(m_view);
    EXPECT_EQ(m_view.getImageNumber(), 5);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(colorAt(seen, m_view.imageRect(i).center()), QColor(m_view.imageLabel(i))) << i;
    }
    EXPECT_LT(m_view.imageRect(0).right(), m_view.imageRect(1).left());
    EXPECT_LT(m_view.imageRect(0).bottom(), m_view.imageRect(3).top());
    EXPECT_NEAR(m_view.imageRect(0).width(), m_view.imageRect(4).width(), 1e-9);
}

TEST_F(MultiImageViewTest, FindsTheTileUnderThePointer)
{
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(m_view.imageAt(m_view.imageRect(i).center()), i);
    }
    EXPECT_EQ(m_view.imageAt(m_view.imageRect(0).topLeft() - QPointF(1, 1)), -1);
    EXPECT_EQ(m_view.imageAt({-5, 10}), -1);
    m_view.removeAllImages();
    EXPECT_EQ(m_view.imageAt({300, 200}), -1);
}

TEST_F(MultiImageViewTest, SeveralSpotsTakeARowEach)
{
    m_view.removeAllImages();
    for (const char* label : {"A_001", "B_001", "Composite_001", "A_002", "B_002", "Composite_002"}) {
        m_view.addImage(keep(plain(Qt::red)), false, label, 1);
    }
    EXPECT_EQ(m_view.imageRect(2).top(), m_view.imageRect(0).top());
    EXPECT_EQ(m_view.imageRect(3).left(), m_view.imageRect(0).left());
}

TEST_F(MultiImageViewTest, RowsOfManySpotsAreScrolled)
{
    m_view.removeAllImages();
    for (int spot = 1; spot <= 25; ++spot) {
        for (const char* color : {"red", "green", "blue"}) {
            m_view.addImage(keep(plain(QColor(color))), false, QString("%1_%2").arg(color).arg(spot, 3, 10, QChar('0')),
                            1);
        }
    }
    EXPECT_GE(m_view.imageRect(0).width(), 90.0) << "four rows are seen at once";
    EXPECT_GE(m_view.imageRect(0).top(), 0.0);
    EXPECT_GT(m_view.imageRect(74).top(), 400.0);
    const double zoom = m_view.zoom();
    for (int i = 0; i < 100; ++i) {
        pointer::wheel(m_view, {300, 200}, -120);
    }
    EXPECT_EQ(m_view.zoom(), zoom);
    EXPECT_LE(m_view.imageRect(74).bottom(), 400.0);
    pointer::wheel(m_view, {300, 200}, 120, Qt::ControlModifier);
    EXPECT_GT(m_view.zoom(), zoom);
    QImage all;
    m_view.fit();
    screen::show(m_view);
    pointer::wheel(m_view, {300, 200}, -240);
    screen::keep(screen::grab(m_view), "spots");
    ASSERT_TRUE(m_view.getImageByRender(all, true));
    // 25 rows in 400 view pixels: blue in the last column, near the lower edge.
    EXPECT_EQ(colorAt(all, {300 + 16, 392}), QColor("blue"));
}

TEST_F(MultiImageViewTest, ManyLargeImagesAreAllShownInTheEnd)
{
    m_view.removeAllImages();
    m_view.m_bShowLabels = false;
    CILImage* pLarge = keep(plain(Qt::darkGreen, 1024, 1024));
    for (int i = 0; i < 60; ++i) {
        m_view.addImage(pLarge, false, QString::number(i), 1);
    }
    screen::show(m_view);
    const auto last = [this] {
        QImage frame = m_view.grabFramebuffer();
        frame.setDevicePixelRatio(m_view.devicePixelRatioF());
        return colorAt(frame, m_view.imageRect(59).center());
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return last() == QColor(Qt::darkGreen); }, 20000));
}

TEST_F(MultiImageViewTest, NothingOfTheImagesIsKeptAfterTheyAreRemoved)
{
    screen::show(m_view);
    auto image = std::make_unique<CILImage>(plain(Qt::red));
    m_view.addImage(image.get(), false, "late", 1);
    m_view.removeAllImages();
    image.reset();
    EXPECT_EQ(m_view.getImageNumber(), 0);
    EXPECT_EQ(m_view.currentImage(), -1);
    EXPECT_TRUE(m_view.imageRect(0).isEmpty());
    const QImage seen = screen::grab(m_view);
    EXPECT_EQ(colorAt(seen, {300, 200}), m_view.palette().color(QPalette::Window));
    m_view.addImage(nullptr, false, "none", 1);
    m_view.addScaledImage(nullptr, 1.0);
    EXPECT_EQ(m_view.getImageNumber(), 0);
}

TEST_F(MultiImageViewTest, AnEqualSetOfImagesKeepsTheZoom)
{
    m_view.setZoom(10.0);
    const double zoom = m_view.zoom();
    m_view.removeAllImages();
    add({"red", "green", "blue", "gold", "magenta"});
    EXPECT_NEAR(m_view.zoom(), zoom, 1e-9);
    m_view.removeAllImages();
    add({"red"});
    EXPECT_TRUE(m_view.isFitted());
}

TEST_F(MultiImageViewTest, AScaledImageFillsThatPartOfItsTile)
{
    m_view.removeAllImages();
    CILImage* pImage = keep(plain(Qt::red));
    m_view.addScaledImage(pImage, 1.0);
    m_view.addScaledImage(pImage, 0.5);
    EXPECT_NEAR(m_view.imageRect(1).width(), m_view.imageRect(0).width() / 2.0, 1e-9);
}

TEST_F(MultiImageViewTest, LabelsAreShownElidedAndWholeInTheToolTip)
{
    const QString name = "<b>" + QString(300, 'n') + "</b>";
    m_view.addImage(keep(plain(Qt::darkBlue)), true, name, 1);
    m_view.setImageToolTip(5, "0 to 12");
    screen::show(m_view);
    const QImage with = screen::grab(m_view);
    m_view.m_bShowLabels = false;
    m_view.update();
    const QImage without = screen::grab(m_view);
    EXPECT_NE(with, without);
    const QRectF tile = m_view.imageRect(5);
    EXPECT_EQ(colorAt(with, QPointF(tile.right() + 2, tile.top() + 8)),
              colorAt(without, QPointF(tile.right() + 2, tile.top() + 8)))
        << "a label stays in its tile";
    QHelpEvent help(QEvent::ToolTip, tile.center().toPoint(), m_view.mapToGlobal(tile.center().toPoint()));
    QApplication::sendEvent(&m_view, &help);
    EXPECT_EQ(QToolTip::text(), name.toHtmlEscaped() + "<br>0 to 12");
    QToolTip::hideText();
}

TEST_F(MultiImageViewTest, TellsThePixelOfTheTileUnderThePointer)
{
    QSignalSpy pixel(&m_view, &CORVMultiImageView::imagePixelUnderPointer);
    pointer::move(m_view, m_view.imageRect(1).topLeft() + QPointF(0.5, 0.5));
    pointer::move(m_view, m_view.imageRect(1).bottomRight() - QPointF(0.5, 0.5));
    pointer::move(m_view, {0, 0});
    ASSERT_EQ(pixel.count(), 3);
    EXPECT_EQ(pixel.at(0), (QList<QVariant>{1, 0, 0}));
    EXPECT_EQ(pixel.at(1), (QList<QVariant>{1, 63, 63}));
    EXPECT_EQ(pixel.at(2), (QList<QVariant>{-1, -1, -1}));
}

TEST_F(MultiImageViewTest, KeysChooseATileAndReturnActivatesIt)
{
    QSignalSpy activated(&m_view, &CORVMultiImageView::imageActivated);
    EXPECT_EQ(m_view.currentImage(), 0);
    QTest::keyClick(&m_view, Qt::Key_Right);
    QTest::keyClick(&m_view, Qt::Key_Down);
    EXPECT_EQ(m_view.currentImage(), 4);
    QTest::keyClick(&m_view, Qt::Key_Right);
    EXPECT_EQ(m_view.currentImage(), 4) << "the last";
    QTest::keyClick(&m_view, Qt::Key_Return);
    ASSERT_EQ(activated.count(), 1);
    EXPECT_EQ(activated.at(0).at(0).toInt(), 4);
    QTest::keyClick(&m_view, Qt::Key_Up);
    EXPECT_EQ(m_view.currentImage(), 1);
    m_view.setZoom(m_view.zoom() * 4);
    QTest::keyClick(&m_view, Qt::Key_Down);
    EXPECT_TRUE(QRectF(m_view.rect()).intersects(m_view.imageRect(4))) << "brought into view";
}

TEST_F(MultiImageViewTest, RendersWhatIsSeenOrAllAlsoWhileHidden)
{
    m_view.m_bShowLabels = false;
    m_view.setZoom(20.0);
    QImage image;
    ASSERT_TRUE(m_view.getImageByRender(image));
    EXPECT_EQ(image.size(), m_view.size() * m_view.devicePixelRatioF());
    EXPECT_NE(colorAt(image, {10, 200}), QColor("red"));
    const QRectF zoomed = m_view.imageRect(0);
    QImage all;
    ASSERT_TRUE(m_view.getImageByRender(all, true));
    EXPECT_EQ(m_view.imageRect(0), zoomed) << "the view is as it was";
    screen::show(m_view);
    m_view.fit();
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(colorAt(all, m_view.imageRect(i).center()), QColor(m_view.imageLabel(i)));
    }
}

TEST_F(MultiImageViewTest, RendersWithoutOpenGLWithTheUnitsLines)
{
    CORVTextTag lower;
    CORVTextTag upper;
    lower.setStringList({"Radiance", " (p/sec/cm/sr)"});
    m_view.m_bShowColorBar = true;
    m_view.setColorBarTags(&lower, &upper);
    m_view.updateColorBar(0.0F, 2.5F);
    QImage image;
    ASSERT_TRUE(m_view.getImageByRender(image));
    const QRectF unit(lower.x(), lower.y() + lower.height() + lower.fontHeight() / 2 - 10, 60, 12);
    int ink = 0;
    for (double y = unit.top(); y < unit.bottom(); ++y) {
        for (double x = unit.left(); x < unit.right(); ++x) {
            ink += colorAt(image, {x, y}) == m_view.palette().color(QPalette::Window) ? 0 : 1;
        }
    }
    EXPECT_GT(ink, 60);
}

TEST_F(MultiImageViewTest, ReturnsNoPictureWithoutASize)
{
    m_view.resize(0, 0);
    QImage image;
    EXPECT_FALSE(m_view.getImageByRender(image));
}

class ColorBarTest : public MultiImageViewTest
{
protected:
    void SetUp() override
    {
        MultiImageViewTest::SetUp();
        m_view.m_bShowColorBar = true;
        m_view.setColorTable(2);
        m_view.updateColorBar(0.0F, 1.25e7F);
    }
};

TEST_F(ColorBarTest, IsShownOnlyWhenItIsNeitherOffNorHidden)
{
    EXPECT_TRUE(m_view.isColorBarShown());
    EXPECT_FALSE(m_view.colorBarMargin().isEmpty());
    m_view.setHideColorBar(true);
    EXPECT_FALSE(m_view.isColorBarShown());
    EXPECT_TRUE(m_view.colorBarMargin().isEmpty());
    EXPECT_TRUE(m_view.colorBarRect().isEmpty());
    m_view.setHideColorBar(false);
    m_view.m_bShowColorBar = false;
    EXPECT_FALSE(m_view.isColorBarShown());
}

TEST_F(ColorBarTest, TilesKeepOutOfItsMargin)
{
    for (int i = 0; i < 5; ++i) {
        EXPECT_LE(m_view.imageRect(i).right(), m_view.colorBarMargin().left());
    }
    EXPECT_NEAR(m_view.colorBarMargin().right(), 600, 1e-9);
    EXPECT_TRUE(m_view.colorBarMargin().contains(m_view.colorBarRect()));
}

TEST_F(ColorBarTest, TagsStandAboveAndBeneathItAndTellItsEnds)
{
    EXPECT_EQ(m_view.lowerTag().text(), "0");
    EXPECT_EQ(m_view.upperTag().text(), QString::fromUtf8("1.25×10⁷"));
    const QRectF bar = m_view.colorBarRect();
    EXPECT_GE(m_view.lowerTag().y(), bar.bottom());
    EXPECT_LE(m_view.upperTag().y() + m_view.upperTag().height(), bar.top());
    EXPECT_EQ(m_view.lowerTag().x(), bar.left());
}

TEST_F(ColorBarTest, StandsWhereItIsPut)
{
    m_view.setColorBarPlace({520, 300}, 200);
    EXPECT_EQ(m_view.colorBarRect().bottomLeft(), QPointF(520, 300));
    EXPECT_EQ(m_view.colorBarRect().height(), 200);
    EXPECT_EQ(m_view.lowerTag().position(), QPointF(520, 300));
    m_view.resetColorBarPlace();
    EXPECT_NE(m_view.colorBarRect().bottomLeft(), QPointF(520, 300));
}

TEST_F(ColorBarTest, ShowsItsTableFromBelowToAboveOrReversed)
{
    CILPalette palette;
    palette.setColorTable(0); // grey
    m_view.setColorBarPalette(palette);
    screen::show(m_view);
    const auto ends = [this] {
        const QImage seen = screen::grab(m_view);
        const QRectF bar = m_view.colorBarRect();
        return std::make_pair(colorAt(seen, {bar.center().x(), bar.bottom() - 3}).lightness(),
                              colorAt(seen, {bar.center().x(), bar.top() + 3}).lightness());
    };
    EXPECT_LT(ends().first, 20);
    EXPECT_GT(ends().second, 235);
    m_view.setReversed(true);
    EXPECT_GT(ends().first, 235);
    EXPECT_LT(ends().second, 20);
}

TEST_F(ColorBarTest, TellsWhenItsRoomChanges)
{
    QSignalSpy changed(&m_view, &CORVMultiImageView::colorBarMarginChanged);
    m_view.setHideColorBar(true);
    m_view.setHideColorBar(true);
    EXPECT_EQ(changed.count(), 1);
    m_view.show();
    changed.clear();
    m_view.resize(500, 300);
    QApplication::processEvents();
    EXPECT_GE(changed.count(), 1);
}

TEST_F(ColorBarTest, AMarginTakesAtMostHalfOfTheView)
{
    CORVTextTag lower;
    CORVTextTag upper;
    lower.setStringList({QString(400, 'W')});
    m_view.setColorBarTags(&lower, &upper);
    EXPECT_LE(m_view.colorBarMargin().width(), 300.0);
    m_view.setColorBarTags(nullptr, nullptr);
    EXPECT_EQ(m_view.upperTag().text(), QString::fromUtf8("1.25×10⁷"));
}

TEST_F(ColorBarTest, HeightsOfTheWindowAreObjectHeights)
{
    double height = 0.0;
    m_view.convertWindowToObjectHeight(17, height);
    EXPECT_EQ(height, 17.0);
}

// Draws a line of its own, in a colour that is set through OpenGL.
class ColoredUnitView : public CORVMultiImageView
{
protected:
    void drawColorBarTexts() const override
    {
        if (QOpenGLContext::currentContext() != nullptr) {
            glColor3f(1.0F, 0.0F, 0.0F);
        }
        QFont font = lowerTag().font();
        font.setBold(true);
        renderText(lowerTag().x(), lowerTag().y() + 2.0 * lowerTag().height(), 0.0, "MMMM", font, 2000);
    }
};

TEST(ColorBarTextTest, TakesTheCurrentColourOfOpenGLAndLeavesThePictureAlone)
{
    ColoredUnitView view;
    view.resize(500, 400);
    CILImage image = plain(Qt::blue);
    view.m_bShowLabels = false;
    view.addImage(&image, false, "a", 1);
    view.m_bShowColorBar = true;
    view.updateColorBar(0.0F, 1.0F);
    screen::show(view);
    for (int pass = 0; pass < 2; ++pass) {
        const QImage seen = screen::grab(view);
        EXPECT_EQ(colorAt(seen, view.imageRect(0).center()), QColor(Qt::blue));
        const QPointF start(view.lowerTag().x(), view.lowerTag().y() + 2.0 * view.lowerTag().height());
        int red = 0;
        int black = 0;
        for (double y = start.y() - 10; y < start.y(); ++y) {
            for (double x = start.x(); x < start.x() + 40; ++x) {
                const QColor c = colorAt(seen, {x, y});
                red += c.red() > 200 && c.green() < 100 ? 1 : 0;
                black += c.red() < 60 ? 1 : 0;
            }
        }
        EXPECT_GT(red, 30);
        EXPECT_EQ(black, 0);
        view.update();
    }
    view.renderText(10, 10, 0, "outside of the painting", QFont());
}

TEST(ColorBarTextTest, TagsTakeTheFontThatIsPreferred)
{
    CORVTextTag tag;
    S3DViewSettings settings;
    CORVPreference::get3DViewPreferences(settings);
    EXPECT_EQ(tag.font().pointSize(), settings.barFontSize);
    EXPECT_EQ(tag.font().family(), settings.fontFamily);
    auto* pSettings = CORVPreference::getSettings();
    pSettings->setValue("Views/BarFontSize", 21);
    pSettings->setValue("Views/LabelFontSize", 17);
    EXPECT_EQ(tag.font().pointSize(), settings.barFontSize) << "not before it is asked for";
    const double before = tag.fontHeight();
    tag.updateFontByPreference();
    EXPECT_EQ(tag.font().pointSize(), 21);
    EXPECT_GT(tag.fontHeight(), before);
    CORVMultiImageView view;
    EXPECT_EQ(view.fontSize(), 17);
    view.setFontSize(9);
    EXPECT_EQ(view.fontSize(), 9);
    pSettings->remove("Views/BarFontSize");
    pSettings->remove("Views/LabelFontSize");
}

TEST(TilePictureTest, KeepsNoMoreThanItIsDrawnWithAndAsksOnlyForMore)
{
    CILImage image = plain(Qt::red, 1024, 512);
    const orvwidgets::TilePicture tile(image);
    EXPECT_EQ(tile.size(), QSize(1024, 512));
    EXPECT_TRUE(tile.kept().isNull()) << "not made before it is drawn";
    QImage page(1200, 1200, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&page);
    tile.draw(painter, QRectF(0, 0, 200, 100), true);
    EXPECT_EQ(tile.kept().size(), QSize(256, 128));
    EXPECT_TRUE(tile.isReady({256, 128}, true));
    EXPECT_FALSE(tile.isReady({257, 128}, true));
    image = plain(Qt::blue, 1024, 512);
    tile.draw(painter, QRectF(0, 0, 250, 125), true);
    EXPECT_EQ(page.pixelColor(100, 50), QColor(Qt::red)) << "the image is not asked again";
    tile.draw(painter, QRectF(0, 0, 60, 30), true);
    EXPECT_EQ(tile.kept().size(), QSize(64, 32));
    tile.draw(painter, QRectF(0, 0, 600, 300), true);
    EXPECT_EQ(tile.kept().size(), QSize(1024, 512));
    EXPECT_EQ(page.pixelColor(100, 50), QColor(Qt::blue));
    tile.draw(painter, QRectF(0, 0, 60, 30), false);
    EXPECT_EQ(tile.kept().size(), QSize(1024, 512)) << "nearest neighbours are those of the whole picture";
}

TEST(BarTicksTest, StandInsideApartFromEachOtherAndFromTheEnds)
{
    const auto ticks = orvwidgets::barTicks(CILPalette(), 0.0, 10.0, 200.0, 10.0);
    ASSERT_FALSE(ticks.empty());
    double last = 0.0;
    for (const auto& tick : ticks) {
        EXPECT_GE((tick.place - last) * 200.0, 20.0);
        EXPECT_GE((1.0 - tick.place) * 200.0, 20.0);
        EXPECT_NEAR(tick.place * 10.0, tick.text.toDouble(), 1e-9);
        last = tick.place;
    }
}

TEST(BarTicksTest, ALogarithmBendsTheScaleAndNotTheTable)
{
    CILPalette palette;
    palette.setColorTable(0);
    const QImage even = orvwidgets::barStrip(palette);
    const auto straight = orvwidgets::barTicks(palette, 0.0, 10.0, 400.0, 10.0);
    palette.setLogScale(1);
    EXPECT_EQ(orvwidgets::barStrip(palette), even);
    const auto bent = orvwidgets::barTicks(palette, 0.0, 10.0, 400.0, 10.0);
    ASSERT_FALSE(bent.empty() || straight.empty());
    EXPECT_GT(bent.front().place, bent.front().text.toDouble() / 10.0);
}

TEST(BarTicksTest, ARangeOfNoWidthHasNone)
{
    EXPECT_TRUE(orvwidgets::barTicks(CILPalette(), 1.0, 1.0, 200.0, 10.0).empty());
    EXPECT_TRUE(orvwidgets::barTicks(CILPalette(), 0.0, 1.0, 200.0, 0.0).empty());
    EXPECT_TRUE(orvwidgets::barTicks(CILPalette(), std::nan(""), 1.0, 200.0, 10.0).empty());
}

TEST_F(ColorBarTest, Looks)
{
    CORVTextTag lower;
    CORVTextTag upper;
    lower.setStringList({"Radiant Efficiency", "   p/sec/cm/sr", "  __________"});
    m_view.setColorBarTags(&lower, &upper);
    m_view.setPalette(screen::darkPalette());
    screen::show(m_view);
    const QImage seen = screen::grab(m_view);
    screen::keep(seen, "tiles_dark");
    // The bar is drawn on the dark ground of the view.
    EXPECT_LT(colorAt(seen, {m_view.colorBarMargin().right() - 1, 1}).lightness(), 60);
    m_view.setColorBarTags(nullptr, nullptr);
}

} // namespace

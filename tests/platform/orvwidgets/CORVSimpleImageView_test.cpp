// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CILImage.h"
#include "host/CORVSimpleImageView.h"
#include "windows/drawnMask.h"

#include "support/maskBounds.h"
#include "support/pointer.h"
#include "support/screen.h"

#include <QDialog>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

// A ramp, bright at the upper left.
CILImage ramp(long w, long h)
{
    CILImage image;
    image.InitWithType(ORVTYPE_BYTE, w, h);
    for (long y = 0; y < h; ++y) {
        for (long x = 0; x < w; ++x) {
            image.bytes()[y * w + x] = static_cast<unsigned char>(255 - (x * 120) / w - (y * 120) / h);
        }
    }
    image.RefreshImageStats();
    return image;
}

// The mask that a window makes of what is drawn.
CILImage maskOf(const CORVSimpleImageView& view, const CILImage& photo)
{
    DrawnShape shape;
    view.getImageViewCrop().getCoords(&shape.x1, &shape.y1, &shape.x2, &shape.y2);
    shape.fImageWidth = view.getImageRect()[2];
    shape.fImageHeight = view.getImageRect()[3];
    shape.bLegend = view.m_bShowLegend;
    shape.bEllipse = view.getCropShape();
    CILImage mask;
    makeDrawnMask(photo, shape, mask);
    return mask;
}

long count(const CILImage& mask)
{
    return std::count(mask.bytes(), mask.bytes() + mask.pixelCount(), 1);
}

// Bounds are strict on each side and view pixels are rounded: a pixel each, and one more of the smaller scale.
constexpr int kSlack = 3;

void expectNear(const QRect& found, const QRect& expected)
{
    EXPECT_NEAR(found.left(), expected.left(), kSlack);
    EXPECT_NEAR(found.top(), expected.top(), kSlack);
    EXPECT_NEAR(found.right(), expected.right(), kSlack);
    EXPECT_NEAR(found.bottom(), expected.bottom(), kSlack);
}

struct ViewCase
{
    const char* name;
    QSize view;
    bool legend;
};

class SimpleImageViewMaskTest : public ::testing::TestWithParam<ViewCase>
{
protected:
    void SetUp() override
    {
        m_view.resize(GetParam().view);
        m_view.m_bShowLegend = GetParam().legend;
        m_view.enableCropMenu(true);
        screen::show(m_view);
    }
    // Draws over that part of the picture.
    void draw(const QRectF& part)
    {
        const QPointF scale(static_cast<double>(m_photo.m_lWidth), static_cast<double>(m_photo.m_lHeight));
        const auto place = [&](const QPointF& p) {
            return m_view.toView(QPointF(p.x() * scale.x(), p.y() * scale.y()));
        };
        pointer::drag(m_view, place(part.topLeft()), place(part.bottomRight()));
    }

    CILImage m_photo = ramp(120, 80);
    CORVSimpleImageView m_view{nullptr, "SimpleImageView", &m_photo};
};

TEST_P(SimpleImageViewMaskTest, ARectangleCoversWhatItWasDrawnOver)
{
    draw({0.1, 0.1, 0.4, 0.3});
    expectNear(maskBounds(maskOf(m_view, m_photo)), QRect(12, 8, 48, 24));
}

TEST_P(SimpleImageViewMaskTest, RectanglesAlongEachEdgeAreNotLost)
{
    for (const auto& [part, pixels] : {std::pair<QRectF, QRect>{{0.0, 0.2, 0.3, 0.6}, {0, 16, 36, 48}},
                                       {{0.7, 0.2, 0.3, 0.6}, {84, 16, 36, 48}},
                                       {{0.2, 0.0, 0.6, 0.3}, {24, 0, 72, 24}},
                                       {{0.2, 0.7, 0.6, 0.3}, {24, 56, 72, 24}},
                                       {{0.0, 0.0, 1.0, 1.0}, {0, 0, 120, 80}}}) {
        QTest::keyClick(&m_view, Qt::Key_Delete);
        draw(part);
        expectNear(maskBounds(maskOf(m_view, m_photo)), pixels);
    }
}

TEST_P(SimpleImageViewMaskTest, AnEllipseCoversItsInside)
{
    m_view.setCropShape(true);
    draw({0.1, 0.1, 0.8, 0.8});
    const CILImage mask = maskOf(m_view, m_photo);
    expectNear(maskBounds(mask), QRect(12, 8, 96, 64));
    const double area = 3.14159265 / 4.0 * 96 * 64;
    EXPECT_NEAR(static_cast<double>(count(mask)), area, 0.08 * area);
    EXPECT_EQ(mask.bytes()[10 * 120 + 14], 0) << "a corner";
}

INSTANTIATE_TEST_SUITE_P(Views, SimpleImageViewMaskTest,
                         ::testing::Values(ViewCase{"Wide", {700, 300}, false}, ViewCase{"Tall", {300, 700}, false},
                                           ViewCase{"Small", {110, 100}, false},
                                           ViewCase{"WithALegend", {500, 500}, true}),
                         [](const auto& tested) { return std::string(tested.param.name); });

class SimpleImageViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_view.resize(400, 300);
        screen::show(m_view);
        m_view.enableCropMenu(true);
    }
    QRect crop() const { return m_view.getImageViewCrop(); }
    static QRect at(int x1, int y1, int x2, int y2)
    {
        QRect r;
        r.setCoords(x1, y1, x2, y2);
        return r;
    }

    CILImage m_photo = ramp(200, 100); // shown at (0, 50), 400 by 200
    CORVSimpleImageView m_view{nullptr, "SimpleImageView", &m_photo};
    QSignalSpy m_modified{&m_view, &CORVSimpleImageView::cropModifiedSignal};
};

TEST_F(SimpleImageViewTest, TakesItsNameAndShowsTheImageFitted)
{
    EXPECT_EQ(m_view.objectName(), "SimpleImageView");
    EXPECT_EQ(m_view.pictureRect(), QRectF(0, 50, 400, 200));
    EXPECT_EQ(m_view.getImageRect(), (std::array<float, 4>{0, 50, 400, 200}));
    CORVSimpleImageView empty(nullptr, nullptr, nullptr);
    EXPECT_TRUE(empty.picture().isNull());
    EXPECT_EQ(empty.getImageRect(), (std::array<float, 4>{0, 0, 0, 0}));
}

TEST_F(SimpleImageViewTest, ReportsTheCropFromTheLowerLeftCornerOfTheImage)
{
    pointer::drag(m_view, {10, 60}, {110, 150});
    EXPECT_EQ(crop(), at(10, 190, 110, 100));
}

TEST_F(SimpleImageViewTest, TellsAssistiveToolsWhatIsDrawn)
{
    EXPECT_FALSE(m_view.accessibleName().isEmpty());
    EXPECT_TRUE(m_view.accessibleDescription().isEmpty());
    pointer::drag(m_view, {10, 60}, {110, 150});
    EXPECT_EQ(m_view.accessibleDescription(), "Rectangle, columns 5 to 54, rows 5 to 49");
    QTest::keyClick(&m_view, Qt::Key_Delete);
    EXPECT_TRUE(m_view.accessibleDescription().isEmpty());
}

TEST_F(SimpleImageViewTest, SendsTheSignalOnceAtTheEndOfADrag)
{
    pointer::press(m_view, {10, 60});
    pointer::move(m_view, {110, 150}, Qt::LeftButton);
    EXPECT_EQ(m_modified.count(), 0);
    pointer::release(m_view, {110, 150});
    ASSERT_EQ(m_modified.count(), 1);
    EXPECT_EQ(m_modified.at(0).at(0).toInt(), 0);
}

TEST_F(SimpleImageViewTest, AClickSendsNothing)
{
    pointer::press(m_view, {10, 60});
    pointer::release(m_view, {10, 60});
    EXPECT_EQ(m_modified.count(), 0);
    EXPECT_EQ(crop(), at(0, 0, 0, 0));
}

TEST_F(SimpleImageViewTest, MovesByADragInsideAndResizesByACorner)
{
    pointer::drag(m_view, {10, 60}, {110, 150});
    pointer::drag(m_view, {60, 100}, {80, 110});
    EXPECT_EQ(crop(), at(30, 180, 130, 90));
    pointer::drag(m_view, {130, 160}, {150, 200});
    EXPECT_EQ(crop(), at(30, 180, 150, 50));
    EXPECT_EQ(m_modified.count(), 3);
}

TEST_F(SimpleImageViewTest, NothingIsDrawnOrSentWhileTheCropIsNotEnabled)
{
    pointer::drag(m_view, {10, 60}, {110, 150});
    m_modified.clear();
    m_view.enableCropMenu(false);
    pointer::drag(m_view, {200, 60}, {300, 150});
    QTest::keyClick(&m_view, Qt::Key_Delete);
    QTest::keyClick(&m_view, Qt::Key_Left);
    QTest::keyClick(&m_view, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&m_view, Qt::Key_Escape);
    EXPECT_EQ(m_modified.count(), 0);
    EXPECT_EQ(crop(), at(10, 190, 110, 100)) << "the crop stays";
    EXPECT_FALSE(CORVSimpleImageView(nullptr, nullptr, &m_photo).isCropMenuEnabled());
}

TEST_F(SimpleImageViewTest, TurningTheCropOffDuringADragEndsTheDrag)
{
    pointer::press(m_view, {10, 60});
    pointer::move(m_view, {110, 150}, Qt::LeftButton);
    m_view.enableCropMenu(false);
    pointer::release(m_view, {110, 150});
    EXPECT_EQ(m_modified.count(), 0);
    EXPECT_EQ(crop(), at(0, 0, 0, 0));
}

TEST_F(SimpleImageViewTest, KeysMoveResizeTakeAllAndClear)
{
    pointer::drag(m_view, {10, 60}, {110, 150});
    m_modified.clear();
    QTest::keyClick(&m_view, Qt::Key_Right);
    QTest::keyClick(&m_view, Qt::Key_Down);
    EXPECT_EQ(crop(), at(11, 189, 111, 99));
    QTest::keyClick(&m_view, Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(crop(), at(21, 189, 121, 99));
    QTest::keyClick(&m_view, Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(crop(), at(21, 189, 120, 99));
    QTest::keyClick(&m_view, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(crop(), at(1, 200, 400, 1));
    QTest::keyClick(&m_view, Qt::Key_Delete);
    EXPECT_EQ(crop(), at(0, 0, 0, 0));
    EXPECT_EQ(m_modified.count(), 6);
}

TEST_F(SimpleImageViewTest, EscapeTakesBackAndIsTheWindowsWhenThereIsNothingToTakeBack)
{
    QDialog dialog;
    auto* pView = new CORVSimpleImageView(&dialog, "view", &m_photo);
    dialog.resize(400, 300);
    (new QVBoxLayout(&dialog))->addWidget(pView);
    dialog.layout()->setContentsMargins(0, 0, 0, 0);
    pView->enableCropMenu(true);
    screen::show(dialog);
    QSignalSpy modified(pView, &CORVSimpleImageView::cropModifiedSignal);
    pointer::drag(*pView, {10, 60}, {110, 150});
    pointer::press(*pView, {60, 100});
    pointer::move(*pView, {90, 120}, Qt::LeftButton);
    QTest::keyClick(pView, Qt::Key_Escape);
    pointer::release(*pView, {90, 120});
    EXPECT_EQ(pView->getImageViewCrop(), at(10, 190, 110, 100));
    EXPECT_EQ(modified.count(), 1) << "a drag taken back sends nothing";
    QTest::keyClick(pView, Qt::Key_Escape);
    EXPECT_EQ(pView->getImageViewCrop(), at(0, 0, 0, 0));
    EXPECT_EQ(modified.count(), 2);
    EXPECT_TRUE(dialog.isVisible());
    QTest::keyClick(pView, Qt::Key_Escape);
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(SimpleImageViewTest, KeysOfTheCropComeBeforeShortcutsOfTheWindow)
{
    const auto taken = [this](Qt::Key key, Qt::KeyboardModifiers keys = Qt::NoModifier) {
        QKeyEvent event(QEvent::ShortcutOverride, key, keys);
        event.ignore();
        QApplication::sendEvent(&m_view, &event);
        return event.isAccepted();
    };
    EXPECT_FALSE(taken(Qt::Key_Escape)) << "nothing to take back";
    EXPECT_FALSE(taken(Qt::Key_Delete));
    EXPECT_TRUE(taken(Qt::Key_A, Qt::ControlModifier));
    pointer::drag(m_view, {10, 60}, {110, 150});
    EXPECT_TRUE(taken(Qt::Key_Escape));
    EXPECT_TRUE(taken(Qt::Key_Delete));
    EXPECT_FALSE(taken(Qt::Key_P, Qt::ControlModifier));
    m_view.enableCropMenu(false);
    EXPECT_FALSE(taken(Qt::Key_Escape));
}

TEST_F(SimpleImageViewTest, AnImageOfTheSameSizeKeepsTheCropAnotherDropsIt)
{
    pointer::drag(m_view, {10, 60}, {110, 150});
    CILImage same = ramp(200, 100);
    m_view.setImage(&same);
    EXPECT_EQ(crop(), at(10, 190, 110, 100));
    CILImage other = ramp(100, 100);
    m_view.setImage(&other);
    EXPECT_EQ(crop(), at(0, 0, 0, 0));
    m_view.setImage(nullptr);
    EXPECT_TRUE(m_view.picture().isNull());
    EXPECT_EQ(m_modified.count(), 1);
}

TEST_F(SimpleImageViewTest, TheImageIsNotKept)
{
    {
        CILImage shortLived = ramp(50, 50);
        m_view.setImage(&shortLived);
    }
    EXPECT_EQ(m_view.renderImage().size(), m_view.size() * m_view.devicePixelRatioF());
    screen::grab(m_view);
}

TEST_F(SimpleImageViewTest, AZoomedViewReportsTheCropOverTheWholeDisplayedImage)
{
    m_view.setZoom(4.0);
    ASSERT_EQ(m_view.pictureRect(), QRectF(-200, -50, 800, 400));
    pointer::drag(m_view, {0, 50}, {100, 150});
    EXPECT_EQ(crop(), at(200, 300, 300, 200));
    EXPECT_EQ(m_view.getImageRect()[2], 800.0F);
    expectNear(maskBounds(maskOf(m_view, m_photo)), QRect(50, 25, 25, 25));
}

TEST_F(SimpleImageViewTest, WithTheLegendTheImageRectIsWhatItLeavesFree)
{
    m_view.m_bShowLegend = true;
    EXPECT_EQ(m_view.getImageRect()[2], 375.0F);
    EXPECT_EQ(m_view.getImageRect()[3], 175.0F);
}

TEST_F(SimpleImageViewTest, TheShapeFollowsTheSetterAndTheMenuTellsOfItsOwnChoice)
{
    QSignalSpy shape(&m_view, &CORVSimpleImageView::cropShapeChanged);
    EXPECT_FALSE(m_view.getCropShape());
    m_view.setCropShape(true);
    EXPECT_TRUE(m_view.getCropShape());
    EXPECT_EQ(shape.count(), 0);
    EXPECT_EQ(m_modified.count(), 0);
    pointer::drag(m_view, {10, 60}, {110, 150});
    const auto action = [this](const QString& text) {
        const auto all = m_view.findChildren<QAction*>();
        return *std::find_if(all.begin(), all.end(), [&](QAction* p) { return p->text() == text; });
    };
    EXPECT_TRUE(action("&Ellipse")->isChecked());
    EXPECT_FALSE(action("&Rectangle")->isChecked());
    action("&Rectangle")->trigger();
    EXPECT_FALSE(m_view.getCropShape());
    ASSERT_EQ(shape.count(), 1);
    EXPECT_FALSE(shape.at(0).at(0).toBool());
    EXPECT_EQ(m_modified.count(), 2) << "the mask is another";
}

QStringList stripTips(CORVSimpleImageView& view)
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QStringList tips;
    for (const auto* pButton : view.findChildren<QToolButton*>()) {
        tips << pButton->toolTip();
        EXPECT_EQ(pButton->accessibleName(), pButton->toolTip());
    }
    return tips;
}

TEST_F(SimpleImageViewTest, TheMenuHoldsTheGroupsThatAreAskedFor)
{
    EXPECT_EQ(stripTips(m_view).size(), 10);
    m_view.showMenuItems(CORVSimpleImageView::CopyItems | CORVSimpleImageView::ZoomItems);
    EXPECT_EQ(stripTips(m_view),
              (QStringList{"Copy the picture", "Zoom in (+)", "Zoom out (-)", "Fit the picture to the view (0)"}));
    m_view.showMenuItems(0);
    EXPECT_TRUE(stripTips(m_view).isEmpty());
    m_view.showMenuItems(15);
    m_view.enableCropMenu(false);
    EXPECT_EQ(stripTips(m_view).size(), 5) << "no crop to act on";
}

TEST_F(SimpleImageViewTest, TheStripLetsDragsThroughAndTakesClicks)
{
    QEvent enter(QEvent::Enter);
    QApplication::sendEvent(&m_view, &enter);
    auto* pStrip = m_view.findChild<QWidget*>("ViewStrip");
    ASSERT_TRUE(pStrip != nullptr && pStrip->isVisible());
    QToolButton* pWhole = nullptr;
    for (auto* pButton : m_view.findChildren<QToolButton*>()) {
        if (pButton->toolTip().startsWith("Take the whole")) {
            pWhole = pButton;
        }
    }
    ASSERT_NE(pWhole, nullptr);
    QTest::mouseClick(pWhole, Qt::LeftButton);
    EXPECT_EQ(crop(), at(1, 200, 400, 1));
    QTest::keyClick(&m_view, Qt::Key_Delete);
    const QPointF from(pWhole->mapTo(&m_view, pWhole->rect().center()));
    pointer::drag(m_view, from, {100, 150});
    EXPECT_EQ(crop(), at(100, 200, static_cast<int>(from.x()), 100));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&m_view, &leave);
    EXPECT_FALSE(pStrip->isVisible());
}

TEST_F(SimpleImageViewTest, DrawsTheImageAndTheCropOnTheScreen)
{
    pointer::drag(m_view, {40, 80}, {200, 200});
    const QImage seen = screen::grab(m_view);
    const double ratio = seen.devicePixelRatio();
    const auto pixel = [&](double x, double y) {
        return seen.pixelColor(static_cast<int>(x * ratio), static_cast<int>(y * ratio));
    };
    EXPECT_NEAR(pixel(3, 53).red(), 253, 4);
    EXPECT_NEAR(pixel(396, 246).red(), 2, 4);
    EXPECT_EQ(pixel(200, 20), m_view.palette().color(QPalette::Window));
    EXPECT_EQ(pixel(40, 80), QColor(Qt::white)) << "a handle";
    screen::keep(seen, "simple_rectangle");
    m_view.setCropShape(true);
    m_view.m_bShowLegend = true;
    m_view.setPalette(screen::darkPalette());
    QEvent enter(QEvent::Enter);
    QApplication::sendEvent(&m_view, &enter);
    m_view.setFocus();
    screen::keep(screen::grab(m_view), "simple_ellipse_dark");
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
// The data mask of the wizard: cut out of the photograph by brightness, and drawn over it.
#include "windows_on_screen/HugeImage.h"
#include "windows_on_screen/WizardFixture.h"

#include "engine/LogCapture.h"
#include "support/boxContrast.h"
#include "support/darkPalette.h"
#include "support/maskBounds.h"
#include "support/pointer.h"

#include "windows/compositeControls.h"
#include "windows/maskPixels.h"
#include "windows/photoMask.h"

#include <QRadioButton>
#include <QRect>

#include <algorithm>

namespace {

class WizardMaskTest : public WizardTest
{
protected:
    void openToDraw(CILImage& photo)
    {
        open(photo);
        QTest::mouseClick(m_wizard.m_pDrawMaskRB, Qt::LeftButton);
    }
    // The point of the view over a part of the picture, (0, 0) its upper left and (1, 1) its lower right corner.
    QPointF at(double dX, double dY) const
    {
        const auto shown = m_wizard.m_pImageView->getImageRect();
        return {shown[0] + dX * shown[2], shown[1] + dY * shown[3]};
    }
    void draw(double dX1, double dY1, double dX2, double dY2)
    {
        pointer::drag(*m_wizard.m_pImageView, at(dX1, dY1), at(dX2, dY2));
    }
    // Of the photograph's pixels, so many from the left and so on; counts as drawn with whole view pixels.
    QRect drawn() const { return maskBounds(*m_wizard.m_pMaskImage); }
    std::size_t pixels() const { return countMaskPixels(*m_wizard.m_pMaskImage); }
    std::size_t pixelsAt(int nThreshold)
    {
        CILImage mask;
        EXPECT_TRUE(makePhotoMask(m_photo, static_cast<float>(nThreshold), photoRange(m_photo), mask));
        return countMaskPixels(mask);
    }
};

TEST_F(WizardMaskTest, ANewPhotographIsCutAutomatically)
{
    open(m_photo);
    const float range = photoRange(m_photo);
    const float v = automaticThreshold(m_photo, range);
    EXPECT_EQ(m_wizard.m_fPhotoRange, range);
    EXPECT_EQ(m_wizard.m_pThresholdSlider->value(), std::min(99, static_cast<int>(v)));
    EXPECT_EQ(m_wizard.m_pThresholdSpinBox->value(), m_wizard.m_pThresholdSlider->value());
    CILImage mask;
    ASSERT_TRUE(makePhotoMask(m_photo, v, range, mask));
    EXPECT_EQ(pixels(), countMaskPixels(mask));
    EXPECT_EQ(m_wizard.getMaskImage()->m_fBinning, 2.0F);
    EXPECT_EQ(m_wizard.getMaskImage()->m_lWidth, 128);
    EXPECT_EQ(m_wizard.m_pMaskStatus->text(), QString("mask: %1 pixels").arg(pixels()));
}

// An Otsu threshold of a bright photograph lies above what the slider can show.
TEST_F(WizardMaskTest, AThresholdAboveTheSliderCutsAllTheSame)
{
    CILImage photo;
    ASSERT_EQ(photo.InitWithType(ORVTYPE_FLOAT, 100, 100), EIL_SUCCESS);
    for (std::size_t i = 0; i < photo.pixelCount(); ++i) {
        photo.setValue(i, i < 5 ? 1000.0 : 1.0 + static_cast<double>(i % 2));
    }
    photo.RefreshImageStats();
    const float v = automaticThreshold(photo, photoRange(photo));
    open(photo);
    EXPECT_EQ(m_wizard.m_pThresholdSlider->value(), std::min(99, static_cast<int>(v)));
    EXPECT_EQ(m_wizard.m_pThresholdSpinBox->value(), m_wizard.m_pThresholdSlider->value());
}

TEST_F(WizardMaskTest, SliderAndSpinBoxGoTogetherAndCutTheMask)
{
    open(m_photo);
    m_wizard.m_pThresholdSlider->setFocus();
    QTest::keyClick(m_wizard.m_pThresholdSlider, Qt::Key_End);
    EXPECT_EQ(m_wizard.m_pThresholdSpinBox->value(), 99);
    EXPECT_EQ(pixels(), pixelsAt(99));
    m_wizard.m_pThresholdSpinBox->setFocus();
    m_wizard.m_pThresholdSpinBox->selectAll();
    QTest::keyClicks(m_wizard.m_pThresholdSpinBox, "75");
    EXPECT_EQ(m_wizard.m_pThresholdSlider->value(), 75);
    EXPECT_EQ(pixels(), pixelsAt(75));
}

TEST_F(WizardMaskTest, FinishFollowsTheMaskAtEveryStepOfTheSlider)
{
    open(m_photo);
    m_wizard.m_pThresholdSlider->setFocus();
    for (const Qt::Key key :
         {Qt::Key_End, Qt::Key_Left, Qt::Key_Left, Qt::Key_PageDown, Qt::Key_PageUp, Qt::Key_Home}) {
        QTest::keyClick(m_wizard.m_pThresholdSlider, key);
        EXPECT_EQ(finish().isEnabled(), pixels() >= 10U) << m_wizard.m_pThresholdSlider->value();
        EXPECT_EQ(m_wizard.m_pPCABtn->isEnabled(), pixels() >= 10U);
    }
}

TEST_F(WizardMaskTest, AnEmptyMaskIsToldBesideTheMaskAlone)
{
    open(m_photo);
    QTest::mouseClick(m_wizard.m_pDrawMaskRB, Qt::LeftButton);
    EXPECT_EQ(pixels(), 0U);
    EXPECT_FALSE(finish().isEnabled());
    EXPECT_EQ(warning(), "");
    EXPECT_EQ(m_wizard.m_pMaskStatus->text(), "mask: 0 pixels, at least 10 needed; drag over the picture to draw it");
    QTest::mouseClick(m_wizard.m_pPhotoRB, Qt::LeftButton);
    EXPECT_TRUE(finish().isEnabled());
}

TEST_F(WizardMaskTest, TheShapesHaveAStyleOfTheirOwnAndAreSeenInADarkPalette)
{
    const QPalette dark = screen::darkPalette();
    for (const QRadioButton* pShape : {m_wizard.m_pRectRB, m_wizard.m_pEllipseRB}) {
        EXPECT_EQ(pShape->style()->objectName(), "fusion");
        const QImage box = boxcontrast::drawn(*pShape->style(), QStyle::PE_IndicatorRadioButton,
                                              QStyle::State_Enabled | QStyle::State_Off, dark);
        EXPECT_GE(boxcontrast::ofOutline(box, dark), boxcontrast::kLegible);
    }
}

TEST_F(WizardMaskTest, TheModeEnablesItsControls)
{
    open(m_photo);
    EXPECT_TRUE(m_wizard.m_pThresholdSlider->isEnabled());
    EXPECT_FALSE(m_wizard.m_pRectRB->isEnabled());
    EXPECT_FALSE(m_wizard.m_pImageView->isCropMenuEnabled());
    draw(0.1, 0.1, 0.6, 0.6);
    EXPECT_TRUE(m_wizard.m_pImageView->getImageViewCrop().isNull() ||
                m_wizard.m_pImageView->getImageViewCrop() == QRect(QPoint(0, 0), QPoint(0, 0)));
    QTest::mouseClick(m_wizard.m_pDrawMaskRB, Qt::LeftButton);
    EXPECT_FALSE(m_wizard.label->isEnabled());
    EXPECT_FALSE(m_wizard.m_pThresholdSlider->isEnabled());
    EXPECT_FALSE(m_wizard.m_pThresholdSpinBox->isEnabled());
    EXPECT_TRUE(m_wizard.m_pRectRB->isEnabled());
    EXPECT_TRUE(m_wizard.m_pEllipseRB->isEnabled());
    EXPECT_TRUE(m_wizard.m_pImageView->isCropMenuEnabled());
}

struct ViewCase
{
    const char* name;
    long width, height; // of the photograph
    QSize window;
};

std::ostream& operator<<(std::ostream& out, const ViewCase& c)
{
    return out << c.name;
}

class DrawnOnScreenTest : public WizardMaskTest, public ::testing::WithParamInterface<ViewCase>
{
protected:
    // A window of the size of the case over a photograph of that of the case.
    void openCase()
    {
        m_photo = bodyPhoto(GetParam().width, GetParam().height);
        openToDraw(m_photo);
        m_wizard.resize(GetParam().window);
        QApplication::processEvents();
    }
    // A rectangle by parts of the picture must cover those of the photograph, but for what rounding to view pixels and
    // the strict bounds take: two pixels of the photograph and two of the view on each side.
    void expectCovers(double dX1, double dY1, double dX2, double dY2, const char* what)
    {
        const long w = m_wizard.m_pMaskImage->m_lWidth;
        const long h = m_wizard.m_pMaskImage->m_lHeight;
        const auto shown = m_wizard.m_pImageView->getImageRect();
        const double slack = 2.0 + 2.0 * static_cast<double>(w) / shown[2];
        const QRect found = drawn();
        EXPECT_NEAR(found.left(), dX1 * static_cast<double>(w), slack) << what;
        EXPECT_NEAR(found.top(), dY1 * static_cast<double>(h), slack) << what;
        EXPECT_NEAR(found.right() + 1, dX2 * static_cast<double>(w), slack) << what;
        EXPECT_NEAR(found.bottom() + 1, dY2 * static_cast<double>(h), slack) << what;
        EXPECT_EQ(pixels(), static_cast<std::size_t>(found.width()) * static_cast<std::size_t>(found.height())) << what;
    }
};

TEST_P(DrawnOnScreenTest, ARectangleCoversWhatLiesUnderIt)
{
    openCase();
    struct Part
    {
        const char* what;
        double x1, y1, x2, y2;
    };
    for (const Part& part : {Part{"upper left", 0.05, 0.05, 0.4, 0.3}, Part{"left edge", 0.0, 0.3, 0.25, 0.6},
                             Part{"lower edge", 0.4, 0.7, 0.8, 1.0}, Part{"right edge", 0.6, 0.1, 1.0, 0.5},
                             Part{"upper edge", 0.3, 0.0, 0.7, 0.35}, Part{"lower right", 0.55, 0.6, 0.95, 0.9},
                             Part{"all", 0.0, 0.0, 1.0, 1.0}}) {
        QTest::keyClick(m_wizard.m_pImageView, Qt::Key_Delete);
        EXPECT_EQ(pixels(), 0U);
        draw(part.x1, part.y1, part.x2, part.y2);
        expectCovers(part.x1, part.y1, part.x2, part.y2, part.what);
        EXPECT_TRUE(finish().isEnabled());
    }
    QTest::keyClick(m_wizard.m_pImageView, Qt::Key_Delete);
    draw(0.05, 0.05, 0.4, 0.3);
    screen::keep(screen::grab(m_wizard), (std::string("wizard_drawn_") + GetParam().name).c_str());
}

TEST_P(DrawnOnScreenTest, AnEllipseTouchesTheSidesOfItsRectangle)
{
    openCase();
    draw(0.1, 0.2, 0.7, 0.8);
    const QRect rectangle = drawn();
    const auto nRectangle = static_cast<double>(pixels());
    QTest::mouseClick(m_wizard.m_pEllipseRB, Qt::LeftButton);
    const QRect ellipse = drawn();
    EXPECT_NEAR(ellipse.left(), rectangle.left(), 1);
    EXPECT_NEAR(ellipse.right(), rectangle.right(), 1);
    EXPECT_NEAR(ellipse.top(), rectangle.top(), 1);
    EXPECT_NEAR(ellipse.bottom(), rectangle.bottom(), 1);
    EXPECT_NEAR(static_cast<double>(pixels()) / nRectangle, std::acos(-1.0) / 4.0, 0.03);
    QTest::mouseClick(m_wizard.m_pRectRB, Qt::LeftButton);
    EXPECT_EQ(drawn(), rectangle);
}

INSTANTIATE_TEST_SUITE_P(Views, DrawnOnScreenTest,
                         ::testing::Values(ViewCase{"wide", 128, 96, {1100, 500}},
                                           ViewCase{"tall", 128, 96, {700, 950}},
                                           ViewCase{"narrow_photo", 60, 200, {889, 735}},
                                           ViewCase{"flat_photo", 300, 80, {889, 735}}));

TEST_F(WizardMaskTest, ARectangleWithoutWidthOrHeightHasNoPixels)
{
    openToDraw(m_photo);
    draw(0.2, 0.2, 0.2, 0.8);
    EXPECT_EQ(pixels(), 0U);
    draw(0.2, 0.5, 0.8, 0.5);
    EXPECT_EQ(pixels(), 0U);
    EXPECT_FALSE(finish().isEnabled());
}

// The bounds are strict, so a crop of w by h pixels of the photograph leaves (w - 1) x (h - 1).
TEST_F(WizardMaskTest, NinePixelsAreTooFewAndTenAreEnough)
{
    CILImage photo = bodyPhoto(20, 20);
    openToDraw(photo);
    const auto part = [](int nPixels) { return (nPixels + 0.5) / 20.0; };
    draw(part(5), part(5), part(9), part(9));
    EXPECT_EQ(pixels(), 9U);
    EXPECT_EQ(m_wizard.m_pMaskStatus->text(), "mask: 9 pixels, at least 10 needed");
    EXPECT_FALSE(finish().isEnabled());
    EXPECT_EQ(warning(), "");
    QTest::keyClick(m_wizard.m_pImageView, Qt::Key_Delete);
    draw(part(5), part(5), part(11), part(8));
    EXPECT_EQ(pixels(), 10U);
    EXPECT_TRUE(finish().isEnabled());
}

TEST_F(WizardMaskTest, TheMenuOfTheViewChoosesTheShapeToo)
{
    openToDraw(m_photo);
    draw(0.2, 0.2, 0.8, 0.8);
    const std::size_t nRectangle = pixels();
    Q_EMIT m_wizard.m_pImageView->cropShapeChanged(true);
    EXPECT_TRUE(m_wizard.m_pEllipseRB->isChecked());
    EXPECT_LT(pixels(), nRectangle);
}

TEST_F(WizardMaskTest, AZoomedViewDrawsOverThePixelsUnderIt)
{
    openToDraw(m_photo);
    draw(0.25, 0.25, 0.5, 0.5);
    const QRect fitted = drawn();
    m_wizard.m_pImageView->zoomIn();
    m_wizard.m_pImageView->zoomIn();
    QTest::keyClick(m_wizard.m_pImageView, Qt::Key_Delete);
    draw(0.25, 0.25, 0.5, 0.5);
    EXPECT_NEAR(drawn().left(), fitted.left(), 2);
    EXPECT_NEAR(drawn().top(), fitted.top(), 2);
    EXPECT_NEAR(drawn().right(), fitted.right(), 2);
}

TEST_F(WizardMaskTest, AMaskCanBeDrawnByKeysAlone)
{
    openToDraw(m_photo);
    m_wizard.m_pImageView->setFocus();
    QTest::keyClick(m_wizard.m_pImageView, Qt::Key_A, Qt::ControlModifier);
    const QRect whole = drawn();
    EXPECT_GE(whole.width(), 126);
    EXPECT_TRUE(finish().isEnabled());
    for (int i = 0; i < 20; ++i) {
        QTest::keyClick(m_wizard.m_pImageView, Qt::Key_Left, Qt::ShiftModifier);
    }
    EXPECT_LT(drawn().width(), whole.width());
    QTest::keyClick(m_wizard.m_pImageView, Qt::Key_Delete);
    EXPECT_FALSE(finish().isEnabled());
}

TEST_F(WizardMaskTest, EscapeInTheViewTakesTheDrawingBackAndThenCancels)
{
    openToDraw(m_photo);
    draw(0.2, 0.2, 0.8, 0.8);
    m_wizard.m_pImageView->setFocus();
    QTest::keyClick(m_wizard.m_pImageView, Qt::Key_Escape);
    EXPECT_TRUE(m_wizard.isVisible());
    EXPECT_EQ(pixels(), 0U);
    QTest::keyClick(m_wizard.m_pImageView, Qt::Key_Escape);
    EXPECT_FALSE(m_wizard.isVisible());
}

TEST_F(WizardMaskTest, WithoutAPhotographThereIsNoMaskAndTheLogTellsIt)
{
    LogCapture log;
    m_wizard.m_nImageCount = 8;
    screen::show(m_wizard);
    QTest::mouseClick(m_wizard.m_pDrawMaskRB, Qt::LeftButton);
    EXPECT_EQ(log.count("Spectral Unmixing: Invalid photographic image while updating mask image.", 3), 1);
    EXPECT_EQ(m_wizard.getMaskImage(), nullptr);
    EXPECT_FALSE(finish().isEnabled());
}

TEST_F(WizardMaskTest, WithoutMemoryForThePhotographThereIsNoMaskUntilThereIs)
{
    LogCapture log;
    HugeImage photo;
    open(m_photo);
    m_wizard.setPhotoImage(&photo);
    EXPECT_GE(log.count("SpUnmixWizardWnd: low memory", 2), 1) << log.reports();
    EXPECT_EQ(m_wizard.getMaskImage(), nullptr);
    EXPECT_EQ(m_wizard.m_pMaskStatus->text(), "not enough memory: no mask can be made");
    EXPECT_TRUE(m_wizard.m_pImageView->picture().isNull());
    EXPECT_FALSE(finish().isEnabled());
    m_wizard.m_pThresholdSlider->setValue(50);
    QTest::mouseClick(m_wizard.m_pDrawMaskRB, Qt::LeftButton);
    EXPECT_FALSE(finish().isEnabled());
    m_wizard.setPhotoImage(&m_photo);
    EXPECT_TRUE(finish().isEnabled());
    EXPECT_GE(pixels(), 10U);
}

// The scale of the thresholds is that of the first photograph.
TEST_F(WizardMaskTest, TheRangeIsComputedOnce)
{
    open(m_photo);
    const float first = m_wizard.m_fPhotoRange;
    CILImage other;
    ASSERT_EQ(other.InitWithType(ORVTYPE_FLOAT, 50, 50), EIL_SUCCESS);
    other.setValue(7, 1000.0);
    other.RefreshImageStats();
    ASSERT_NE(photoRange(other), first);
    m_wizard.setPhotoImage(&other);
    EXPECT_EQ(m_wizard.m_fPhotoRange, first);
}

// A dataset that was opened again may have put another photograph in the place of the first.
TEST_F(WizardMaskTest, APhotographOfAnotherSizeInTheSamePlaceIsAnother)
{
    open(m_photo);
    m_photo = bodyPhoto(50, 40);
    m_wizard.setPhotoImage(&m_photo);
    EXPECT_EQ(m_wizard.getMaskImage()->m_lWidth, 50);
    EXPECT_TRUE(finish().isEnabled());
}

TEST_F(WizardMaskTest, TheSamePhotographKeepsTheMask)
{
    openToDraw(m_photo);
    draw(0.1, 0.1, 0.5, 0.5);
    const QRect before = drawn();
    m_wizard.hide();
    m_wizard.setAnalysisType(1);
    m_wizard.setPhotoImage(&m_photo);
    m_wizard.show();
    EXPECT_EQ(drawn(), before);
    EXPECT_TRUE(m_wizard.m_pDrawMaskRB->isChecked());
    EXPECT_TRUE(finish().isEnabled());
}

struct LookCase
{
    const char* name;
    int type;
    QSize size;
    bool dark;
    QString isotope;
};

std::ostream& operator<<(std::ostream& out, const LookCase& c)
{
    return out << c.name;
}

class WizardLookTest : public WizardMaskTest, public ::testing::WithParamInterface<LookCase>
{
};

TEST_P(WizardLookTest, FitsItsTexts)
{
    const LookCase& c = GetParam();
    if (c.dark) {
        m_wizard.setPalette(screen::darkPalette());
    }
    CILImage photo = bodyPhoto(256, 256);
    open(photo, c.type, 4, c.type == 0 ? QStringList() : QStringList{"Cy5", "ICG"});
    m_wizard.m_pCherenkovGroupBox->setVisible(!c.isotope.isEmpty());
    QTest::mouseClick(m_wizard.m_pAddProbeTB, Qt::LeftButton);
    QTest::mouseClick(m_wizard.m_pAddProbeTB, Qt::LeftButton);
    m_wizard.m_pFoodAFCB->setChecked(true);
    m_wizard.resize(c.size);
    QApplication::processEvents();
    screen::keep(screen::grab(m_wizard), c.name);
    for (const QLabel* pLabel : m_wizard.groupBoxProbe->findChildren<QLabel*>()) {
        if (pLabel->isVisible()) {
            EXPECT_GE(pLabel->width(), pLabel->minimumSizeHint().width()) << qPrintable(pLabel->text());
            // A column settles in several turns of events.
            EXPECT_TRUE(QTest::qWaitFor([pLabel] {
                return pLabel->text().isEmpty() || pLabel->height() >= pLabel->heightForWidth(pLabel->width());
            })) << qPrintable(pLabel->text())
                << pLabel->height();
        }
    }
    EXPECT_LE(m_wizard.groupBoxProbe->width(), 500);
    // Red is told; in bold letters it can be read in a dark window, too.
    EXPECT_TRUE(m_wizard.m_pWarningLabel->font().bold());
    EXPECT_EQ(m_wizard.m_pWarningLabel->palette().color(QPalette::WindowText), QColor(Qt::red));
    EXPECT_GE(contrast(Qt::red, m_wizard.palette().color(QPalette::Window)), 3.0);
    if (c.size == QSize(889, 735)) {
        EXPECT_LE(m_wizard.groupBoxProbe->height(), m_wizard.m_pProbeArea->viewport()->height());
    }
    EXPECT_GE(m_wizard.m_pProbeArea->viewport()->width(), m_wizard.groupBoxProbe->minimumSizeHint().width());
}

INSTANTIATE_TEST_SUITE_P(Windows, WizardLookTest,
                         ::testing::Values(LookCase{"wizard", 1, {889, 735}, false, ""},
                                           LookCase{"wizard_dark", 1, {889, 735}, true, ""},
                                           LookCase{"wizard_luminescent", 0, {889, 735}, false, "F-18"},
                                           LookCase{"wizard_temporal", 3, {889, 735}, false, ""},
                                           LookCase{"wizard_small", 1, {640, 480}, false, "F-18"},
                                           LookCase{"wizard_small_dark", 1, {640, 480}, true, "F-18"}));

} // namespace

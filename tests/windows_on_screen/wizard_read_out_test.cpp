// SPDX-License-Identifier: GPL-3.0-or-later
// What the wizard tells of the pixel below the pointer.
#include "windows_on_screen/StatusTips.h"
#include "windows_on_screen/WizardFixture.h"

#include "support/pointer.h"

namespace {

class WizardReadOutTest : public WizardTest
{
protected:
    // In a photograph of 4 x 2 pixels, counted from 1 along its rows.
    void openSmall()
    {
        ASSERT_EQ(m_photo.InitWithType(ORVTYPE_FLOAT, 4, 2), EIL_SUCCESS);
        for (std::size_t i = 0; i < m_photo.pixelCount(); ++i) {
            m_photo.setValue(i, static_cast<double>(i) + 1.25);
        }
        open(m_photo);
    }
    void point(double dX, double dY) const
    {
        pointer::move(*m_wizard.m_pImageView, m_wizard.m_pImageView->toView(QPointF(dX, dY)));
    }

    StatusTips m_tips{m_wizard};
};

TEST_F(WizardReadOutTest, TellsThePixelOfThePhotographAndItsBrightness)
{
    openSmall();
    point(0.5, 0.5);
    EXPECT_EQ(m_tips.last(), "x 0, y 0: 1.25 counts");
    point(3.5, 1.5);
    EXPECT_EQ(m_tips.last(), "x 3, y 1: 8.25 counts");
}

TEST_F(WizardReadOutTest, BesideThePictureAndOutsideTheViewNothingIsTold)
{
    openSmall();
    point(1.5, 0.5);
    ASSERT_EQ(m_tips.last(), "x 1, y 0: 2.25 counts");
    point(1.5, -1.0);
    EXPECT_EQ(m_tips.last(), "");
    point(1.5, 0.5);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(m_wizard.m_pImageView, &leave);
    EXPECT_EQ(m_tips.last(), "");
}

TEST_F(WizardReadOutTest, TellsItWhileAMaskIsDrawn)
{
    openSmall();
    QTest::mouseClick(m_wizard.m_pDrawMaskRB, Qt::LeftButton);
    pointer::drag(*m_wizard.m_pImageView, m_wizard.m_pImageView->toView(QPointF(0.5, 0.5)),
                  m_wizard.m_pImageView->toView(QPointF(2.5, 1.5)));
    EXPECT_EQ(m_tips.last(), "x 2, y 1: 7.25 counts");
}

TEST_F(WizardReadOutTest, WithoutAPhotographNothingIsTold)
{
    openSmall();
    m_wizard.setPhotoImage(nullptr);
    m_tips.m_told.clear();
    point(1.5, 0.5);
    Q_EMIT m_wizard.m_pImageView->pixelUnderPointer(1, 0);
    EXPECT_EQ(m_tips.last(), "");
}

} // namespace

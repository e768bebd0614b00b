// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/screen.h"

#include "host/CILImage.h"
#include "host/CORVSimpleImageView.h"
#include "windows/SpUnmixWizardWnd.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QStringList>

#include <gtest/gtest.h>

#include <cmath>

// A photograph of a bright body on a dark bed.
inline CILImage bodyPhoto(long lWidth, long lHeight)
{
    CILImage photo;
    EXPECT_EQ(photo.InitWithType(ORVTYPE_FLOAT, lWidth, lHeight), EIL_SUCCESS);
    for (long y = 0; y < lHeight; ++y) {
        for (long x = 0; x < lWidth; ++x) {
            const double dx = (static_cast<double>(x) + 0.5) / static_cast<double>(lWidth) - 0.5;
            const double dy = (static_cast<double>(y) + 0.5) / static_cast<double>(lHeight) - 0.5;
            const double inside = dx * dx / 0.06 + dy * dy / 0.16;
            photo.setValue(static_cast<std::size_t>(y * lWidth + x), inside < 1.0 ? 900.0 - 200.0 * inside : 40.0);
        }
    }
    photo.m_fBinning = 2.0F;
    photo.RefreshImageStats();
    return photo;
}

// The wizard as the engine opens it.
class WizardTest : public ::testing::Test
{
protected:
    void open(CILImage& photo, int nType = 1, int nImages = 8, const QStringList& probes = QStringList(),
              const QString& strSubject = QString())
    {
        m_wizard.m_nImageCount = nImages;
        m_wizard.setAnalysisType(nType);
        m_wizard.setImagingSubject(strSubject);
        m_wizard.setProbeNames(probes);
        m_wizard.setPhotoImage(&photo);
        screen::show(m_wizard);
        QApplication::setActiveWindow(&m_wizard); // no window manager does it
    }

    QAbstractButton& finish() const { return *m_wizard.button(QWizard::FinishButton); }
    QComboBox* row(int nRow) const { return qobject_cast<QComboBox*>(m_wizard.m_pProbeTable->cellWidget(nRow, 0)); }
    int number() const { return m_wizard.m_pNCompLabel->text().toInt(); }
    QString warning() const { return m_wizard.m_pWarningLabel->text(); }

    CILImage m_photo = bodyPhoto(128, 96);
    SpUnmixWizardWnd m_wizard;
};

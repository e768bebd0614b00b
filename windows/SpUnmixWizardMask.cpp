// SPDX-License-Identifier: GPL-3.0-or-later
// The data mask of the wizard: cut out of the photograph or drawn over it.
#include "windows/SpUnmixWizardWnd.h"

#include "host/CILImage.h"
#include "host/CORVLog.h"
#include "host/CORVOverlayImage.h"
#include "host/CORVSimpleImageView.h"
#include "host/CORVUtilityFns.h"
#include "host/ReadOut.h"
#include "host/UnitTexts.h"
#include "spectra/logLine.h"
#include "windows/drawnMask.h"
#include "windows/maskPixels.h"
#include "windows/photoMask.h"
#include "windows/widgets/sendReadOut.h"

#include <QSignalBlocker>

#include <algorithm>
#include <new>

namespace {

constexpr unsigned kThreeColors = 6407; // GL_RGB
constexpr unsigned kFourColors = 6408;  // GL_RGBA
constexpr int kMaskColors = 1;          // index of the colour table
constexpr float kMaskOpacity = 0.5F;

} // namespace

void SpUnmixWizardWnd::updateMaskImage(int mode)
{
    if (m_pPhotoImage == nullptr || m_pPhotoImage->isEmpty() || m_pImageView == nullptr) {
        logLine(QStringLiteral("Spectral Unmixing: Invalid photographic image while updating mask image."),
                CORVLOG_ERROR);
        showNoMask(tr("no photograph: no mask can be made"));
        return;
    }
    try {
        const bool bDrawn = !m_pPhotoRB->isChecked();
        const bool bMade = bDrawn ? makeMaskOfCrop() : makeMaskOfPhoto(mode);
        const std::size_t nPixels = bMade ? countMaskPixels(*m_pMaskImage) : 0;
        m_bMaskValid = nPixels >= kMinMaskPixels;
        m_pMaskStatus->setText(maskStatusText(nPixels, bDrawn));
        validateCurrentPage();
        showMask();
    } catch (const std::bad_alloc&) {
        logLowMemory();
        showNoMask(tr("not enough memory: no mask can be made"));
    }
}

void SpUnmixWizardWnd::logLowMemory()
{
    logLine(QStringLiteral("SpUnmixWizardWnd: low memory"), CORVLOG_WARNING);
}

void SpUnmixWizardWnd::showNoMask(const QString& strReason)
{
    if (m_pMaskImage != nullptr && m_pImageView != nullptr) {
        m_pMaskImage->clear();
        m_pImageView->setImage(nullptr);
    }
    m_bMaskValid = false;
    m_pMaskStatus->setText(strReason);
    validateCurrentPage();
}

bool SpUnmixWizardWnd::makeMaskOfPhoto(int mode)
{
    if (m_fPhotoRange < 0.0F) {
        m_fPhotoRange = photoRange(*m_pPhotoImage);
    }
    auto v = static_cast<float>(m_pThresholdSpinBox->value());
    if (mode != 0) {
        // The mask is cut at the number itself, which may pass the end of the slider; the controls show it truncated.
        v = automaticThreshold(*m_pPhotoImage, m_fPhotoRange);
        const auto fTop = static_cast<float>(m_pThresholdSlider->maximum());
        setThreshold(static_cast<int>(std::min(v, fTop)));
    }
    return makePhotoMask(*m_pPhotoImage, v, m_fPhotoRange, *m_pMaskImage);
}

bool SpUnmixWizardWnd::makeMaskOfCrop()
{
    DrawnShape shape;
    m_pImageView->getImageViewCrop().getCoords(&shape.x1, &shape.y1, &shape.x2, &shape.y2);
    const auto shown = m_pImageView->getImageRect();
    shape.fImageWidth = shown[2];
    shape.fImageHeight = shown[3];
    shape.bLegend = m_pImageView->m_bShowLegend;
    shape.bEllipse = m_pImageView->getCropShape();
    return makeDrawnMask(*m_pPhotoImage, shape, *m_pMaskImage);
}

void SpUnmixWizardWnd::showMask()
{
    m_pMaskImage->setColorTable(kMaskColors);
    m_pMaskImage->setGLFormat(kFourColors);
    m_pMaskImage->getPalette()->setAlphaMode(1, 1.0);
    m_pMaskImage->getPalette()->SetImageMinMax(0.001, 1.0); // opaque at 1, clear at 0
    if (m_pPhotoImage->getGLFormat() != kThreeColors) {
        m_pPhotoImage->setGLFormat(kThreeColors);
        m_pPhotoImage->getPalette()->setAlphaMode(0, 0.0);
    }
    m_pOverlayImage->setBackground(m_pPhotoImage, IMAGETYPE_PHOTOGRAPH);
    m_pOverlayImage->setForeground(m_pMaskImage, IMAGETYPE_LUMINESCENT);
    m_pOverlayImage->blend(kMaskOpacity, 1);
    m_pImageView->setImage(m_pOverlayImage);
    m_pImageView->update();
    CORVUtilityFns::restoreCursor();
}

// The brightness of the photograph, which the threshold is about.
void SpUnmixWizardWnd::tellPixel(int nX, int nY)
{
    const CILImage* pPhoto = m_pPhotoImage;
    if (pPhoto == nullptr || nX < 0 || nY < 0 || nX >= pPhoto->m_lWidth || nY >= pPhoto->m_lHeight) {
        sendReadOut(*m_pImageView, QString());
        return;
    }
    ReadOut found;
    found.pixel = QPoint(nX, nY);
    found.value = pPhoto->value(static_cast<std::size_t>(nY * pPhoto->m_lWidth + nX));
    found.quantity = displayUnitQuantity(DISPLAYUNIT_COUNTS);
    sendReadOut(*m_pImageView, found.text());
}

void SpUnmixWizardWnd::setThreshold(int nValue)
{
    const QSignalBlocker slider(m_pThresholdSlider);
    const QSignalBlocker spinBox(m_pThresholdSpinBox);
    m_pThresholdSlider->setValue(nValue);
    m_pThresholdSpinBox->setValue(nValue);
}

void SpUnmixWizardWnd::onThresholdSliderChanged(int nValue)
{
    setThreshold(nValue);
    updateMaskImage(0);
}

void SpUnmixWizardWnd::onToggleMaskOption(bool bPhoto)
{
    label->setEnabled(bPhoto);
    m_pThresholdSlider->setEnabled(bPhoto);
    m_pThresholdSpinBox->setEnabled(bPhoto);
    m_pRectRB->setEnabled(!bPhoto);
    m_pEllipseRB->setEnabled(!bPhoto);
    m_pImageView->enableCropMenu(!bPhoto);
    updateMaskImage(0);
}

void SpUnmixWizardWnd::onDrawRectMask()
{
    m_pImageView->setCropShape(!m_pRectRB->isChecked());
    updateMaskImage(0);
}

// SPDX-License-Identifier: GPL-3.0-or-later
// The image cube: overview and images, the spectrum under the cursor.
#include "windows/SpumKyvoConsoleWnd.h"

#include "engine/CImageCube.h"
#include "host/CORVGLXYPlot1.h"
#include "host/CORVLog.h"
#include "host/CORVPaintQImageView.h"
#include "host/ReadOut.h"
#include "host/SPlotDisplaySettings.h"
#include "host/UnitTexts.h"
#include "spectra/SpectrumAxis.h"
#include "spectra/SpumKyvoSpectrumCtrl.h"
#include "spectra/logLine.h"
#include "spectra/spectrumScale.h"
#include "windows/cubeImageLabel.h"
#include "windows/plotCurve.h"
#include "windows/widgets/sendReadOut.h"

#include <QSignalBlocker>

#include <algorithm>
#include <new>

namespace {

const char* const kCursorLine = "Cursor";

CORVQImageView::LabelList label(const QString& strText)
{
    return {{strText, QColor(QStringLiteral("lime"))}};
}

QImage blackPicture(const QSize& size)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::black);
    return picture;
}

// A picture whose pixels are those of the cube.
QImage fitted(const QImage& picture, const QSize& cube)
{
    if (cube.isEmpty() || picture.size() == cube) {
        return picture;
    }
    return picture.isNull() ? blackPicture(cube)
                            : picture.scaled(cube, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

bool SpumKyvoConsoleWnd::setImageCube(const QList<KeyPair>& xValues, int nSpectrumType, CImageCube& cube)
{
    if (xValues.size() != cube.m_nImages) {
        return false;
    }
    m_pImageCube = &cube;
    m_nImageWidth = cube.m_nWidth;
    m_nImageHeight = cube.m_nHeight;
    m_xValues = xValues;
    m_nSpectrumType = nSpectrumType;
    if (m_bCherenkovPresent) {
        applyDecayCorrection(m_pApplyCherenkovDecayCorrectionCkb->isChecked());
        m_bDecayOff = !m_pApplyCherenkovDecayCorrectionCkb->isChecked();
    }
    {
        const QSignalBlocker blockSlider(m_pImageIndexSlider);
        const QSignalBlocker blockBox(m_pImageIndexSpinBox);
        const int nLast = std::max(1, cube.m_nImages);
        m_pImageIndexSlider->setRange(1, nLast);
        m_pImageIndexSlider->setValue(1);
        m_pImageIndexSpinBox->setRange(1, nLast);
        m_pImageIndexSpinBox->setValue(1);
    }
    setPseudoColorImage(cube.m_rgbImage);
    m_pLoadDatabaseTB->setVisible(nSpectrumType != SPECTRUMAXIS_TIME);
    m_pSaveDatabaseTB->setVisible(nSpectrumType != SPECTRUMAXIS_TIME && !m_bBackgroundMode);
    clearRows();
    return true;
}

void SpumKyvoConsoleWnd::releaseImageCube()
{
    m_pImageCube = nullptr;
    m_pSpectrumPlot->removeDataLine(QLatin1String(kCursorLine));
}

bool SpumKyvoConsoleWnd::hasImageCube() const
{
    const CImageCube* pCube = m_pImageCube;
    return pCube != nullptr && pCube->m_nImages > 0 && pCube->m_nImages == m_xValues.size() &&
           pCube->m_nWidth == m_nImageWidth && pCube->m_nHeight == m_nImageHeight && pCube->m_nSpots > 0 &&
           pCube->m_data.num_cols() == pCube->m_nImages &&
           pCube->m_data.num_rows() == pCube->m_nSpots * pCube->pixelsPerSpot() && !pCube->m_data.empty();
}

void SpumKyvoConsoleWnd::setPseudoColorImage(const QImage& picture)
{
    m_pseudoColorImage = fitted(picture, QSize(m_nImageWidth, m_nImageHeight));
    {
        const QSignalBlocker blocker(m_pVideoCheckBox);
        m_pVideoCheckBox->setChecked(true);
    }
    showOverview();
}

void SpumKyvoConsoleWnd::showOverview()
{
    m_pImageCubeView->replaceImage(m_pseudoColorImage);
    m_pImageCubeView->setLabelList(label(tr("Pseudo Color")));
    m_pImageCubeView->refreshView();
    m_pImageIndexSlider->setEnabled(false);
    m_pImageIndexSpinBox->setEnabled(false);
    m_ImageScaleSlider->hide();
    label_BrigntnessScale->hide();
}

void SpumKyvoConsoleWnd::onClickCubeOverviewCheckBox(bool bChecked)
{
    if (bChecked) {
        showOverview();
        return;
    }
    m_pImageIndexSlider->setEnabled(true);
    m_pImageIndexSpinBox->setEnabled(true);
    m_ImageScaleSlider->show();
    label_BrigntnessScale->show();
    onImageIndexSliderChanged(m_pImageIndexSlider->value());
}

void SpumKyvoConsoleWnd::onImageIndexSliderChanged(int nValue)
{
    const QSignalBlocker blocker(m_pImageIndexSpinBox);
    m_pImageIndexSpinBox->setValue(nValue);
    showImageOfCube();
}

void SpumKyvoConsoleWnd::onImageIndexSpinBoxChanged(int nValue)
{
    const QSignalBlocker blocker(m_pImageIndexSlider);
    m_pImageIndexSlider->setValue(nValue);
    showImageOfCube();
}

void SpumKyvoConsoleWnd::onImageScaleSliderChanged(int /*nValue*/)
{
    showImageOfCube();
}

// The image that the slider is at, as bright as the other one says; nothing while the overview is on.
void SpumKyvoConsoleWnd::showImageOfCube()
{
    const int nImage = m_pImageIndexSlider->value() - 1;
    if (m_pVideoCheckBox->isChecked() || nImage < 0 || nImage >= m_xValues.size()) {
        return;
    }
    m_pImageCubeView->setLabelList(label(cubeImageLabel(m_xValues.at(nImage), m_nSpectrumType)));
    QImage picture;
    try {
        if (hasImageCube()) {
            m_pImageCube->m_dMaxScale = cubeMaxScale(m_ImageScaleSlider->value());
            picture = m_pImageCube->image(nImage);
        }
    } catch (const std::bad_alloc&) {
        // As for a cube that has no such image.
    }
    if (!m_pImageCubeView->replaceImage(picture)) {
        logLine("ImageCubeView: mismatch rgb image size", CORVLOG_WARNING);
    }
    m_pImageCubeView->refreshView();
}

void SpumKyvoConsoleWnd::updateCursorSpectrum(int nImgX, int nImgY)
{
    XTNT::Vector<double> values;
    const bool bSpectrum = cursorSpectrum(nImgX, nImgY, values);
    if (!bSpectrum || !plotCursor(values)) {
        m_pSpectrumPlot->removeDataLine(QLatin1String(kCursorLine));
    }
    m_pSpectrumPlot->setLegendVisible(m_pLegendCkb->isChecked());
    if (m_pSpectrumPlot->isVisible()) {
        m_pSpectrumPlot->plotData();
    }
    if (bSpectrum) {
        tellPixel(nImgX, nImgY, values);
    } else if (!m_pImageCubeView->isPaintEnabled()) { // who paints is told the size of the region
        sendReadOut(*m_pImageCubeView, QString());
    }
}

bool SpumKyvoConsoleWnd::cursorSpectrum(int nImgX, int nImgY, XTNT::Vector<double>& values) const
{
    bool bOk = false;
    if (nImgX >= 0 && nImgY >= 0 && nImgX < m_nImageWidth && nImgY < m_nImageHeight && hasImageCube()) {
        values = m_pImageCube->spectrum({nImgY * m_nImageWidth + nImgX}, &bOk);
    }
    return bOk;
}

bool SpumKyvoConsoleWnd::plotCursor(const XTNT::Vector<double>& values)
{
    SpectrumPlotParams cursor;
    cursor.axis = m_nSpectrumType;
    cursor.setPairs(m_xValues);
    if (!cursor.setValues(values)) {
        return false;
    }
    const QString key = QLatin1String(kCursorLine);
    m_pSpectrumPlot->addDataLine(key, curveValues(cursor.axisValues()),
                                 plotCurve(values, m_pNormalizedCkb->isChecked()));
    SPlotDisplaySettings settings;
    settings.color.setNamedColor(QStringLiteral("gray"));
    m_pSpectrumPlot->setDisplaySettings(key, settings);
    return true;
}

// The overview has colours instead of a value; of a scan it is the value of the first spot, whose spectrum is plotted.
void SpumKyvoConsoleWnd::tellPixel(int nImgX, int nImgY, const XTNT::Vector<double>& values)
{
    ReadOut found;
    found.pixel = QPoint(nImgX, nImgY);
    const int nImage = m_pImageIndexSlider->value() - 1;
    if (!m_pVideoCheckBox->isChecked() && nImage >= 0 && nImage < m_xValues.size()) {
        found.image = cubeImageLabel(m_xValues.at(nImage), m_nSpectrumType);
        const std::vector<int>& mask = m_pImageCube->m_maskIndices;
        if (!m_pImageCube->m_bHasMask || std::binary_search(mask.begin(), mask.end(), nImgY * m_nImageWidth + nImgX)) {
            found.value = values[nImage];
            found.quantity = displayUnitQuantity(m_nCubeUnit);
        }
        if (m_pImageCube->m_nSpots > 1) {
            found.image += tr(", first spot");
        }
    }
    sendReadOut(*m_pImageCubeView, found.text());
}

void SpumKyvoConsoleWnd::tellPaintedPixels(int nPixels)
{
    const QString name = m_pActiveCtrl ? m_pActiveCtrl->settings().name : QString();
    sendReadOut(*m_pImageCubeView,
                nPixels < 0 ? QString() : tr("Region of %1: %2 pixels").arg(name, QString::number(nPixels)));
}

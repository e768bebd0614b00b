// SPDX-License-Identifier: GPL-3.0-or-later
// The unmixed images: tiles, scale controls, colour bar, and the window as a picture.
#include "windows/SpumKyvoConsoleWnd.h"

#include "host/CILImage.h"
#include "host/CORVPaintQImageView.h"
#include "host/CORVTextTag.h"
#include "windows/CORVDistributionView.h"
#include "windows/colorBarUnit.h"
#include "windows/widgets/exportGraphics.h"

#include <QLayout>
#include <QPushButton>
#include <QSignalBlocker>

namespace {

constexpr double kLargestShare = 100.0; // percent
constexpr double kOpaque = 1.0;

} // namespace

void SpumKyvoConsoleWnd::initUnmixedImages()
{
    m_pColorBarImage = std::make_unique<CILImage>();
    m_pUnitTag = std::make_unique<CORVTextTag>();
    m_pMaxTag = std::make_unique<CORVTextTag>();
    m_pDistributionView = new CORVDistributionView(m_pUnmixedTab, "DistributionView");
    m_pDistributionView->setAccessibleName(tr("Unmixed images"));
    gridLayoutUnmixed->addWidget(m_pDistributionView, 0, 0);
    m_pDistributionView->setColorBarTags(m_pUnitTag.get(), m_pMaxTag.get());
    connect(m_pDistributionView, &CORVMultiImageView::colorBarMarginChanged, this,
            &SpumKyvoConsoleWnd::updateColorBarSize);
    connect(this, &SpumKyvoConsoleWnd::updateColorBarSize, this, &SpumKyvoConsoleWnd::updateColorBarLayout);
}

void SpumKyvoConsoleWnd::connectToolbar()
{
    connect(m_pExportGraphicsButton, &QToolButton::clicked, this, &SpumKyvoConsoleWnd::onClickExportGraphics);
    connect(m_pShowImageLabelsCheckBox, &QCheckBox::toggled, this,
            &SpumKyvoConsoleWnd::onToggleShowImageLabelsCheckBox);
    connect(m_pIndividualScaleCkB, &QCheckBox::toggled, this, &SpumKyvoConsoleWnd::onToggleIndividualScaleCkB);
    connect(m_pDataSpanSlider, &QSpanSlider::lowerValueChanged, this, &SpumKyvoConsoleWnd::onChangeLowerSpan);
    connect(m_pDataSpanSlider, &QSpanSlider::upperValueChanged, this, &SpumKyvoConsoleWnd::onChangeUpperSpan);
    connect(m_pMinSpinBox, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            &SpumKyvoConsoleWnd::onMinSpinBoxChanged);
    connect(m_pMaxSpinBox, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            &SpumKyvoConsoleWnd::onMaxSpinBoxChanged);
}

void SpumKyvoConsoleWnd::addUnmixedImage(CILImage* pImage, const QString& strLabel)
{
    m_pDistributionView->addImage(pImage, false, strLabel, 1);
    m_pExportAsSequence->setEnabled(true);
}

void SpumKyvoConsoleWnd::setUnmixedImageRange(double dMin, double dMax)
{
    const QString text = shownRangeText(dMin, dMax, m_pDistributionView->m_nUnit, m_pDistributionView->m_bNTF);
    m_pDistributionView->setImageToolTip(m_pDistributionView->getImageNumber() - 1, text);
}

void SpumKyvoConsoleWnd::removeAllUnmixedImages()
{
    m_pDistributionView->removeAllImages();
    m_pDistributionView->setValues({});
    qDeleteAll(m_unmixedImages);
    m_unmixedImages.clear();
    m_pDistributionView->m_bShowColorBar = false; // until there is a scale again
    updateColorBarLayout();
    m_pExportAsSequence->setEnabled(false);
}

int SpumKyvoConsoleWnd::takeUnmixedImage(CILImage* pImage)
{
    if (pImage == nullptr) {
        return 0;
    }
    m_unmixedImages.append(pImage);
    m_pDistributionView->addScaledImage(pImage, 1.0);
    return 1;
}

void SpumKyvoConsoleWnd::getScaleRange(double* pLower, double* pUpper) const
{
    *pLower = m_pMinSpinBox->value() / kLargestShare;
    *pUpper = m_pMaxSpinBox->value() / kLargestShare;
}

void SpumKyvoConsoleWnd::setColorBar(int nUnit, bool bNTF, int nColorTable, double dMin, double dMax, bool bReversed,
                                     bool bLogScale)
{
    m_pDistributionView->setUnit(nUnit, bNTF);
    m_pUnitTag->updateFontByPreference();
    m_pMaxTag->updateFontByPreference();
    QStringList lines;
    for (const ColorBarUnitLine& line : colorBarUnitLines(nUnit, bNTF)) {
        lines << line.text;
    }
    m_pUnitTag->setStringList(lines);
    CILPalette& palette = *m_pColorBarImage->getPalette();
    palette.setColorTable(nColorTable);
    palette.setAlphaMode(0, kOpaque);
    palette.setCLUTinfo(nColorTable, bReversed, bLogScale);
    palette.SetImageMinMax(dMin, dMax);
    palette.setReversed(bReversed ? 1 : 0);
    palette.setLogScale(bLogScale ? 1 : 0);
    m_pDistributionView->setColorBarPalette(palette);
    m_pDistributionView->m_bShowColorBar = true;
    m_pDistributionView->updateColorBar(static_cast<float>(dMin), static_cast<float>(dMax));
}

void SpumKyvoConsoleWnd::setHideColorBar(bool bHide)
{
    m_pDistributionView->setHideColorBar(bHide);
}

void SpumKyvoConsoleWnd::updateColorBarLayout()
{
    const QRectF margin = m_pDistributionView->colorBarMargin();
    if (margin.isEmpty()) {
        m_pDistributionView->resetColorBarPlace();
        return;
    }
    const QString unit = m_pUnitTag->getStringList().value(0);
    ColorBarSpace space;
    space.viewHeight = margin.height();
    space.fontHeight = m_pUnitTag->fontHeight();
    space.topFontHeight = m_pMaxTag->fontHeight();
    // The layout counts from the lower end of the room above the text, y downwards.
    const double dBottom = space.viewHeight - colorBarTextLines(unit) * space.fontHeight;
    space.margin = QPointF(margin.left(), dBottom - space.fontHeight / 2.0);
    const ColorBarLayout layout = colorBarLayout(space, unit);
    m_pDistributionView->setColorBarPlace(layout.bottomLeft, layout.height);
}

// Of what is common to all images nothing is shown while each has a scale of its own.
void SpumKyvoConsoleWnd::showScaleControls()
{
    const bool bImages = m_pImageTabWidget->currentWidget() == m_pUnmixedTab;
    m_pShowImageLabelsCheckBox->setVisible(bImages);
    m_pIndividualScaleCkB->setVisible(bImages);
    for (QWidget* pControl :
         std::initializer_list<QWidget*>{m_pMinLabel, m_pMinSpinBox, m_pDataSpanSlider, m_pMaxLabel, m_pMaxSpinBox}) {
        pControl->setVisible(bImages && !m_pIndividualScaleCkB->isChecked());
    }
}

void SpumKyvoConsoleWnd::onCurrentTabChanged(int nIndex)
{
    showScaleControls();
    if (nIndex == 0) {
        m_pImageCubeView->refreshView();
        if (layout() != nullptr) {
            layout()->activate();
        }
    }
}

void SpumKyvoConsoleWnd::selectUnmixedTab(bool bImageCube)
{
    m_pImageTabWidget->setCurrentWidget(bImageCube ? m_pImageCubeTab : m_pUnmixedTab);
    onCurrentTabChanged(m_pImageTabWidget->currentIndex());
}

void SpumKyvoConsoleWnd::setUnmixedTabVisible(bool bHide)
{
    const int nIndex = m_pImageTabWidget->indexOf(m_pUnmixedTab);
    if (bHide && nIndex >= 0) {
        m_pImageTabWidget->removeTab(nIndex);
    } else if (!bHide && nIndex < 0) {
        m_pImageTabWidget->addTab(m_pUnmixedTab, tr("Unmixed"));
    }
}

void SpumKyvoConsoleWnd::onToggleShowImageLabelsCheckBox()
{
    m_pDistributionView->m_bShowLabels = m_pShowImageLabelsCheckBox->isChecked();
    m_pDistributionView->update();
}

void SpumKyvoConsoleWnd::onToggleIndividualScaleCkB(bool bIndividual)
{
    showScaleControls();
    Q_EMIT individualScaleSignal(bIndividual);
}

void SpumKyvoConsoleWnd::tellScale()
{
    Q_EMIT individualScaleSignal(m_pIndividualScaleCkB->isChecked());
}

// A range that is set may move the value of its box, which must not come back as a change of the user's.
void SpumKyvoConsoleWnd::onChangeLowerSpan(int nValue)
{
    const QSignalBlocker blockMin(m_pMinSpinBox);
    const QSignalBlocker blockMax(m_pMaxSpinBox);
    m_pMinSpinBox->setValue(nValue);
    m_pMaxSpinBox->setRange(nValue, kLargestShare);
    tellScale();
}

void SpumKyvoConsoleWnd::onChangeUpperSpan(int nValue)
{
    const QSignalBlocker blockMin(m_pMinSpinBox);
    const QSignalBlocker blockMax(m_pMaxSpinBox);
    m_pMaxSpinBox->setValue(nValue);
    m_pMinSpinBox->setRange(0.0, nValue);
    tellScale();
}

void SpumKyvoConsoleWnd::onMinSpinBoxChanged(double dValue)
{
    const QSignalBlocker blockSlider(m_pDataSpanSlider);
    const QSignalBlocker blockMax(m_pMaxSpinBox);
    m_pDataSpanSlider->setLowerValue(static_cast<int>(dValue));
    m_pMaxSpinBox->setRange(dValue, kLargestShare);
    tellScale();
}

void SpumKyvoConsoleWnd::onMaxSpinBoxChanged(double dValue)
{
    const QSignalBlocker blockSlider(m_pDataSpanSlider);
    const QSignalBlocker blockMin(m_pMinSpinBox);
    m_pDataSpanSlider->setUpperValue(static_cast<int>(dValue));
    m_pMinSpinBox->setRange(0.0, dValue);
    tellScale();
}

void SpumKyvoConsoleWnd::getViewImage(QImage* pImage)
{
    if (QWidget* pPage = m_pImageTabWidget->currentWidget()) {
        pPage->update();
    }
    // A grab of the window holds what its OpenGL views show, in its place and at the ratio of device pixels. Where it
    // leaves them empty, the picture of the view would have to be put over it; here it would be seen twice.
    *pImage = grab().toImage();
}

void SpumKyvoConsoleWnd::onClickExportGraphics()
{
    QImage picture;
    getViewImage(&picture);
    exportGraphics(this, picture);
}

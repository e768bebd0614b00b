// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures of the console in a light and a dark palette and in several sizes, kept in the build folder to be looked at.
// What can be told of them without eyes is tested here.
#include "ConsoleFixture.h"

#include "host/CILImage.h"
#include "windows/CORVDistributionView.h"

#include <QPushButton>
#include <QScrollArea>

#include <cmath>

namespace {

struct ConsoleLook
{
    const char* name;
    QSize size;
    bool dark;
    bool cherenkov;
};

std::ostream& operator<<(std::ostream& stream, const ConsoleLook& look)
{
    return stream << look.name;
}

class ConsoleLooksTest : public ConsoleTest, public ::testing::WithParamInterface<ConsoleLook>
{
protected:
    ConsoleLooksTest()
    {
        m_before = QApplication::palette();
        if (GetParam().dark) {
            QApplication::setPalette(screen::darkPalette());
        }
    }
    ~ConsoleLooksTest() override
    {
        m_pConsole->removeAllUnmixedImages();
        QApplication::setPalette(m_before);
    }
    void keep(const char* pWhat)
    {
        QApplication::processEvents();
        const QByteArray name = QByteArray("console_") + GetParam().name + "_" + pWhat;
        screen::keep(screen::grab(m_window), name.constData());
    }
    // All of a control is to be seen, scrolled into view where it lies in what scrolls.
    void expectWhole(QWidget* pControl)
    {
        QApplication::processEvents();
        m_pConsole->m_pSideScroll->ensureWidgetVisible(pControl);
        QApplication::processEvents();
        EXPECT_EQ(pControl->visibleRegion().boundingRect(), pControl->rect()) << qPrintable(pControl->objectName());
        // The swatch of a colour tells enough.
        const int nNeeded = qobject_cast<QComboBox*>(pControl) != nullptr ? pControl->minimumWidth()
                                                                          : pControl->minimumSizeHint().width();
        EXPECT_GE(pControl->width(), std::min(nNeeded, pControl->maximumWidth())) << qPrintable(pControl->objectName());
    }

    QPalette m_before;
};

TEST_P(ConsoleLooksTest, NothingIsCut)
{
    openCube();
    if (GetParam().cherenkov) {
        m_pConsole->m_pCherenkovGroupBox->show();
    }
    m_window.resize(GetParam().size);
    const QStringList names{"TissueAF", "ICG", "a name that is much too long for the column of names", "<b>bold</b>"};
    const QStringList colors{"lime", "red", "blue", "black"};
    QList<SpectrumPlotParams*> spectra;
    std::vector<std::unique_ptr<SpectrumPlotParams>> owned;
    for (int i = 0; i < names.size(); ++i) {
        std::vector<double> values;
        for (int j = 0; j < kCubeImages; ++j) {
            values.push_back(1.3e9 * std::exp(-std::pow((j - i) / 1.5, 2)));
        }
        owned.push_back(spectrumOf(names[i], colors[i], values));
        spectra.append(owned.back().get());
    }
    m_pConsole->setSpectra(spectra);
    click(m_pConsole->m_pAddSpectrum);
    paint(5, 10, 12, 14);
    m_pConsole->m_pVideoCheckBox->setChecked(false);
    m_pConsole->m_pLegendCkb->setChecked(true);
    keep("cube");
    for (QWidget* pControl : std::initializer_list<QWidget*>{
             m_pConsole->m_pUnmixBtn, m_pConsole->m_pCloseBtn, m_pConsole->m_pAddSpectrum,
             m_pConsole->m_pRemoveSpectrum, m_pConsole->m_pExportDataBtn, m_pConsole->m_pNormalizedCkb,
             m_pConsole->m_pVideoCheckBox, m_pConsole->m_pImageIndexSpinBox, m_pConsole->m_pNotationLE,
             row(0).m_pNameEdit, row(4).m_pToolButton, row(4).m_pColorCombo, m_pConsole->m_ImageScaleSlider,
             m_pConsole->label_BrigntnessScale}) {
        expectWhole(pControl);
    }
    if (GetParam().cherenkov) {
        expectWhole(m_pConsole->m_pApplyCherenkovDecayCorrectionCkb);
        expectWhole(m_pConsole->m_pCherenkovHalfLifeEditBox);
        keep("decay");
    }
    std::vector<CILImage> images(5);
    for (std::size_t i = 0; i < images.size(); ++i) {
        QImage picture(120, 90, QImage::Format_RGB32);
        picture.fill(QColor::fromHsv(static_cast<int>(i) * 60, 200, 160));
        images[i].setRGBImage(picture);
        m_pConsole->addUnmixedImage(&images[i], i < 4 ? names[static_cast<int>(i)] : QString("Composite"));
    }
    m_pConsole->selectUnmixedTab(false);
    m_pConsole->m_pIndividualScaleCkB->setChecked(false);
    m_pConsole->setColorBar(2, false, 1, 1.2e6, 3.4e8, true, false);
    m_pConsole->setHideColorBar(false);
    keep("unmixed");
    for (QWidget* pControl : std::initializer_list<QWidget*>{
             m_pConsole->m_pShowImageLabelsCheckBox, m_pConsole->m_pIndividualScaleCkB, m_pConsole->m_pMinSpinBox,
             m_pConsole->m_pDataSpanSlider, m_pConsole->m_pMaxSpinBox, m_pConsole->m_pCopyToClipboardButton}) {
        expectWhole(pControl);
    }
    m_pConsole->removeAllUnmixedImages();
}

INSTANTIATE_TEST_SUITE_P(Looks, ConsoleLooksTest,
                         ::testing::Values(ConsoleLook{"wide", {1200, 900}, false, false},
                                           ConsoleLook{"dark", {1000, 800}, true, false},
                                           ConsoleLook{"small", {720, 440}, false, true}));

} // namespace

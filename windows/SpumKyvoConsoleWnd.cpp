// SPDX-License-Identifier: GPL-3.0-or-later
// Making the window, its modes and the way out of it. Its other members are defined by subject in the files beside.
#include "windows/SpumKyvoConsoleWnd.h"

#include "host/CILImage.h"
#include "host/CORVDatabase.h"
#include "host/CORVGLXYPlot1.h"
#include "host/CORVPaintQImageView.h"
#include "host/CORVTextTag.h"
#include "spectra/SpectrumAxis.h"
#include "spectra/SpumKyvoSpectrumCtrl.h"
#include "windows/CORVDistributionView.h"
#include "windows/SpumKyvoCPSWnd.h"
#include "windows/halfLife.h"
#include "windows/rowNames.h"

#include <QEvent>
#include <QPushButton>
#include <QSignalBlocker>

// Icons are linked from static libraries, so nothing registers them unless asked. Q_INIT_RESOURCE must stand outside
// every namespace.
static void initConsoleResources()
{
    Q_INIT_RESOURCE(spectra);
    Q_INIT_RESOURCE(windows);
}

namespace {

constexpr int kBlankSide = 100; // pixels of the picture before there is a cube
constexpr int kPlotWidth = 300;
constexpr int kPlotHeight = 200;
constexpr int kLeastHeight = 160;     // of the window; the spectra are scrolled
constexpr int kLeastHeightPlot = 300; // below it the list has all the height

} // namespace

SpumKyvoConsoleWnd::SpumKyvoConsoleWnd(QWidget* pParent) : QDialog(pParent)
{
    initConsoleResources();
    Ui::SpumKyvoConsoleWnd::setupUi(this);
    m_pToolbar = new QFrame(this);
    Ui::ConsoleToolbar::setupUi(m_pToolbar);
    // Whoever takes it shows it; within this window it would lie over the tabs.
    m_pToolbar->hide();
    init();
}

SpumKyvoConsoleWnd::~SpumKyvoConsoleWnd()
{
    // The window is hidden once its members are gone, and views then tell that the pointer has left them.
    m_pImageCubeView->disconnect(this);
    // Its tags are members and die before it.
    m_pDistributionView->disconnect(this);
    m_pDistributionView->removeAllImages();
    m_pDistributionView->setColorBarTags(nullptr, nullptr);
    qDeleteAll(m_unmixedImages);
    m_spectrumCtrls.clear();
    qDeleteAll(m_spectra);
    qDeleteAll(m_lastSpectra);
    // Who is asked to save may be the one that closes the window; a locked mutex would complain.
    m_modifiedMutex.tryLock();
    m_modifiedMutex.unlock();
}

void SpumKyvoConsoleWnd::init()
{
    initCubeView();
    initPlot();
    initUnmixedImages();
    initDecayControls();
    m_pComputePureSpectrumWnd = new SpumKyvoCPSWnd(this);
    connectControls();
    connectToolbar();
    m_pSelectLabel->setToolTip(tr("Ticked spectra are plotted, removed and computed with; all that have data are "
                                  "unmixed."));
    // The spectra scroll, so that no height that the tab is given cuts anything.
    setMinimumSize(minimumSizeHint().width(), kLeastHeight);
    showWhatComesLater();
    updateButtons();
    onCurrentTabChanged(m_pImageTabWidget->currentIndex());
}

void SpumKyvoConsoleWnd::initCubeView()
{
    m_pImageCubeView = new CORVPaintQImageView(m_pImageCubeFrame, "ImageCubeView");
    m_pImageCubeView->setAccessibleName(tr("Image cube"));
    auto* pLayout = new QVBoxLayout(m_pImageCubeFrame);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->addWidget(m_pImageCubeView);
    QImage blank(kBlankSide, kBlankSide, QImage::Format_RGB32);
    blank.fill(Qt::black);
    m_pImageCubeView->replaceImage(blank);
    m_ImageScaleSlider->hide();
    label_BrigntnessScale->hide();
    m_pImageIndexSlider->setEnabled(false);
    m_pImageIndexSpinBox->setEnabled(false);
}

void SpumKyvoConsoleWnd::initPlot()
{
    m_pSpectrumPlot = new CORVGLXYPlot1(m_pGBSpectrumPlot, tr("Spectrum Plot"));
    m_pSpectrumPlot->setObjectName(QStringLiteral("SpectrumPlot"));
    m_pSpectrumPlot->setYLabelFormat(QStringLiteral("%.2f"));
    m_pSpectrumPlot->setFixedWidth(kPlotWidth);
    m_pSpectrumPlot->setMinimumHeight(kPlotHeight);
    m_pSpectrumPlot->setLegendVisible(false);
    m_pSpectrumPlotLayout->insertWidget(0, m_pSpectrumPlot, 1);
}

void SpumKyvoConsoleWnd::initDecayControls()
{
    m_isotopeNames = CORVDatabase::getRADSourceList();
    m_pCherenkovIsotopeCombobox->addItems(m_isotopeNames);
    m_pCherenkovIsotopeCombobox->setCurrentIndex(-1);
    m_pCherenkovHalfLifeEditBox->setValidator(halfLifeValidator(this));
    m_pCherenkovGroupBox->hide();
}

void SpumKyvoConsoleWnd::connectControls()
{
    connect(m_pImageTabWidget, &QTabWidget::currentChanged, this, &SpumKyvoConsoleWnd::onCurrentTabChanged);
    connect(m_pImageCubeView, &CORVPaintQImageView::signalDrawComplete, this, &SpumKyvoConsoleWnd::onUpdatePlot);
    connect(m_pImageCubeView, &CORVPaintQImageView::penChanged, this, &SpumKyvoConsoleWnd::showPen);
    connect(m_pImageCubeView, &CORVPaintQImageView::paintedPixelsChanged, this, &SpumKyvoConsoleWnd::tellPaintedPixels);
    connect(m_pImageCubeView, &CORVPaintQImageView::updateCursorPosition, this,
            &SpumKyvoConsoleWnd::updateCursorSpectrum);
    connect(m_pVideoCheckBox, &QCheckBox::toggled, this, &SpumKyvoConsoleWnd::onClickCubeOverviewCheckBox);
    connect(m_pImageIndexSlider, &QSlider::valueChanged, this, &SpumKyvoConsoleWnd::onImageIndexSliderChanged);
    connect(m_pImageIndexSpinBox, QOverload<int>::of(&QSpinBox::valueChanged), this,
            &SpumKyvoConsoleWnd::onImageIndexSpinBoxChanged);
    connect(m_ImageScaleSlider, &QSlider::valueChanged, this, &SpumKyvoConsoleWnd::onImageScaleSliderChanged);

    connect(m_pNormalizedCkb, &QCheckBox::stateChanged, this, &SpumKyvoConsoleWnd::updateSpectrumPlot);
    connect(m_pLegendCkb, &QCheckBox::stateChanged, this, &SpumKyvoConsoleWnd::onToggleShowLegendCheckBox);
    connect(m_pExportDataBtn, &QToolButton::clicked, this, &SpumKyvoConsoleWnd::onClickExportData);
    connect(m_pSaveDatabaseTB, &QToolButton::clicked, this, &SpumKyvoConsoleWnd::onClickSaveSpectrumLibrary);
    connect(m_pLoadDatabaseTB, &QToolButton::clicked, this, &SpumKyvoConsoleWnd::onClickLoadSpectrumLibrary);
    connect(m_pComputeSpectrum, &QToolButton::clicked, this, &SpumKyvoConsoleWnd::onComputePureSpectrum);
    connect(m_pComputePureSpectrumWnd, &SpumKyvoCPSWnd::updateSpectrum, this, &SpumKyvoConsoleWnd::onUpdateSpectrum);
    connect(m_pAddSpectrum, &QToolButton::clicked, this, [this] { onAddSpectrum(); });
    connect(m_pRemoveSpectrum, &QToolButton::clicked, this, &SpumKyvoConsoleWnd::onRemoveSpectrum);
    connect(m_pUnmixBtn, &QPushButton::clicked, this, &SpumKyvoConsoleWnd::onClickUnmix);
    connect(m_pCloseBtn, &QPushButton::clicked, this, &SpumKyvoConsoleWnd::onClickCancel);

    connect(m_pCherenkovIsotopeCombobox, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &SpumKyvoConsoleWnd::onIsotopeComboboxSelectionChanged);
    connect(m_pCherenkovHalfLifeEditBox, &QLineEdit::textChanged, this, &SpumKyvoConsoleWnd::onHalfLifeEditBoxChanged);
    connect(m_pApplyCherenkovDecayCorrectionCkb, &QCheckBox::toggled, this,
            &SpumKyvoConsoleWnd::onToggleApplyCherenkovDecayCorrection);
}

// Controls for which there is nothing yet say so instead of doing nothing.
void SpumKyvoConsoleWnd::showWhatComesLater()
{
    m_pPrintButton->setEnabled(false);
    m_pPrintButton->setToolTip(tr("%1 (not available in this version)").arg(m_pPrintButton->accessibleName()));
}

void SpumKyvoConsoleWnd::showModeTexts()
{
    m_pSelectLabel->setText(m_bBackgroundMode ? tr("Background") : tr("   Select"));
    m_pUnmixBtn->setText(m_bBackgroundMode ? tr("Next") : tr("Unmix"));
    m_pCloseBtn->setText(m_bBackgroundMode ? tr("Cancel") : tr("Close"));
}

void SpumKyvoConsoleWnd::languageChange()
{
    Ui::SpumKyvoConsoleWnd::retranslateUi(this);
    Ui::ConsoleToolbar::retranslateUi(m_pToolbar);
    const int nUnmixed = m_pImageTabWidget->indexOf(m_pUnmixedTab);
    if (nUnmixed >= 0) {
        m_pImageTabWidget->setTabText(nUnmixed, tr("Unmixed"));
    }
    showModeTexts();
    showWhatComesLater();
}

void SpumKyvoConsoleWnd::changeEvent(QEvent* pEvent)
{
    QDialog::changeEvent(pEvent);
    if (pEvent->type() == QEvent::LanguageChange && m_pToolbar != nullptr) {
        languageChange();
    }
}

void SpumKyvoConsoleWnd::resizeEvent(QResizeEvent* pEvent)
{
    QDialog::resizeEvent(pEvent);
    const bool bPlot = height() >= kLeastHeightPlot;
    const bool bAnew = bPlot && m_pSpectrumPlot->isHidden();
    for (QWidget* pPart : std::initializer_list<QWidget*>{m_pNormalizedCkb, m_pLegendCkb, m_pExportDataBtn,
                                                          m_pGBSpectrumPlot, m_pSpectrumPlot}) {
        pPart->setVisible(bPlot);
    }
    if (bAnew && isVisible()) {
        m_pSpectrumPlot->plotData(); // what was changed meanwhile
    }
}

void SpumKyvoConsoleWnd::showEvent(QShowEvent* pEvent)
{
    QDialog::showEvent(pEvent);
    // The chart is built when it is first seen.
    m_pSpectrumPlot->plotData();
}

void SpumKyvoConsoleWnd::setBackgroundMode(bool bOn)
{
    clearRows();
    m_bBackgroundMode = bOn;
    setUnmixedTabVisible(bOn);
    showModeTexts();
    m_pExportAsSequence->setVisible(!bOn);
    m_pSaveDatabaseTB->setVisible(!bOn && m_nSpectrumType != SPECTRUMAXIS_TIME);
    showScaleControls();
    updateButtons();
}

void SpumKyvoConsoleWnd::setProbeNames(const QStringList& names)
{
    clearRows();
    m_probeNames = names;
    const QPointer<SpumKyvoConsoleWnd> alive(this);
    for (const QString& name : startingRows(names, m_bCherenkovPresent)) {
        onAddSpectrum(name);
        if (alive.isNull()) {
            return;
        }
    }
}

QString SpumKyvoConsoleWnd::getNote() const
{
    return m_pNotationLE->text();
}

void SpumKyvoConsoleWnd::setNote(const QString& strNote)
{
    m_pNotationLE->setText(strNote);
}

void SpumKyvoConsoleWnd::onClickUnmix()
{
    turnPaintToolOff();
    Q_EMIT finished(1);
}

void SpumKyvoConsoleWnd::onClickCancel()
{
    const QPointer<SpumKyvoConsoleWnd> alive(this);
    if (m_bResultsExist) {
        Q_EMIT askToSaveExistingResult();
    }
    if (!alive.isNull()) {
        turnPaintToolOff();
        Q_EMIT finished(0);
    }
}

// Escape takes leave as the button does, and does not hide the window.
void SpumKyvoConsoleWnd::reject()
{
    onClickCancel();
}

void SpumKyvoConsoleWnd::onTabSelected(QString strTabName)
{
    if (strTabName.compare(QLatin1String("Unmixing"), Qt::CaseInsensitive) == 0) {
        m_pImageCubeView->refreshView();
    }
}

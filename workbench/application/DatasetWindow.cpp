// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/DatasetWindow.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/ReadOut.h"
#include "platform/orvwidgets/viewIcons.h"
#include "workbench/application/BackgroundWork.h"
#include "workbench/application/ColorBarWidget.h"
#include "workbench/application/ColorTableBox.h"
#include "workbench/application/DatasetView.h"
#include "workbench/application/RangePanel.h"
#include "workbench/application/RegionPanel.h"
#include "workbench/application/UnitBox.h"
#include "workbench/application/datasetTitle.h"
#include "workbench/application/pixelSide.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSlider>
#include <QToolButton>
#include <QUndoStack>
#include <QVBoxLayout>

#include <utility>

using orvwidgets::ViewIcon;

namespace {

constexpr int kStartOpacity = 70; // percent
constexpr int kPanelWidth = 272;
constexpr int kPatience = 150; // ms

} // namespace

DatasetWindow::DatasetWindow(CORVDataset* pDataset, QWidget* pParent)
    : CORVImageWindow(pDataset, pParent), m_pImage(std::make_unique<DatasetImage>(pDataset)),
      m_pReading(std::make_unique<BackgroundWork>()), m_pView(new DatasetView(this)),
      m_pBar(new ColorBarWidget(Qt::Vertical, this)), m_pRegions(new RegionPanel(pDataset, this))
{
    setObjectName(QStringLiteral("DatasetWindow"));
    auto* pLayout = new QHBoxLayout(this);
    pLayout->setContentsMargins(6, 6, 6, 6);
    auto* pShown = new QGridLayout;
    pShown->addWidget(m_pView, 0, 0);
    pShown->addWidget(m_pBar, 0, 1);
    pShown->addWidget(m_pRegions, 1, 0, 1, 2);
    pShown->setRowStretch(0, 1);
    pShown->setColumnStretch(0, 1);
    pLayout->addLayout(pShown, 1);
    pLayout->addWidget(makePanel());
    takeSequenceColors();
    connectControls();
    connectRegions();
    for (const tag_eimagetype type : m_pImage->types()) {
        m_pImageBox->addItem(DatasetImage::typeText(type), static_cast<int>(type));
    }
    const bool fluorescent = pDataset->sequence() != nullptr && pDataset->sequence()->isFluorescence;
    m_idle.setInterval(0);
    connect(&m_idle, &QTimer::timeout, this, [this] {
        // Every other turn is left to what is to be painted.
        m_bTurn = !m_bTurn;
        if (!m_bTurn) {
            doNext();
        }
    });
    connect(m_pReading.get(), &BackgroundWork::done, &m_idle, QOverload<>::of(&QTimer::start));
    m_patience.setInterval(kPatience);
    m_patience.setSingleShot(true);
    connect(&m_patience, &QTimer::timeout, m_pView, [this] { m_pView->showNotice(tr("Reading ...")); });
    showTitle();
    m_pRange->clearImage();
    m_pView->showMessage(tr("Reading ..."));
    begin(IMAGETYPE_MAIN_DATA, startUnit(m_pImage->offers(), fluorescent));
}

DatasetWindow::~DatasetWindow()
{
    BackgroundWork::letGo(std::move(m_pReading));
}

QWidget* DatasetWindow::makePanel()
{
    auto* pPanel = new QWidget;
    auto* pColumn = new QVBoxLayout(pPanel);
    pColumn->setContentsMargins(0, 0, 4, 0);
    const auto separate = [&] {
        auto* pLine = new QFrame(pPanel);
        pLine->setFrameShape(QFrame::HLine);
        pLine->setFrameShadow(QFrame::Sunken);
        pColumn->addWidget(pLine);
    };
    addButtons(pColumn);
    addDisplay(pColumn);
    separate();
    m_pRange = new RangePanel(pPanel);
    pColumn->addWidget(m_pRange);
    separate();
    addPhotograph(pColumn);
    pColumn->addStretch(1);
    // In a low window the panel scrolls.
    auto* pScroll = new QScrollArea(this);
    pScroll->setWidget(pPanel);
    pScroll->setWidgetResizable(true);
    pScroll->setFrameShape(QFrame::NoFrame);
    pScroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    pScroll->setFixedWidth(std::max(kPanelWidth, pPanel->minimumSizeHint().width()) +
                           pScroll->verticalScrollBar()->sizeHint().width());
    pScroll->setFocusPolicy(Qt::NoFocus);
    return pScroll;
}

void DatasetWindow::addDisplay(QVBoxLayout* pColumn)
{
    auto* pForm = new QFormLayout;
    m_pImageBox = new QComboBox(this);
    m_pImageBox->setObjectName(QStringLiteral("m_pImageBox"));
    m_pUnitBox = new UnitBox(this);
    m_pUnitBox->setObjectName(QStringLiteral("m_pImageUnitBox"));
    m_pColorBox = new ColorTableBox(this);
    m_pColorBox->setObjectName(QStringLiteral("m_pImageColorBox"));
    m_pReversedBox = new QCheckBox(tr("&Reversed"), this);
    m_pReversedBox->setObjectName(QStringLiteral("m_pImageReversedBox"));
    m_pLogBox = new QCheckBox(tr("&Logarithmic"), this);
    m_pLogBox->setObjectName(QStringLiteral("m_pImageLogBox"));
    auto* pBoxes = new QHBoxLayout;
    pBoxes->addWidget(m_pReversedBox);
    pBoxes->addWidget(m_pLogBox);
    pForm->addRow(tr("&Image:"), m_pImageBox);
    pForm->addRow(tr("&Unit:"), m_pUnitBox);
    pForm->addRow(tr("&Colours:"), m_pColorBox);
    pForm->addRow(pBoxes);
    pColumn->addLayout(pForm);
}

void DatasetWindow::addPhotograph(QVBoxLayout* pColumn)
{
    auto* pForm = new QFormLayout;
    m_pOverlayBox = new QCheckBox(tr("&Over the photograph"), this);
    m_pOverlayBox->setObjectName(QStringLiteral("m_pOverlayBox"));
    m_pOpacitySlider = new QSlider(Qt::Horizontal, this);
    m_pOpacitySlider->setObjectName(QStringLiteral("m_pOpacitySlider"));
    m_pOpacitySlider->setRange(0, 100);
    m_pOpacitySlider->setValue(kStartOpacity);
    m_pOpacitySlider->setToolTip(tr("How much of the photograph the image covers"));
    pForm->addRow(m_pOverlayBox);
    pForm->addRow(tr("O&pacity:"), m_pOpacitySlider);
    pColumn->addLayout(pForm);
}

void DatasetWindow::addButtons(QVBoxLayout* pColumn)
{
    auto* pRow = new QHBoxLayout;
    const auto add = [&](ViewIcon icon, const QString& text, auto slot) {
        auto* pButton = new QToolButton(this);
        pButton->setToolTip(text);
        pButton->setAccessibleName(text);
        pButton->setAutoRaise(true);
        pButton->setFocusPolicy(Qt::TabFocus);
        connect(pButton, &QToolButton::clicked, m_pView, slot);
        pRow->addWidget(pButton);
        m_icons.append({pButton, static_cast<int>(icon)});
        return pButton;
    };
    add(ViewIcon::ZoomIn, tr("Zoom in (+)"), &GLImageView::zoomIn);
    add(ViewIcon::ZoomOut, tr("Zoom out (-)"), &GLImageView::zoomOut);
    add(ViewIcon::Fit, tr("Fit to the window (0)"), &GLImageView::fit);
    add(ViewIcon::Whole, tr("Actual size"), &DatasetView::showActualSize);
    pRow->addStretch(1);
    add(ViewIcon::Copy, tr("Copy the picture"), &GLImageView::copyPicture)->setObjectName("m_pCopyPictureButton");
    add(ViewIcon::Save, tr("Save the picture"), &GLImageView::savePicture)->setObjectName("m_pSavePictureButton");
    pColumn->addLayout(pRow);
    drawIcons();
}

// In the colour of the present palette.
void DatasetWindow::drawIcons()
{
    for (const auto& [pButton, nIcon] : qAsConst(m_icons)) {
        pButton->setIcon(orvwidgets::viewIcon(static_cast<ViewIcon>(nIcon),
                                              palette().color(QPalette::Active, QPalette::ButtonText)));
    }
}

void DatasetWindow::connectControls()
{
    const auto activated = QOverload<int>::of(&QComboBox::activated);
    connect(m_pImageBox, activated, this, [this] { showImage(m_pImageBox->currentData().toInt()); });
    connect(m_pUnitBox, &UnitBox::unitChosen, this,
            [this](int nUnit) { begin(m_eWanted, static_cast<tag_edisplayunit>(nUnit)); });
    connect(m_pColorBox, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &DatasetWindow::takeColors);
    connect(m_pReversedBox, &QCheckBox::toggled, this, &DatasetWindow::takeColors);
    connect(m_pLogBox, &QCheckBox::toggled, this, &DatasetWindow::takeColors);
    connect(m_pRange, &RangePanel::rangeChanged, this, [this] {
        m_pImage->setRange(m_pRange->range());
        draw();
    });
    connect(m_pRange, &RangePanel::automaticWanted, this, [this] {
        m_pImage->setRange(m_pImage->automatic());
        m_pRange->setRange(m_pImage->range());
        draw();
    });
    connect(m_pOverlayBox, &QCheckBox::toggled, this, &DatasetWindow::takeOverlay);
    connect(m_pOpacitySlider, &QSlider::valueChanged, this, &DatasetWindow::takeOverlay);
    connect(m_pView, &GLImageView::pixelUnderPointer, this, &DatasetWindow::tellPixel);
}

// As the sequence is shown; a map by itself is shown as the sequences are from the start.
void DatasetWindow::takeSequenceColors()
{
    tag_simageadjust adjust;
    if (CORVSequenceDataset* pSequence = dataset()->sequence()) {
        adjust = *pSequence->getImageAdjust();
    }
    m_pColorBox->setColorTable(adjust.m_nColorTable);
    m_pColorBox->setReversed(adjust.m_bReversed);
    m_pReversedBox->setChecked(adjust.m_bReversed);
    m_pLogBox->setChecked(adjust.m_bLogScale);
    m_pImage->setColors(m_pColorBox->colorTable(), adjust.m_bReversed, adjust.m_bLogScale);
}

tag_edisplayunit DatasetWindow::unit() const
{
    return m_eWantedUnit;
}

QUndoStack& DatasetWindow::history()
{
    return m_pRegions->history();
}

DatasetView* DatasetWindow::view()
{
    catchUp();
    return m_pView;
}

DatasetImage& DatasetWindow::image()
{
    catchUp();
    return *m_pImage;
}

void DatasetWindow::showImage(int nImage, tag_edisplayunit eUnit)
{
    const bool had = dataset()->unitUnavailableReason(eUnit).isEmpty();
    const tag_edisplayunit shown = had ? eUnit : m_eWantedUnit;
    if (nImage != m_eWanted || shown != m_eWantedUnit) {
        begin(static_cast<tag_eimagetype>(nImage), shown);
    }
}

void DatasetWindow::begin(tag_eimagetype eType, tag_edisplayunit eUnit)
{
    m_eWanted = eType;
    m_eWantedUnit = eUnit;
    m_eNext = Step::Read;
    m_bKeepsRange = false;
    m_patience.start();
    // What is being read is let come to its end first.
    if (!m_pReading->isRunning()) {
        m_idle.start();
    }
}

void DatasetWindow::startReading()
{
    m_pReading->finish();
    m_idle.stop();
    m_eNext = Step::Take;
    m_pLoaded = std::make_shared<DatasetImage::Loaded>();
    m_pReading->start([read = m_pImage->reader(m_eWanted, m_eWantedUnit),
                       pLoaded = m_pLoaded](const BackgroundWork::Progress&, QString*) {
        *pLoaded = read();
        return true;
    });
}

void DatasetWindow::doNext()
{
    switch (m_eNext) {
    case Step::Read:
        startReading();
        return;
    case Step::Take:
        m_eNext = Step::Draw;
        take();
        return;
    case Step::Draw:
        m_eNext = Step::Count;
        draw();
        return;
    case Step::Count:
        showRange();
        [[fallthrough]];
    case Step::None:
        m_eNext = Step::None;
        m_idle.stop();
    }
}

void DatasetWindow::catchUp()
{
    while (m_eNext != Step::None) {
        doNext();
    }
}

void DatasetWindow::take()
{
    m_pReading->finish();
    m_patience.stop();
    const DisplayRange range = m_pImage->range();
    const bool chosen = range != DisplayRange() && range != m_pImage->automatic();
    m_pImage->take(std::move(*m_pLoaded));
    m_pLoaded.reset();
    if (m_bKeepsRange && chosen) {
        m_pImage->setRange(range);
    }
    m_eWanted = m_pImage->type();
    m_pImageBox->setCurrentIndex(m_pImageBox->findData(static_cast<int>(m_pImage->type())));
    m_pUnitBox->setOffers(m_pImage->offers(), m_eWantedUnit);
    // The photograph is looked at as a photograph.
    if (!m_pImage->hasUnit()) {
        m_pImage->setColors(0, false, false);
    } else {
        m_pImage->setColors(m_pColorBox->colorTable(), m_pReversedBox->isChecked(), m_pLogBox->isChecked());
    }
    showLoaded();
}

void DatasetWindow::refreshImage()
{
    // Of an image that takes the place of another the range is its own.
    const bool same = m_eNext < Step::Take || m_bKeepsRange;
    begin(m_eWanted, m_eWantedUnit);
    m_bKeepsRange = same;
    showTitle();
}

void DatasetWindow::showLoaded()
{
    const bool grey = !m_pImage->image().isEmpty() && !m_pImage->isColored();
    m_pImageBox->setEnabled(m_pImageBox->count() > 0);
    m_pUnitBox->setEnabled(m_pImage->hasUnit());
    for (QWidget* pWidget : std::initializer_list<QWidget*>{m_pColorBox, m_pReversedBox, m_pLogBox}) {
        pWidget->setEnabled(grey && m_pImage->hasUnit());
    }
    m_pOverlayBox->setEnabled(m_pImage->canOverlay());
    m_pOverlayBox->setToolTip(m_pImage->canOverlay() ? QString() : tr("There is no photograph beneath this image"));
    m_pOpacitySlider->setEnabled(m_pOverlayBox->isChecked() && m_pImage->canOverlay());
    showTitle();
}

void DatasetWindow::showRange()
{
    showRegions();
    if (m_pImage->image().isEmpty() || m_pImage->isColored()) {
        m_pRange->clearImage();
    } else {
        m_pRange->setImage(m_pImage->image(), m_pImage->whole(), m_pImage->range());
    }
}

void DatasetWindow::takeColors()
{
    m_pColorBox->setReversed(m_pReversedBox->isChecked());
    m_pImage->setColors(m_pColorBox->colorTable(), m_pReversedBox->isChecked(), m_pLogBox->isChecked());
    draw();
}

void DatasetWindow::takeOverlay()
{
    m_pImage->setOverlay(m_pOverlayBox->isChecked(), m_pOpacitySlider->value() / 100.0);
    m_pOpacitySlider->setEnabled(m_pOverlayBox->isChecked());
    draw();
}

void DatasetWindow::draw()
{
    if (m_eNext > Step::Count) {
        return; // comes by itself
    }
    if (!m_pImage->error().isEmpty() || m_pImage->image().isEmpty()) {
        m_pView->setBar(CILPalette(), DisplayRange(), QString());
        m_pView->showMessage(tr("The image cannot be shown: %1").arg(m_pImage->error()));
        m_pBar->clearScale();
        return;
    }
    const DisplayRange range = m_pImage->isColored() ? DisplayRange() : m_pImage->range();
    m_pView->showPicture(m_pImage->picture(), m_pImage->size());
    m_pView->setBar(m_pImage->palette(), range, m_pImage->quantity());
    m_pBar->setScale(m_pImage->palette(), range, m_pImage->quantity());
    m_pRange->setColors(m_pImage->palette());
}

void DatasetWindow::showTitle()
{
    setWindowTitle(datasetTitle(*dataset()) + QStringLiteral("[*]"));
    setWindowModified(dataset()->isModified());
}

void DatasetWindow::changeEvent(QEvent* pEvent)
{
    CORVImageWindow::changeEvent(pEvent);
    if (pEvent->type() == QEvent::PaletteChange) {
        drawIcons();
    }
    if (pEvent->type() == QEvent::ActivationChange) {
        setWindowModified(dataset()->isModified());
    }
}

void DatasetWindow::connectRegions()
{
    m_pRegions->setImageSource([this](tag_edisplayunit eUnit) {
        const bool shown = m_pImage->hasUnit() && m_pImage->unit() == eUnit && !m_pImage->image().isEmpty();
        return shown ? &m_pImage->image() : nullptr;
    });
    connect(m_pView, &DatasetView::regionEdited, m_pRegions, &RegionPanel::take);
    connect(m_pView, &DatasetView::regionChosen, m_pRegions, &RegionPanel::choose);
    connect(m_pView, &DatasetView::regionRemovalWanted, m_pRegions, &RegionPanel::remove);
    connect(m_pView, &DatasetView::drawingRefused, this,
            [this](const QString& strReason) { Q_EMIT readOut(tr("No region: %1").arg(strReason)); });
    connect(m_pRegions, &RegionPanel::toolChosen, this, [this](RegionEditor::Tool tool) {
        m_pView->regions().setTool(tool);
        m_pView->update();
    });
    connect(m_pRegions, &RegionPanel::regionChosen, this, [this](int nRegion) {
        // The view's own choice may be the beginning of a drag.
        if (m_pView->regions().chosen() != nRegion) {
            m_pView->regions().choose(nRegion);
            m_pView->update();
        }
    });
    connect(m_pRegions, &RegionPanel::regionsChanged, this, [this] {
        m_pView->regions().setRegions(m_pRegions->regions());
        m_pView->update();
        setWindowModified(dataset()->isModified());
    });
    connect(&history(), &QUndoStack::cleanChanged, this, [this] { setWindowModified(dataset()->isModified()); });
}

// Numbers are those of the main data image, in the unit that it was shown in last.
void DatasetWindow::showRegions()
{
    if (m_pImage->hasUnit()) {
        m_pRegions->measure(m_pImage->unit());
    }
    m_pRegions->setEnabled(!m_pImage->image().isEmpty());
    m_pView->regions().setImage(m_pImage->size(), m_pImage->image().m_fBinning);
    m_pView->regions().setRegions(m_pRegions->regions());
}

void DatasetWindow::tellPixel(int x, int y)
{
    if (x < 0 || y < 0 || m_pImage->image().isEmpty()) {
        Q_EMIT readOut(QString());
        return;
    }
    ReadOut found;
    found.pixel = QPoint(x, y);
    found.pixelMm = pixelSideMm(*dataset(), m_pImage->type());
    found.value = m_pImage->valueAt(found.pixel);
    found.quantity = m_pImage->quantity();
    Q_EMIT readOut(found.text());
}

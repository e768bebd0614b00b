// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/SequenceTab.h"

#include "host/CORVSequenceDataset.h"
#include "host/ReadOut.h"
#include "host/UnitTexts.h"
#include "workbench/application/ColorBarWidget.h"
#include "workbench/application/ColorTableBox.h"
#include "workbench/application/DisplayUnits.h"
#include "workbench/application/ThumbnailModel.h"
#include "workbench/application/ThumbnailView.h"
#include "workbench/application/Thumbnails.h"
#include "workbench/application/UnitBox.h"
#include "workbench/application/pixelSide.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// Along one side.
int pixelAt(double dPart, int nSide)
{
    return std::clamp(static_cast<int>(dPart * nSide), 0, nSide - 1);
}

} // namespace

SequenceTab::SequenceTab(CORVSequenceDataset* pSequence, QWidget* pParent)
    : QWidget(pParent), m_pSequence(pSequence), m_pThumbnails(std::make_unique<Thumbnails>(*pSequence)),
      m_pModel(std::make_unique<ThumbnailModel>(*m_pThumbnails))
{
    setObjectName(QStringLiteral("SequenceTab"));
    const QVector<UnitOffer> offers = unitOffers(m_pThumbnails->tiles().datasets());
    m_pThumbnails->setUnit(startUnit(offers, pSequence->isFluorescence));
    makeControls();
    m_pUnitBox->setOffers(offers, m_pThumbnails->unit());
    const tag_simageadjust& adjust = *pSequence->getImageAdjust();
    m_pColorBox->setColorTable(adjust.m_nColorTable);
    m_pReversedBox->setChecked(adjust.m_bReversed);
    m_pLogBox->setChecked(adjust.m_bLogScale);
    m_pColorBox->setReversed(adjust.m_bReversed);
    m_pThumbnails->setColors(m_pColorBox->colorTable(), adjust.m_bReversed, adjust.m_bLogScale);
    m_pView = new ThumbnailView(*m_pModel, this);
    m_pSizeSlider->setValue(m_pView->side());

    auto* pLayout = new QVBoxLayout(this);
    pLayout->setContentsMargins(6, 6, 6, 6);
    pLayout->addWidget(makeBar());
    pLayout->addWidget(m_pView, 1);
    connectControls();
    showScale();
}

SequenceTab::~SequenceTab()
{
    // The view lets go of the model first.
    delete m_pView;
}

void SequenceTab::makeControls()
{
    m_pUnitBox = new UnitBox(this);
    m_pUnitBox->setObjectName(QStringLiteral("m_pSequenceUnitBox"));
    m_pColorBox = new ColorTableBox(this);
    m_pColorBox->setObjectName(QStringLiteral("m_pSequenceColorBox"));
    m_pReversedBox = new QCheckBox(tr("&Reversed"), this);
    m_pLogBox = new QCheckBox(tr("&Logarithmic"), this);
    m_pScaleBox = new QComboBox(this);
    m_pScaleBox->setObjectName(QStringLiteral("m_pSequenceScaleBox"));
    m_pScaleBox->setAccessibleName(tr("Scale"));
    m_pScaleBox->setToolTip(tr("Whether all images are shown from one minimum to one maximum"));
    m_pScaleBox->addItems({tr("One for all"), tr("Each its own")});
    m_pSizeSlider = new QSlider(Qt::Horizontal, this);
    m_pSizeSlider->setObjectName(QStringLiteral("m_pThumbnailSizeSlider"));
    m_pSizeSlider->setRange(ThumbnailView::kSmallest, ThumbnailView::kLargest);
    m_pSizeSlider->setPageStep(32);
    m_pSizeSlider->setFixedWidth(110);
    m_pSizeSlider->setAccessibleName(tr("Size of the thumbnails"));
    m_pSizeSlider->setToolTip(tr("Size of the thumbnails (Ctrl and the wheel)"));
    m_pColorBar = new ColorBarWidget(Qt::Horizontal, this);
    m_pStateLabel = new QLabel(this);
    m_pStateLabel->setTextFormat(Qt::PlainText);
}

QWidget* SequenceTab::makeBar()
{
    const auto label = [this](const QString& text, QWidget* pBuddy) {
        auto* pLabel = new QLabel(text, this);
        pLabel->setBuddy(pBuddy);
        return pLabel;
    };
    auto* pBar = new QWidget(this);
    auto* pRows = new QVBoxLayout(pBar);
    pRows->setContentsMargins(0, 0, 0, 0);
    auto* pUpper = new QHBoxLayout;
    pUpper->addWidget(label(tr("&Unit:"), m_pUnitBox));
    pUpper->addWidget(m_pUnitBox);
    pUpper->addSpacing(8);
    pUpper->addWidget(label(tr("&Colours:"), m_pColorBox));
    pUpper->addWidget(m_pColorBox, 1000);
    pUpper->addWidget(m_pReversedBox);
    pUpper->addWidget(m_pLogBox);
    pUpper->addStretch(1);
    pUpper->addWidget(m_pStateLabel);
    auto* pLower = new QHBoxLayout;
    pLower->addWidget(label(tr("Sc&ale:"), m_pScaleBox));
    pLower->addWidget(m_pScaleBox);
    pLower->addSpacing(8);
    pLower->addWidget(m_pColorBar, 1);
    pLower->addSpacing(8);
    pLower->addWidget(label(tr("Si&ze:"), m_pSizeSlider));
    pLower->addWidget(m_pSizeSlider);
    pRows->addLayout(pUpper);
    pRows->addLayout(pLower);
    QWidget* pBefore = m_pUnitBox;
    for (QWidget* pNext :
         std::initializer_list<QWidget*>{m_pColorBox, m_pReversedBox, m_pLogBox, m_pScaleBox, m_pSizeSlider, m_pView}) {
        setTabOrder(pBefore, pNext);
        pBefore = pNext;
    }
    return pBar;
}

void SequenceTab::connectControls()
{
    connect(m_pUnitBox, &UnitBox::unitChosen, this, [this](int nUnit) {
        m_pThumbnails->setUnit(static_cast<tag_edisplayunit>(nUnit));
        showState();
    });
    connect(m_pColorBox, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &SequenceTab::takeColors);
    connect(m_pReversedBox, &QCheckBox::toggled, this, &SequenceTab::takeColors);
    connect(m_pLogBox, &QCheckBox::toggled, this, &SequenceTab::takeColors);
    connect(m_pScaleBox, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this](int nIndex) {
        m_pThumbnails->setIndividual(nIndex == 1);
        m_pView->layOut();
    });
    connect(m_pSizeSlider, &QSlider::valueChanged, m_pView, &ThumbnailView::setSide);
    connect(m_pView, &ThumbnailView::sideChanged, m_pSizeSlider, &QSlider::setValue);
    connect(m_pView, &ThumbnailView::tileActivated, this, &SequenceTab::activate);
    connect(m_pView, &ThumbnailView::pointed, this, &SequenceTab::tellPlace);
    connect(m_pThumbnails.get(), &Thumbnails::allChanged, this, &SequenceTab::showScale);
    connect(m_pThumbnails.get(), &Thumbnails::changed, this, &SequenceTab::showState);
    connect(m_pThumbnails.get(), &Thumbnails::finished, this, &SequenceTab::showState);
}

tag_edisplayunit SequenceTab::unit() const
{
    return m_pThumbnails->unit();
}

void SequenceTab::refresh()
{
    m_pThumbnails->readAgain();
    showState();
}

void SequenceTab::takeColors()
{
    tag_simageadjust& adjust = *m_pSequence->getImageAdjust();
    adjust.m_nColorTable = m_pColorBox->colorTable();
    adjust.m_bReversed = m_pReversedBox->isChecked();
    adjust.m_bLogScale = m_pLogBox->isChecked();
    m_pColorBox->setReversed(adjust.m_bReversed);
    m_pThumbnails->setColors(adjust.m_nColorTable, adjust.m_bReversed, adjust.m_bLogScale);
    Q_EMIT m_pSequence->sequencePropertyChanged(m_pSequence);
}

void SequenceTab::showScale()
{
    if (m_pThumbnails->isIndividual()) {
        m_pColorBar->clearScale();
    } else {
        m_pColorBar->setScale(m_pThumbnails->palette(), m_pThumbnails->commonRange(),
                              displayUnitQuantity(m_pThumbnails->unit()));
    }
    showState();
}

// Only what a user would wonder about: images to come, and images that cannot be shown.
void SequenceTab::showState()
{
    int failed = 0;
    for (int i = 0; i < m_pThumbnails->tiles().count(); ++i) {
        failed += m_pThumbnails->state(i) == Thumbnails::State::Failed ? 1 : 0;
    }
    QString text = m_pThumbnails->isFinished() ? QString() : tr("Reading ...");
    if (failed > 0 && text.isEmpty()) {
        text = failed == 1 ? tr("1 image cannot be shown") : tr("%1 images cannot be shown").arg(failed);
    }
    m_pStateLabel->setText(text);
}

void SequenceTab::activate(int nTile)
{
    const SequenceTiles::Tile& tile = m_pThumbnails->tiles().tile(nTile);
    if (tile.dataset != nullptr) {
        Q_EMIT imageActivated(tile.dataset, tile.photograph ? IMAGETYPE_PHOTOGRAPH : IMAGETYPE_MAIN_DATA);
    }
}

void SequenceTab::tellPlace(int nTile, const QPointF& place)
{
    if (nTile < 0 || m_pThumbnails->imageSize(nTile).isEmpty()) {
        Q_EMIT readOut(QString());
        return;
    }
    const SequenceTiles::Tile& tile = m_pThumbnails->tiles().tile(nTile);
    const QSize size = m_pThumbnails->imageSize(nTile);
    ReadOut found;
    found.image = m_pModel->grid().description(nTile);
    found.pixel = QPoint(pixelAt(place.x(), size.width()), pixelAt(place.y(), size.height()));
    found.pixelMm = pixelSideMm(*tile.dataset, tile.photograph ? IMAGETYPE_PHOTOGRAPH : IMAGETYPE_MAIN_DATA);
    double value = 0.0;
    if (m_pThumbnails->valueAt(nTile, place.x(), place.y(), &value, &found.averaged)) {
        found.value = value;
        found.quantity = displayUnitQuantity(m_pThumbnails->unit());
    }
    Q_EMIT readOut(found.text());
}

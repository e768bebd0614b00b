// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/SpUnmixCompositeWnd.h"

#include "host/CORVLog.h"
#include "host/CORVQImageView.h"
#include "spectra/logLine.h"
#include "windows/compositeControls.h"
#include "windows/compositePicture.h"
#include "windows/compositeReadOut.h"
#include "windows/widgets/ChannelDelegate.h"
#include "windows/widgets/exportGraphics.h"
#include "windows/widgets/sendReadOut.h"

#include <QAbstractSpinBox>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// The columns of one spot.
XTNT::Matrix<double> columnsOf(const XTNT::Matrix<double>& data, long long first, long long count)
{
    XTNT::Matrix<double> columns(data.num_rows(), count);
    for (long long row = 0; row < data.num_rows(); ++row) {
        std::copy_n(data[row] + first, count, columns[row]);
    }
    return columns;
}

// Disables a window while it lives. That takes the focus away and ends the entry of a number half way, so whoever types
// or steps finds both afterwards as they were.
class Disabled
{
public:
    explicit Disabled(QWidget& window) : m_window(window)
    {
        QWidget* pFocus = window.window()->focusWidget();
        if (pFocus != nullptr && window.isAncestorOf(pFocus)) {
            m_pFocus = pFocus;
            m_pEdit = qobject_cast<QAbstractSpinBox*>(pFocus) != nullptr ? pFocus->findChild<QLineEdit*>() : nullptr;
        }
        if (m_pEdit != nullptr) {
            m_strTyped = m_pEdit->text();
            m_nCursor = m_pEdit->cursorPosition();
        }
        window.setEnabled(false);
    }
    ~Disabled()
    {
        m_window.setEnabled(true);
        if (m_pFocus != nullptr) {
            m_pFocus->setFocus(Qt::OtherFocusReason);
        }
        if (m_pEdit != nullptr && m_pEdit->text() != m_strTyped) {
            const QSignalBlocker blocker(m_pEdit);
            m_pEdit->setText(m_strTyped);
            m_pEdit->setCursorPosition(m_nCursor);
        }
    }
    Disabled(const Disabled&) = delete;
    Disabled& operator=(const Disabled&) = delete;

private:
    QWidget& m_window;
    QPointer<QWidget> m_pFocus;
    QPointer<QLineEdit> m_pEdit;
    QString m_strTyped;
    int m_nCursor = 0;
};

} // namespace

SpUnmixCompositeWnd::SpUnmixCompositeWnd(QWidget* pParent) : QDialog(pParent)
{
    setupUi(this);
    init();
}

SpUnmixCompositeWnd::~SpUnmixCompositeWnd()
{
    // It outlives the members, and is left by the pointer on its way.
    m_pView->disconnect(this);
    qDeleteAll(m_channels);
    delete m_pToolbarFrame;
}

void SpUnmixCompositeWnd::init()
{
    m_pView = new CORVQImageView(m_pViewFrame, "CompositeView");
    m_pView->setAccessibleName(tr("Composite"));
    m_pView->setFocusPolicy(Qt::StrongFocus);
    auto* pViewLayout = new QVBoxLayout(m_pViewFrame);
    pViewLayout->setContentsMargins(0, 0, 0, 0);
    pViewLayout->addWidget(m_pView);
    setTabOrder(m_pCloseBtn, m_pView);

    m_pImageList->setItemDelegate(new ChannelDelegate(m_pImageList));
    groupBox->setEnabled(false);
    m_pUnitCB->setEnabled(false);
    m_pSpotLabel->hide();
    m_pSpotSpinBox->hide();
    createToolbar();
    m_pWhenIdle = new QTimer(this);
    m_pWhenIdle->setSingleShot(true);
    connectControls();
}

void SpUnmixCompositeWnd::connectControls()
{
    using Wnd = SpUnmixCompositeWnd;
    const auto doubleChanged = qOverload<double>(&QDoubleSpinBox::valueChanged);
    connect(m_pImageList, &QListWidget::currentRowChanged, this, &Wnd::onImageListItemSelectionChanged);
    connect(m_pImageList, &QListWidget::itemChanged, this, &Wnd::onImageItemChanged);
    connect(m_pDataSpanSlider, &QSpanSlider::lowerValueChanged, this, &Wnd::onChangeLowerSpan);
    connect(m_pDataSpanSlider, &QSpanSlider::upperValueChanged, this, &Wnd::onChangeUpperSpan);
    connect(m_pMinSpinBox, doubleChanged, this, &Wnd::onMinSpinBoxChanged);
    connect(m_pMaxSpinBox, doubleChanged, this, &Wnd::onMaxSpinBoxChanged);
    connect(m_pColorBtn, &QPushButton::clicked, this, &Wnd::onClickColorLabel);
    connect(m_pBrightnessSlider, &QSlider::valueChanged, this, &Wnd::onBrightnessSliderChanged);
    connect(m_pBrightnessSpinBox, doubleChanged, this, &Wnd::onBrightnessChanged);
    connect(m_pLogScaleChkBox, &QCheckBox::toggled, this, &Wnd::onToggleLogScale);
    connect(m_pLabelEdit, &QLineEdit::textChanged, this, &Wnd::onLabelChanged);
    connect(m_pUnitCB, qOverload<int>(&QComboBox::currentIndexChanged), this, &Wnd::onUnitChanged);
    connect(m_pSpotSpinBox, qOverload<int>(&QSpinBox::valueChanged), this,
            [this](int nSpot) { setCurrentSpot(nSpot - 1); });
    connect(m_pCloseBtn, &QPushButton::clicked, this, &Wnd::onClickClose);
    connect(m_pView, &GLImageView::pixelUnderPointer, this, &Wnd::tellPixel);
    connect(m_pWhenIdle, &QTimer::timeout, this, [this] {
        if (isVisible()) {
            computeWhenDue();
        }
    });
}

void SpUnmixCompositeWnd::setCompositeData(CILImage* pPhoto, const XTNT::Matrix<double>& concentrations, int nUnitIndex,
                                           const std::vector<int>& pixelIndices, int nWidth, int nHeight,
                                           const QList<CompositeChannel>& channels, int nSpots)
{
    const CompositeMaps given{concentrations, pixelIndices, nWidth, nHeight, nSpots};
    if (!compositeSizesMatch(given, channels.size())) {
        logLine(compositeSizeMismatchText(), CORVLOG_ERROR);
        return;
    }
    try {
        CILImage background = copyOf(pPhoto);
        std::vector<int> indices = pixelIndices;
        takeLayers(compositeStartLayers(given, channels, background));
        m_backgroundImage = std::move(background);
        m_pixelIndices = std::move(indices);
    } catch (const std::bad_alloc&) {
        logLowMemory();
        return;
    }
    m_nSpotCount = nSpots;
    m_nCurrentSpot = 0;
    m_nImageWidth = nWidth;
    m_nImageHeight = nHeight;
    m_pPhotoImage = pPhoto;
    m_data = concentrations;
    m_spotData = concentrations;

    m_pUnitCB->setEnabled(false);
    m_pUnitCB->setCurrentIndex(nUnitIndex);
    m_pMinSpinBox->m_bExponentDisplay = showsExponent(nUnitIndex, false);
    m_pMaxSpinBox->m_bExponentDisplay = m_pMinSpinBox->m_bExponentDisplay;
    const QSignalBlocker blocker(m_pSpotSpinBox);
    m_pSpotSpinBox->setRange(1, std::max(1, nSpots));
    m_pSpotSpinBox->setValue(1);
    m_pSpotLabel->setVisible(nSpots > 1);
    m_pSpotSpinBox->setVisible(nSpots > 1);

    rebuildBackgroundMenu();
    fillList();
    // Several in a row, as of a scan, make one picture.
    m_bStale = true;
    m_bDue = true;
    m_pWhenIdle->start();
}

// With current statistics; empty for none. Throws std::bad_alloc.
CILImage SpUnmixCompositeWnd::copyOf(const CILImage* pImage)
{
    CILImage copy = pImage != nullptr ? *pImage : CILImage();
    copy.RefreshImageStats();
    return copy;
}

void SpUnmixCompositeWnd::logLowMemory()
{
    logLine(QStringLiteral("SpUnmixCompositeWnd: low memory"), CORVLOG_WARNING);
}

void SpUnmixCompositeWnd::takeLayers(const QList<CompositeLayer>& layers)
{
    qDeleteAll(m_channels);
    m_channels.clear();
    m_ranges.clear();
    for (const CompositeLayer& layer : layers) {
        m_channels.append(new CompositeChannel(layer.channel));
        m_ranges.append(qMakePair(layer.minimum, layer.maximum));
    }
}

QStringList SpUnmixCompositeWnd::labels() const
{
    QStringList names;
    for (int nRow = 0; nRow < m_pImageList->count(); ++nRow) {
        names.append(m_pImageList->item(nRow)->text());
    }
    return names;
}

void SpUnmixCompositeWnd::fillList()
{
    const QStringList before = labels();
    const int nRow = m_pImageList->currentRow();
    {
        const QSignalBlocker blocker(m_pImageList);
        m_pImageList->clear();
        for (int i = 0; i < m_channels.size(); ++i) {
            auto* pItem = new QListWidgetItem(m_channels[i]->label);
            if (!isBackground(i)) {
                pItem->setForeground(QBrush(m_channels[i]->color));
            }
            pItem->setCheckState(Qt::Checked);
            m_pImageList->insertItem(i, pItem);
        }
        m_pImageList->setCurrentRow(nRow >= 0 && labels() == before ? nRow : 0);
    }
    onImageListItemSelectionChanged();
}

void SpUnmixCompositeWnd::setCurrentSpot(int nSpot)
{
    QList<CompositeLayer> changed = layers();
    if (m_channels.isEmpty() || !takeCompositeSpot(maps(), nSpot, changed)) {
        return;
    }
    try {
        const long long pixels = maps().pixelsPerSpot();
        m_spotData = columnsOf(m_data, nSpot * pixels, pixels);
    } catch (const std::bad_alloc&) {
        logLowMemory();
        return;
    }
    m_nCurrentSpot = nSpot;
    for (int i = 0; i < changed.size(); ++i) {
        m_ranges[i] = qMakePair(changed[i].minimum, changed[i].maximum);
    }
    const QSignalBlocker blocker(m_pSpotSpinBox);
    m_pSpotSpinBox->setValue(nSpot + 1);
    onImageListItemSelectionChanged();
    updateComposite();
}

const QImage& SpUnmixCompositeWnd::getCompositeImage()
{
    computeWhenDue();
    return m_compositeImage;
}

// What the framebuffer of the view would show, without the mark of the focus, and also while the window is hidden.
QImage SpUnmixCompositeWnd::getViewImage()
{
    computeWhenDue();
    return m_pView != nullptr ? m_pView->renderImage() : QImage();
}

CompositeMaps SpUnmixCompositeWnd::maps() const
{
    return {m_data, m_pixelIndices, m_nImageWidth, m_nImageHeight, m_nSpotCount};
}

QList<CompositeLayer> SpUnmixCompositeWnd::layers() const
{
    QList<CompositeLayer> list;
    for (int i = 0; i < m_channels.size(); ++i) {
        CompositeLayer layer;
        layer.channel = *m_channels[i];
        layer.minimum = m_ranges[i].first;
        layer.maximum = m_ranges[i].second;
        layer.checked = m_pImageList->item(i)->checkState();
        list.append(layer);
    }
    return list;
}

void SpUnmixCompositeWnd::updateComposite()
{
    if (m_channels.isEmpty()) {
        return;
    }
    m_bStale = true;
    m_bDue = true;
    if (isVisible()) {
        computeWhenDue();
    }
}

void SpUnmixCompositeWnd::computeWhenDue()
{
    if (m_bDue) {
        computeComposite();
    }
}

void SpUnmixCompositeWnd::computeComposite()
{
    const Disabled meanwhile(*this);
    m_bDue = false;
    try {
        m_compositeImage = compositePicture(maps(), m_nCurrentSpot, layers(), m_backgroundImage);
        m_bStale = false;
        if (m_pView != nullptr) {
            m_pView->setImage(m_compositeImage);
        }
        showLabels();
    } catch (...) {
        logLowMemory();
    }
}

void SpUnmixCompositeWnd::showLabels()
{
    if (m_pView != nullptr) {
        m_pView->setLabelList(compositeLabels(layers()));
        m_pView->refreshView();
    }
}

// Of the entry that is chosen in the list.
void SpUnmixCompositeWnd::tellPixel(int nX, int nY)
{
    const CompositeChannel* pChannel = currentChannel();
    const auto found = pChannel == nullptr
                           ? std::nullopt
                           : compositeReadOut(maps(), m_nCurrentSpot, m_backgroundImage, m_pImageList->currentRow(),
                                              pChannel->label, m_pUnitCB->currentIndex(), QPoint(nX, nY));
    sendReadOut(*m_pView, found ? found->text() : QString());
}

// The picture is that of the controls unless something tells otherwise, such as another background.
void SpUnmixCompositeWnd::onTabSelected(QString strName)
{
    if (strName.compare(QLatin1String("Composite"), Qt::CaseInsensitive) == 0 && m_bStale) {
        updateComposite();
    }
}

void SpUnmixCompositeWnd::onClickClose()
{
    const QPointer<SpUnmixCompositeWnd> pSelf(this);
    Q_EMIT finished(1);
    if (pSelf != nullptr) {
        done(1);
    }
}

void SpUnmixCompositeWnd::reject()
{
    onClickClose();
}

void SpUnmixCompositeWnd::onClickExportGraphics()
{
    exportGraphics(this, getCompositeImage());
}

void SpUnmixCompositeWnd::onTransferCompositeImage()
{
    const QPointer<SpUnmixCompositeWnd> pSelf(this);
    Q_EMIT updateImageCubeRGB();
    if (pSelf != nullptr && m_pView != nullptr) {
        m_pView->refreshView();
    }
}

void SpUnmixCompositeWnd::showEvent(QShowEvent* pEvent)
{
    QDialog::showEvent(pEvent);
    computeWhenDue();
}

void SpUnmixCompositeWnd::changeEvent(QEvent* pEvent)
{
    QDialog::changeEvent(pEvent);
    if (pEvent->type() == QEvent::LanguageChange) {
        languageChange();
    } else if (pEvent->type() == QEvent::PaletteChange || pEvent->type() == QEvent::StyleChange) {
        updateIcons();
    }
}

void SpUnmixCompositeWnd::languageChange()
{
    retranslateUi(this);
}

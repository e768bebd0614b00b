// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/SpUnmixSpectrumLibraryWnd.h"

#include "host/CORVGLXYPlot1.h"
#include "host/CORVLog.h"
#include "host/CORVUtilityFns.h"
#include "host/SPlotDisplaySettings.h"
#include "spectra/SpectrumAxis.h"
#include "spectra/SpumKyvoDatabase.h"
#include "spectra/SpumKyvoSpectrumCtrl.h"
#include "spectra/bandCoverage.h"
#include "spectra/libraryChoice.h"
#include "spectra/logLine.h"
#include "spectra/plainToolTip.h"
#include "spectra/spectrumScale.h"

#include <QKeyEvent>

namespace {

// More curves than these cannot be told apart, and take long to draw.
constexpr int kMostCurves = 50;

} // namespace

SpUnmixSpectrumLibraryWnd::SpUnmixSpectrumLibraryWnd(QWidget* pParent, Qt::WindowFlags flags, bool bModal)
    : QDialog(pParent, flags)
{
    setupUi(this);
    setModal(bModal);
    init();
}

SpUnmixSpectrumLibraryWnd::~SpUnmixSpectrumLibraryWnd()
{
    clearRows();
    qDeleteAll(m_leavingPages);
    delete m_pPlot;
}

void SpUnmixSpectrumLibraryWnd::init()
{
    m_pPlot = new CORVGLXYPlot1(m_pGBSpectrumPlot, tr("Spectrum Plot"));
    m_pPlot->setLegendVisible(m_pLegendCkb->isChecked());
    m_pPlotLayout->insertWidget(0, m_pPlot, 1);
    m_rowTimer.setSingleShot(true);
    m_leaveTimer.setSingleShot(true);
    connectControls();
    for (const QString& name : SpumKyvoDatabase().listLibraries()) {
        auto* pItem = new QListWidgetItem(name, m_pSpumLibraryList);
        pItem->setToolTip(plainToolTip(name));
    }
    m_bMultiSelect = true;
    m_strPreload.clear();
    clearRows();
    updateSpectrumPlot();
    m_pSpumLibraryList->setFocus();
}

void SpUnmixSpectrumLibraryWnd::connectControls()
{
    connect(m_pNormalizedCkb, &QCheckBox::stateChanged, this, &SpUnmixSpectrumLibraryWnd::updateSpectrumPlot);
    connect(m_pLegendCkb, &QCheckBox::stateChanged, this, &SpUnmixSpectrumLibraryWnd::onToggleShowLegendCheckBox);
    connect(m_pSpumLibraryList, &QListWidget::itemClicked, this, &SpUnmixSpectrumLibraryWnd::onLibraryClicked);
    connect(m_pSpumLibraryList, &QListWidget::currentItemChanged, this, &SpUnmixSpectrumLibraryWnd::onListChanged);
    connect(m_pSpumLibraryList, &QListWidget::itemSelectionChanged, this, &SpUnmixSpectrumLibraryWnd::onListChanged);
    connect(m_pQualifiedCkb, &QCheckBox::stateChanged, this, &SpUnmixSpectrumLibraryWnd::onCheckQualified);
    connect(m_pNextBtn, &QPushButton::clicked, this, &SpUnmixSpectrumLibraryWnd::onClickNext);
    connect(m_pCloseBtn, &QPushButton::clicked, this, &SpUnmixSpectrumLibraryWnd::onClickCancel);
    connect(m_pShowAllBtn, &QPushButton::clicked, this, &SpUnmixSpectrumLibraryWnd::onClickShowAll);
    connect(&m_rowTimer, &QTimer::timeout, this, &SpUnmixSpectrumLibraryWnd::addRows);
    connect(&m_leaveTimer, &QTimer::timeout, this, &SpUnmixSpectrumLibraryWnd::dropSlice);
    m_pSpumLibraryList->installEventFilter(this);
    m_pSpumLibraryList->viewport()->installEventFilter(this);
}

void SpUnmixSpectrumLibraryWnd::setReferencePairs(const QList<KeyPair>& pairs, int nAxis)
{
    m_referencePairs = pairs;
    m_eAxis = nAxis;
    m_covered = bandCoverage(m_spectra, m_referencePairs);
    onCheckQualified(m_pQualifiedCkb->checkState());
    updateSpectrumPlot();
}

void SpUnmixSpectrumLibraryWnd::setMultiSelect(bool bMultiSelect)
{
    m_bMultiSelect = bMultiSelect;
    if (!bMultiSelect) {
        setWindowTitle(tr("Import Single Spectrum"));
        m_pNextBtn->setText(tr("Import"));
        m_pAppendChk->hide();
    }
    updateSpectrumPlot();
}

void SpUnmixSpectrumLibraryWnd::setLoadMode(bool bOn)
{
    m_pAppendChk->setVisible(bOn);
    m_pNextBtn->setText(tr("Load"));
    updateSpectrumPlot();
}

void SpUnmixSpectrumLibraryWnd::preload(bool bPreload, const QString& strName)
{
    m_bPreload = bPreload;
    m_strPreload = strName;
    const QList<QListWidgetItem*> named =
        m_pSpumLibraryList->findItems(strName, Qt::MatchFixedString | Qt::MatchCaseSensitive);
    {
        const QSignalBlocker blocker(m_pSpumLibraryList);
        m_pSpumLibraryList->setCurrentItem(named.isEmpty() ? nullptr : named.first());
    }
    onUpdateCurrentLibrary();
}

bool SpUnmixSpectrumLibraryWnd::isAppendChecked() const
{
    return m_pAppendChk->isChecked();
}

QList<SpectrumPlotParams*> SpUnmixSpectrumLibraryWnd::selectedSpectra()
{
    QList<SpectrumPlotParams*> selected;
    for (SpectrumPlotParams* pSpectrum : qAsConst(m_spectra)) {
        if (pSpectrum->readControl().selected && pSpectrum->hasData()) {
            selected.append(new SpectrumPlotParams(*pSpectrum));
            selected.last()->control.clear();
            selected.last()->settings.index = selected.size() - 1;
        }
    }
    return selected;
}

void SpUnmixSpectrumLibraryWnd::onCheckQualified(int nState)
{
    const SpumKyvoDatabase database;
    for (int i = 0; i < m_pSpumLibraryList->count(); ++i) {
        QListWidgetItem* pItem = m_pSpumLibraryList->item(i);
        bool bShown = true;
        if (nState != Qt::Unchecked) {
            QList<SpectrumPlotParams*> spectra;
            QString note;
            bShown = database.loadLibrary(pItem->text(), spectra, note);
            if (bShown) {
                m_pNotationLE->setText(note);
                bShown = !bandCoverage(spectra, m_referencePairs).contains(false);
            }
            qDeleteAll(spectra);
        }
        pItem->setHidden(!bShown);
    }
}

void SpUnmixSpectrumLibraryWnd::onUpdateCurrentLibrary()
{
    m_pTriedItem = m_pSpumLibraryList->currentItem();
    const QString name = m_pTriedItem != nullptr ? m_pTriedItem->text() : QString();
    const SpumKyvoDatabase database;
    QStringList excitations;
    QStringList emissions;
    database.loadBands(name, excitations, emissions);
    QList<SpectrumPlotParams*> spectra;
    QString note;
    if (!database.loadLibrary(name, spectra, note)) {
        qDeleteAll(spectra);
        logLine(QStringLiteral("SpumKyvo: Unexpected format! Unable to load %1.csv.").arg(name), CORVLOG_ERROR);
        return;
    }
    m_excitationTexts = excitations;
    m_emissionTexts = emissions;
    showSpectra(spectra);
    m_pNotationLE->setText(note);
    m_pNotationLE->setCursorPosition(0);
    updateSpectrumPlot();
}

// The keyboard chooses a library by making it current or by selecting the one that is.
void SpUnmixSpectrumLibraryWnd::onListChanged()
{
    const QListWidgetItem* pItem = m_pSpumLibraryList->currentItem();
    if (pItem != nullptr && pItem->isSelected() && pItem != m_pTriedItem) {
        m_bTriedByPress = true;
        onUpdateCurrentLibrary();
    }
}

// A click on another library has shown it when the button was pressed; one on the same library reads it again.
void SpUnmixSpectrumLibraryWnd::onLibraryClicked()
{
    if (!m_bTriedByPress) {
        onUpdateCurrentLibrary();
    }
    m_bTriedByPress = false;
}

bool SpUnmixSpectrumLibraryWnd::eventFilter(QObject* pWatched, QEvent* pEvent)
{
    if (pWatched == m_pSpumLibraryList->viewport() && pEvent->type() == QEvent::MouseButtonPress) {
        m_bTriedByPress = false;
    }
    if (pWatched == m_pSpumLibraryList && pEvent->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(pEvent)->key() == Qt::Key_Down && m_pSpumLibraryList->selectedItems().isEmpty() &&
        m_pSpumLibraryList->currentItem() != nullptr) {
        m_pSpumLibraryList->currentItem()->setSelected(true); // the first library, before those beneath it
        return true;
    }
    return QDialog::eventFilter(pWatched, pEvent);
}

void SpUnmixSpectrumLibraryWnd::updateSpectrumPlot()
{
    m_pPlot->clear();
    LibraryChoice choice;
    int nCurves = 0;
    for (int i = 0; i < m_spectra.size(); ++i) {
        if (!m_spectra.at(i)->readControl().selected) {
            continue;
        }
        ++choice.selected;
        if (nCurves < kMostCurves && plotCurve(i)) {
            ++nCurves;
        }
        if (choice.covered && !m_covered.at(i)) {
            choice.covered = false;
            choice.uncovered = m_spectra.at(i)->settings.name;
            choice.missing = firstMissingPair(*m_spectra.at(i), m_referencePairs);
        }
    }
    showChoice(choice, nCurves);
    m_pPlot->setXAxisLabel(m_spectra.isEmpty() ? QString() : axisLabel(m_spectra.last()->axis));
    m_pPlot->setLegendVisible(m_pLegendCkb->isChecked());
    if (m_pPlot->isVisible()) {
        m_pPlot->plotData();
    }
}

// False when there is nothing to draw.
bool SpUnmixSpectrumLibraryWnd::plotCurve(int nSpectrum)
{
    const SpectrumPlotParams& spectrum = *m_spectra.at(nSpectrum);
    const bool bNormalized = m_pNormalizedCkb->isChecked();
    const QVector<double> y = curveValues(bNormalized ? dividedByLargest(spectrum.values()) : spectrum.values());
    if (!hasFiniteValue(y)) {
        return false;
    }
    // By the place: spectra may be named alike.
    const QString key = QString::number(nSpectrum);
    m_pPlot->addDataLine(key, spectrum.settings.name, curveValues(spectrum.axisValues()), y);
    SPlotDisplaySettings settings;
    settings.color.setNamedColor(spectrum.settings.color);
    m_pPlot->setDisplaySettings(key, settings);
    return true;
}

void SpUnmixSpectrumLibraryWnd::showChoice(LibraryChoice& choice, int nCurves)
{
    choice.anyLibrary = m_pSpumLibraryList->count() > 0;
    choice.multiSelect = m_bMultiSelect;
    choice.appendOffered = !m_pAppendChk->isHidden(); // also while the window itself is not shown yet
    m_pNextBtn->setEnabled(canBeTaken(choice));
    QString hint = choiceHint(choice);
    if (nCurves == kMostCurves && choice.selected > nCurves) {
        hint += (hint.isEmpty() ? QString() : QStringLiteral("\n")) +
                tr("%1 of %2 selected spectra are drawn.").arg(nCurves).arg(choice.selected);
    }
    m_pHintLabel->setText(hint);
}

void SpUnmixSpectrumLibraryWnd::onToggleShowLegendCheckBox()
{
    m_pPlot->setLegendVisible(m_pLegendCkb->isChecked());
}

void SpUnmixSpectrumLibraryWnd::showEvent(QShowEvent* pEvent)
{
    QDialog::showEvent(pEvent);
    updateSpectrumPlot(); // which does not draw before
}

void SpUnmixSpectrumLibraryWnd::onClickNext()
{
    done(Accepted);
}

void SpUnmixSpectrumLibraryWnd::onClickCancel()
{
    CORVUtilityFns::setSpumBatchStatus(false);
    done(Rejected);
}

// Escape and the frame's button.
void SpUnmixSpectrumLibraryWnd::reject()
{
    onClickCancel();
}

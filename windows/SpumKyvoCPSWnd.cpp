// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/SpumKyvoCPSWnd.h"

#include "host/CORVGLXYPlot1.h"
#include "host/CORVUtilityFns.h"
#include "host/SPlotDisplaySettings.h"
#include "spectra/DefaultColors.h"
#include "spectra/SpectrumAxis.h"
#include "spectra/colorSwatch.h"
#include "spectra/plainToolTip.h"
#include "spectra/spectrumScale.h"

#include <QEvent>
#include <QPalette>
#include <QPushButton>
#include <QShowEvent>
#include <QSignalBlocker>

#include <algorithm>

namespace {

const char* const kYFormat = "%.2f";
const char* const kResultLabel = "Computed";
const char* const kResultColor = "black";
constexpr int kToleranceDecimals = 3;

// The place of a spectrum tells its line from others of its name.
void addLine(CORVGLXYPlot1& plot, int nPlace, const SpectrumPlotParams& spectrum, const XTNT::Vector<double>& values)
{
    const QString key = QString::number(nPlace);
    const QVector<double> y = curveValues(values);
    if (!hasFiniteValue(y) || !plot.addDataLine(key, spectrum.settings.name, curveValues(spectrum.axisValues()), y)) {
        return;
    }
    SPlotDisplaySettings settings;
    settings.color.setNamedColor(spectrum.settings.color);
    plot.setDisplaySettings(key, settings);
}

XTNT::Vector<double> valuesOf(const SpectrumPlotParams& spectrum, const QCheckBox& normalized)
{
    return normalized.isChecked() ? dividedByLargest(spectrum.values()) : spectrum.values();
}

} // namespace

SpumKyvoCPSWnd::SpumKyvoCPSWnd(QWidget* pParent) : QDialog(pParent)
{
    setupUi(this);
    init();
}

SpumKyvoCPSWnd::~SpumKyvoCPSWnd()
{
    allowClosing();
    qDeleteAll(m_spectra);
    delete m_pPlotA;
    delete m_pPlotB;
    delete m_pPlotC;
}

void SpumKyvoCPSWnd::init()
{
    m_pPlotA = new CORVGLXYPlot1(m_pGBSpectrumPlotA, tr("Spectrum Plot A"));
    m_pPlotB = new CORVGLXYPlot1(m_pGBSpectrumPlotB, tr("Spectrum Plot B"));
    m_pPlotC = new CORVGLXYPlot1(m_pGBSpectrumPlotC, tr("Spectrum Plot C"));
    gridLayoutA->addWidget(m_pPlotA, 0, 0);
    gridLayoutB->addWidget(m_pPlotB, 0, 0);
    gridLayoutC->addWidget(m_pPlotC, 0, 0);
    for (CORVGLXYPlot1* pPlot : {m_pPlotA, m_pPlotB, m_pPlotC}) {
        pPlot->setYLabelFormat(QLatin1String(kYFormat));
    }
    for (const QString& name : defaultSpectrumColors()) {
        m_pColorCB->addItem(colorSwatch(name), name);
    }
    // Enter ends the editing of a name and does no more.
    for (QAbstractButton* pButton : m_pButtonBox->buttons()) {
        static_cast<QPushButton*>(pButton)->setAutoDefault(false);
    }
    setApplyEnabled(false);
    keepEquationLegible();
    connectControls();
}

void SpumKyvoCPSWnd::connectControls()
{
    connect(m_pListBoxA, &QListWidget::currentRowChanged, this, &SpumKyvoCPSWnd::updateSpectrumPlot);
    connect(m_pListBoxB, &QListWidget::itemSelectionChanged, this, &SpumKyvoCPSWnd::updateSpectrumPlot);
    for (const QCheckBox* pBox : {m_pNormalizedA, m_pNormalizedB, m_pNormalizedC, m_pAutoScale, m_pOffset}) {
        connect(pBox, &QCheckBox::stateChanged, this, &SpumKyvoCPSWnd::updateSpectrumPlot);
    }
    connect(m_pErrorSlider, &QSlider::valueChanged, this, &SpumKyvoCPSWnd::updateSpectrumPlot);
    connect(m_pIndexCB, qOverload<int>(&QComboBox::currentIndexChanged), this, &SpumKyvoCPSWnd::onSaveIndexChanged);
    connect(m_pButtonBox, &QDialogButtonBox::clicked, this, &SpumKyvoCPSWnd::onClickApply);
    connect(m_pButtonBox, &QDialogButtonBox::rejected, this, &SpumKyvoCPSWnd::reject);
}

bool SpumKyvoCPSWnd::setSpectra(QList<SpectrumPlotParams*>& spectra)
{
    if (spectra.size() < 2) {
        return false;
    }
    QList<SpectrumPlotParams*> copies;
    for (const SpectrumPlotParams* pSpectrum : spectra) {
        copies.append(new SpectrumPlotParams(*pSpectrum));
        copies.last()->control.clear(); // rows of the list stay as they are
    }
    qDeleteAll(m_spectra);
    m_spectra = copies;
    m_result = *m_spectra.first();
    m_result.setValues(XTNT::Vector<double>(m_result.points.size())); // nothing is computed yet
    m_computed.reset();
    {
        const QSignalBlocker blocker(m_pIndexCB);
        m_pIndexCB->clear();
        m_pIndexCB->addItems(savePlaces(m_spectra.size()));
        m_pIndexCB->setCurrentIndex(m_pIndexCB->count() - 1);
    }
    onSaveIndexChanged(m_pIndexCB->currentIndex());
    {
        const QSignalBlocker blocker(m_pErrorSlider);
        m_pErrorSlider->setValue(0);
    }
    fillLists();
    m_pPlotB->clear();
    m_pPlotC->clear();
    updateSpectrumPlot();
    return true;
}

// Spectra without data are in neither list, so that places in the lists are no rows: each entry tells its row.
void SpumKyvoCPSWnd::fillLists()
{
    const QSignalBlocker blockerA(m_pListBoxA);
    const QSignalBlocker blockerB(m_pListBoxB);
    for (QListWidget* pList : {m_pListBoxA, m_pListBoxB}) {
        pList->clear();
        for (int i = 0; i < m_spectra.size(); ++i) {
            const SpectrumSettings& settings = m_spectra.at(i)->settings;
            if (m_spectra.at(i)->hasData()) {
                auto* pItem = new QListWidgetItem(colorSwatch(settings.color), rowText(i, settings.name), pList);
                pItem->setToolTip(plainToolTip(settings.name));
            }
        }
    }
    m_pListBoxB->setCurrentRow(0);
    m_pListBoxA->setCurrentRow(1);
}

SpectrumPlotParams& SpumKyvoCPSWnd::getResult()
{
    m_result.settings.index = m_pIndexCB->currentIndex() + 1;
    m_result.settings.name = m_pNameLE->text();
    m_result.settings.color = m_pColorCB->currentText();
    return m_result;
}

void SpumKyvoCPSWnd::setColorIndex(const QList<SpectrumPlotParams*>& spectra, int nStart)
{
    const int nPosition = unusedColorPosition(spectra, nStart);
    if (nPosition < 0) {
        return;
    }
    if (nPosition < m_pIndexCB->count()) {
        m_pIndexCB->setCurrentIndex(nPosition);
    }
    m_pColorCB->setCurrentIndex(nPosition);
}

int SpumKyvoCPSWnd::mixedRow() const
{
    const QListWidgetItem* pItem = m_pListBoxA->currentItem();
    return pItem != nullptr ? rowOfText(pItem->text()) : -1;
}

QList<int> SpumKyvoCPSWnd::knownRows() const
{
    QList<int> rows;
    for (int i = 0; i < m_pListBoxB->count(); ++i) {
        if (m_pListBoxB->item(i)->isSelected()) {
            rows << rowOfText(m_pListBoxB->item(i)->text());
        }
    }
    return rows;
}

void SpumKyvoCPSWnd::updateSpectrumPlot()
{
    m_pPlotA->clear();
    const int nMixed = mixedRow();
    if (nMixed < 0) {
        setApplyEnabled(false);
        m_pPlotA->plotData();
        return;
    }
    PureSpectrumTask task;
    task.mixed = valuesOf(*m_spectra.at(nMixed), *m_pNormalizedA);
    const QList<int> known = knownRows();
    for (const int nRow : known) {
        task.known << valuesOf(*m_spectra.at(nRow), *m_pNormalizedB);
    }
    task.autoScale = m_pAutoScale->isChecked();
    task.tolerance = errorTolerance(m_pErrorSlider->value(), m_pErrorSlider->maximum());
    task.fitOffset = m_pOffset->isChecked();
    if (m_computed.compute(task)) {
        m_result.points = m_spectra.at(nMixed)->points;
        m_result.axis = m_spectra.at(nMixed)->axis;
    }
    m_result.setValues(m_computed.values());
    m_result.settings.name = QLatin1String(kResultLabel);
    m_result.settings.color = QLatin1String(kResultColor);
    m_pToleranceLabel->setText(QString::number(task.tolerance, 'f', kToleranceDecimals));
    m_pResultEqLE->setText(m_computed.equation());
    m_pResultEqLE->setCursorPosition(0);
    setApplyEnabled(m_computed.isLeft());

    drawMixed(nMixed, task);
    drawKnown(known, task);
    drawResult();
    for (CORVGLXYPlot1* pPlot : {m_pPlotA, m_pPlotB, m_pPlotC}) {
        pPlot->setXAxisLabel(axisLabel(m_spectra.at(nMixed)->axis));
        pPlot->plotData();
    }
}

void SpumKyvoCPSWnd::drawMixed(int nRow, const PureSpectrumTask& task)
{
    addLine(*m_pPlotA, nRow, *m_spectra.at(nRow), task.mixed);
}

void SpumKyvoCPSWnd::drawKnown(const QList<int>& rows, const PureSpectrumTask& task)
{
    m_pPlotB->clear();
    for (int i = 0; i < rows.size(); ++i) {
        addLine(*m_pPlotB, rows.at(i), *m_spectra.at(rows.at(i)), task.known.at(i));
    }
}

void SpumKyvoCPSWnd::drawResult()
{
    m_pPlotC->clear();
    if (!m_computed.values().empty()) {
        addLine(*m_pPlotC, 0, m_result, valuesOf(m_result, *m_pNormalizedC));
    }
}

void SpumKyvoCPSWnd::onSaveIndexChanged(int nIndex)
{
    if (nIndex < 0) {
        return;
    }
    const SaveSuggestion suggestion = saveSuggestion(m_spectra, nIndex, m_pIndexCB->count());
    m_pNameLE->setText(suggestion.name);
    m_pNameLE->setCursorPosition(0);
    m_pColorCB->setCurrentIndex(suggestion.colorPosition);
}

void SpumKyvoCPSWnd::onClickApply(QAbstractButton* pButton)
{
    const int nRow = mixedRow();
    if (isApplyText(pButton->text()) && nRow >= 0) {
        Q_EMIT updateSpectrum(nRow);
    }
}

void SpumKyvoCPSWnd::setApplyEnabled(bool bEnabled)
{
    m_pButtonBox->button(QDialogButtonBox::Apply)->setEnabled(bEnabled);
}

void SpumKyvoCPSWnd::changeEvent(QEvent* pEvent)
{
    QDialog::changeEvent(pEvent);
    if (pEvent->type() == QEvent::PaletteChange) {
        keepEquationLegible();
    }
}

// It is disabled as nobody edits it, and is there to be read.
void SpumKyvoCPSWnd::keepEquationLegible()
{
    QPalette colors = m_pResultEqLE->palette();
    const QColor text = palette().color(QPalette::Active, QPalette::WindowText);
    if (colors.color(QPalette::Disabled, QPalette::Text) != text) {
        colors.setColor(QPalette::Disabled, QPalette::Text, text);
        m_pResultEqLE->setPalette(colors);
    }
}

void SpumKyvoCPSWnd::showEvent(QShowEvent* pEvent)
{
    QDialog::showEvent(pEvent);
    if (!m_bClosingForbidden && CORVUtilityFns::canClose()) {
        m_bClosingForbidden = true;
        CORVUtilityFns::setCanClose(false);
    }
}

void SpumKyvoCPSWnd::hideEvent(QHideEvent* pEvent)
{
    QDialog::hideEvent(pEvent);
    if (!pEvent->spontaneous()) {
        allowClosing();
    }
}

// However the dialog ends.
void SpumKyvoCPSWnd::allowClosing()
{
    if (m_bClosingForbidden) {
        m_bClosingForbidden = false;
        CORVUtilityFns::setCanClose(true);
    }
}

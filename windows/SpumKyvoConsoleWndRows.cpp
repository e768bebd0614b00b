// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of the spectrum list and the regions that are painted for them.
#include "windows/SpumKyvoConsoleWnd.h"

#include "engine/CImageCube.h"
#include "host/CORVGLXYPlot1.h"
#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVPaintQImageView.h"
#include "host/CORVUtilityFns.h"
#include "spectra/DefaultColors.h"
#include "spectra/NameEdit.h"
#include "spectra/SpectrumAxis.h"
#include "spectra/SpumKyvoSpectrumCtrl.h"
#include "spectra/logLine.h"
#include "windows/rowNames.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QRadioButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTimer>
#include <QToolButton>

#include <algorithm>

namespace {

constexpr int kMostChannels = 255; // that the paint view tells apart

// The tool that takes a spectrum from a library instead of painting.
bool isImport(const QToolButton& button)
{
    return button.text().compare(QLatin1String("Import"), Qt::CaseInsensitive) == 0;
}

void showTool(QToolButton& button, const QAction& action)
{
    button.setIcon(action.icon());
    button.setText(action.text());
}

constexpr int kRowMargin = 8; // pixels to be seen beside a new row

} // namespace

QStringList SpumKyvoConsoleWnd::rowNames() const
{
    QStringList names;
    for (const auto& pRow : m_spectrumCtrls) {
        names << pRow->settings().name;
    }
    return names;
}

int SpumKyvoConsoleWnd::getProbesCount()
{
    return namedRowCount(rowNames());
}

// The channel of a row in the paint view; 0 for one that has none.
unsigned char SpumKyvoConsoleWnd::channelOf(int nRow) const
{
    const int nChannel = m_spectrumCtrls.at(nRow)->m_nCurveId;
    return nChannel > 0 && nChannel <= kMostChannels ? static_cast<unsigned char>(nChannel) : 0;
}

int SpumKyvoConsoleWnd::rowOfChannel(int nChannel) const
{
    for (int i = 0; i < m_spectrumCtrls.size(); ++i) {
        if (nChannel != 0 && channelOf(i) == nChannel) {
            return i;
        }
    }
    return -1;
}

// The row that a widget or menu belongs to, or -1.
int SpumKyvoConsoleWnd::rowOf(const QObject* pWidget) const
{
    for (int i = 0; i < m_spectrumCtrls.size(); ++i) {
        const SpumKyvoSpectrumCtrl& row = *m_spectrumCtrls.at(i);
        if (pWidget != nullptr && (pWidget == &row || pWidget == row.m_pToolButton || pWidget == row.m_pToolMenu ||
                                   pWidget == row.m_pSelectBox)) {
            return i;
        }
    }
    return -1;
}

void SpumKyvoConsoleWnd::onAddSpectrum()
{
    onAddSpectrum(QString(), QString());
}

void SpumKyvoConsoleWnd::onAddSpectrum(QString strProbeName)
{
    onAddSpectrum(strProbeName, QString());
}

void SpumKyvoConsoleWnd::onAddSpectrum(QString strProbeName, QString strColorName)
{
    if (m_nNextChannel >= kMostChannels) {
        CORVMessageBox::information(this, CORVUtilityFns::getAppName(),
                                    tr("No more than %1 spectra can be added one after another.\nRemove all of them to "
                                       "begin anew.")
                                        .arg(kMostChannels));
        return;
    }
    SpectrumPlotParams spectrum;
    spectrum.axis = m_nSpectrumType;
    spectrum.setPairs(m_xValues);
    spectrum.settings.color = strColorName.isNull() ? defaultSpectrumColor(m_spectra.size()) : strColorName;
    spectrum.settings.name = strProbeName.isNull() ? nextRowName(rowNames()) : strProbeName;
    spectrum.settings.selected = !m_bBackgroundMode || isBackgroundName(spectrum.settings.name);
    addRow(spectrum);
    updateButtons();
    m_spectrumCtrls.last()->m_pToolButton->setChecked(true);
    markModified();
}

// A row for a copy of the spectrum, with a channel and a number of its own.
void SpumKyvoConsoleWnd::addRow(const SpectrumPlotParams& spectrum)
{
    ++m_nNextChannel;
    ++m_nSpectrumCount;
    auto pRow =
        QSharedPointer<SpumKyvoSpectrumCtrl>::create(m_pGBSpectrumList, m_nSpectrumType != SPECTRUMAXIS_TIME, true);
    auto* pSpectrum = new SpectrumPlotParams(spectrum);
    pSpectrum->settings.index = m_nSpectrumCount;
    pSpectrum->settings.curveId = m_nNextChannel;
    pSpectrum->settings.enabled = pSpectrum->hasData();
    pSpectrum->attachControl(pRow, false);
    m_spectra.append(pSpectrum);
    m_spectrumCtrls.append(pRow);
    m_pHBoxSpectrumList->addLayout(pRow->m_pLayout);
    if (channelOf(m_spectra.size() - 1) == 0) {
        pRow->hide(); // no region can be painted for it
    }
    connectRow(*pRow);
    renumberRows();
    orderTabs();
    // Once the list has made room for it.
    const QPointer<QWidget> pName(pRow->m_pNameEdit);
    QTimer::singleShot(0, this, [this, pName] {
        if (!pName.isNull()) {
            m_pSideScroll->ensureWidgetVisible(pName, 0, kRowMargin);
        }
    });
}

void SpumKyvoConsoleWnd::connectRow(SpumKyvoSpectrumCtrl& row)
{
    connect(row.m_pToolMenu, &QMenu::triggered, this, &SpumKyvoConsoleWnd::onDrawToolTriggered);
    connect(row.m_pToolButton, &QToolButton::toggled, this, &SpumKyvoConsoleWnd::onDrawToolToggled);
    connect(row.m_pColorCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &SpumKyvoConsoleWnd::updateSpectrumPlot);
    connect(row.m_pNameEdit, &QLineEdit::editingFinished, this, &SpumKyvoConsoleWnd::updateSpectrumPlot);
    connect(row.m_pNameEdit, &NameEdit::focusOut, this, &SpumKyvoConsoleWnd::showWarningForEmptyUnmixname);
    if (auto* pBox = qobject_cast<QCheckBox*>(row.m_pSelectBox)) {
        connect(pBox, &QCheckBox::stateChanged, this, QOverload<int>::of(&SpumKyvoConsoleWnd::onSelectToggled));
    } else {
        connect(row.m_pSelectBox, &QAbstractButton::toggled, this,
                QOverload<bool>::of(&SpumKyvoConsoleWnd::onSelectToggled));
    }
    row.m_pToolButton->setFocusPolicy(Qt::StrongFocus);
    // The arrow of the button is for the mouse alone.
    auto* pOpen = new QShortcut(Qt::ALT + Qt::Key_Down, row.m_pToolButton, nullptr, nullptr, Qt::WidgetShortcut);
    connect(pOpen, &QShortcut::activated, row.m_pToolMenu, [&row] {
        row.m_pToolMenu->popup(row.m_pToolButton->mapToGlobal(row.m_pToolButton->rect().bottomLeft()));
        row.m_pToolMenu->setActiveAction(row.m_pToolMenu->actions().first());
    });
}

void SpumKyvoConsoleWnd::showWarningForEmptyUnmixname(QString strUnmixName)
{
    if (strUnmixName.isEmpty()) {
        logLine("Please enter a name for each unmixing component", CORVLOG_WARNING);
    }
}

// Rows count from 1, however they came about.
void SpumKyvoConsoleWnd::renumberRows()
{
    for (int i = 0; i < m_spectra.size(); ++i) {
        SpumKyvoSpectrumCtrl& row = *m_spectrumCtrls.at(i);
        const QString number = QString::number(i + 1);
        m_spectra.at(i)->settings.index = i + 1;
        row.m_pIndexLabel->setText(number);
        row.m_pSelectBox->setAccessibleName(tr("Select spectrum %1").arg(number));
        row.m_pNameEdit->setAccessibleName(tr("Name of spectrum %1").arg(number));
        row.m_pColorCombo->setAccessibleName(tr("Color of spectrum %1").arg(number));
        row.m_pToolButton->setAccessibleName(tr("Paint the region of spectrum %1").arg(number));
        row.m_pToolButton->setToolTip(tr("Paint the region of this spectrum over the image cube.\n"
                                         "Drag paints, with Shift or the right button it erases, Ctrl+Z takes back.\n"
                                         "[ and ] change the pen; R fills a rectangle, E an ellipse, B paints again.\n"
                                         "Alt+Down lists the tools."));
    }
}

// The keyboard goes through the rows between the note and what lies under the list.
void SpumKyvoConsoleWnd::orderTabs()
{
    QWidget* pBefore = m_pNotationLE;
    for (const auto& pRow : qAsConst(m_spectrumCtrls)) {
        for (QWidget* pNext : std::initializer_list<QWidget*>{pRow->m_pSelectBox, pRow->m_pNameEdit,
                                                              pRow->m_pColorCombo, pRow->m_pToolButton}) {
            QWidget::setTabOrder(pBefore, pNext);
            pBefore = pNext;
        }
    }
    QWidget::setTabOrder(pBefore, m_pCherenkovIsotopeCombobox);
}

void SpumKyvoConsoleWnd::setSpectra(const QList<SpectrumPlotParams*>& spectra)
{
    QList<SpectrumPlotParams> copies;
    for (SpectrumPlotParams* pSpectrum : spectra) {
        pSpectrum->readControl();
        copies.append(*pSpectrum);
    }
    clearRows();
    for (const SpectrumPlotParams& spectrum : qAsConst(copies)) {
        addRow(spectrum);
    }
    updateSpectrumPlot();
}

void SpumKyvoConsoleWnd::clearRows()
{
    turnPaintToolOff();
    for (int i = m_spectra.size() - 1; i >= 0; --i) {
        removeRow(i);
    }
    m_nRemovedCount = 0;
    m_nNextChannel = 0;
    m_nSpectrumCount = 0;
    m_pSpectrumPlot->clear();
    if (m_pSpectrumPlot->isVisible()) {
        m_pSpectrumPlot->plotData();
    }
    updateButtons();
}

void SpumKyvoConsoleWnd::removeRow(int nRow)
{
    const unsigned char nChannel = channelOf(nRow);
    const QSharedPointer<SpumKyvoSpectrumCtrl> pRow = m_spectrumCtrls.takeAt(nRow);
    SpectrumPlotParams* pSpectrum = m_spectra.takeAt(nRow);
    QColor color;
    color.setNamedColor(pSpectrum->readControl().color);
    if (m_pActiveCtrl == pRow.data()) {
        m_pActiveCtrl.clear();
        m_pImageCubeView->setPaintEnabled(false);
    }
    // The focus of a name that goes with its row is no end of its editing.
    for (QObject* pPart : std::initializer_list<QObject*>{pRow->m_pNameEdit, pRow->m_pColorCombo, pRow->m_pSelectBox,
                                                          pRow->m_pToolButton, pRow->m_pToolMenu}) {
        pPart->disconnect(this);
    }
    if (nChannel != 0) {
        m_pImageCubeView->removeChannelColor(nChannel, color);
        m_pImageCubeView->resetMask(nChannel);
    }
    delete pSpectrum;
}

void SpumKyvoConsoleWnd::onRemoveSpectrum()
{
    readRows();
    bool bRemoved = false;
    for (int i = m_spectra.size() - 1; i >= 0; --i) {
        const QAbstractButton& box = *m_spectrumCtrls.at(i)->m_pSelectBox;
        if (box.isChecked() && box.isEnabledTo(box.parentWidget())) {
            removeRow(i);
            ++m_nRemovedCount;
            --m_nSpectrumCount;
            bRemoved = true;
        }
    }
    if (m_spectra.isEmpty()) {
        m_nRemovedCount = 0;
        m_nNextChannel = 0;
        turnPaintToolOff();
    }
    renumberRows();
    orderTabs();
    if (!m_spectra.isEmpty()) {
        // The user can go on at once with what is left.
        const QPointer<SpumKyvoConsoleWnd> alive(this);
        m_spectrumCtrls.first()->m_pToolButton->setChecked(true);
        m_spectrumCtrls.first()->m_pSelectBox->setChecked(true);
        if (alive.isNull()) {
            return;
        }
    }
    if (bRemoved) {
        showChange();
    } else {
        updateSpectrumPlot();
    }
}

void SpumKyvoConsoleWnd::onSelectToggled(bool bSelected)
{
    onSelectToggled(bSelected ? static_cast<int>(Qt::Checked) : static_cast<int>(Qt::Unchecked));
}

void SpumKyvoConsoleWnd::onSelectToggled(int nState)
{
    updateRemoveButtonStatus();
    if (!m_bBackgroundMode) {
        showChange();
        return;
    }
    const int nRow = rowOf(sender());
    for (int i = 0; nState != Qt::Unchecked && nRow >= 0 && i < m_spectrumCtrls.size(); ++i) {
        if (i != nRow) {
            // One background at a time.
            const QSignalBlocker blocker(m_spectrumCtrls.at(i)->m_pSelectBox);
            m_spectrumCtrls.at(i)->uncheck();
        }
    }
    updateRemoveButtonStatus();
    updateSpectrumPlot();
}

void SpumKyvoConsoleWnd::turnPaintToolOff()
{
    m_pImageCubeView->setPaintEnabled(false);
    const QPointer<SpumKyvoSpectrumCtrl> pActive = m_pActiveCtrl;
    m_pActiveCtrl.clear();
    if (!pActive.isNull() && pActive->m_pToolButton) {
        pActive->m_pToolButton->setChecked(false);
    }
}

void SpumKyvoConsoleWnd::onDrawToolToggled(bool bOn)
{
    const int nRow = rowOf(sender());
    if (!bOn) {
        turnPaintToolOff();
    } else if (nRow >= 0 && isImport(*m_spectrumCtrls.at(nRow)->m_pToolButton)) {
        importSpectrum(nRow);
    } else if (nRow >= 0) {
        activateTool(nRow);
    }
}

void SpumKyvoConsoleWnd::activateTool(int nRow)
{
    const QSharedPointer<SpumKyvoSpectrumCtrl> pRow = m_spectrumCtrls.at(nRow);
    for (const auto& pOther : qAsConst(m_spectrumCtrls)) {
        if (pOther != pRow && pOther->m_pToolButton->isChecked()) {
            const QSignalBlocker blocker(pOther->m_pToolButton);
            pOther->m_pToolButton->setChecked(false);
        }
    }
    m_pActiveCtrl = pRow.data();
    const unsigned char nChannel = channelOf(nRow);
    QColor color;
    color.setNamedColor(pRow->settings().color);
    m_pImageCubeView->setPaintEnabled(true);
    m_pImageCubeView->setPenSize(nChannel, pRow->m_pToolButton->text());
    m_pImageCubeView->setUpChannelColor(nChannel, color, m_nRemovedCount < 1);
    m_pImageCubeView->setCurrentChannel(nChannel);
    updateCursorSpectrum(-1, -1);
}

void SpumKyvoConsoleWnd::onDrawToolTriggered(QAction* pAction)
{
    const int nRow = rowOf(sender());
    if (nRow < 0) {
        return;
    }
    QToolButton& button = *m_spectrumCtrls.at(nRow)->m_pToolButton;
    showTool(button, *pAction);
    // Off and on, so that the change takes effect.
    button.setChecked(false);
    button.setChecked(true);
}

// The pen that was taken in the view is that of the row.
void SpumKyvoConsoleWnd::showPen(const QString& strPen)
{
    for (const QAction* pAction : m_pActiveCtrl ? m_pActiveCtrl->m_pToolMenu->actions() : QList<QAction*>()) {
        if (pAction->text() == strPen) {
            showTool(*m_pActiveCtrl->m_pToolButton, *pAction);
        }
    }
}

// The mean spectrum of the pixels, with its origin, into a row. False, with nothing changed, when it cannot be had or
// has another length.
bool SpumKyvoConsoleWnd::writeRegion(int nRow, const QList<int>& pixels)
{
    if (!hasImageCube()) {
        return false;
    }
    bool bOk = false;
    const XTNT::Vector<double> values = m_pImageCube->spectrum(std::vector<int>(pixels.begin(), pixels.end()), &bOk);
    SpectrumPlotParams& spectrum = *m_spectra.at(nRow);
    if (!bOk || !spectrum.setValues(values)) {
        return false;
    }
    spectrum.origin = m_strSequenceID;
    return true;
}

void SpumKyvoConsoleWnd::onUpdatePlot(int nButton)
{
    QList<int> pixels;
    const int nRow = rowOfChannel(m_pImageCubeView->getCurrentChannel(pixels));
    if (nButton == 1 && nRow >= 0) {
        writeRegion(nRow, pixels);
        showChange();
    } else if (nButton == 2 && !m_spectra.isEmpty()) {
        for (int i = 0; i < m_spectra.size(); ++i) {
            writeRegion(i, pixels);
        }
        showChange();
    }
}

// After a change of the cube's data. Spectra that come from elsewhere stay.
void SpumKyvoConsoleWnd::refreshRegionSpectra()
{
    for (int i = 0; i < m_spectra.size(); ++i) {
        const unsigned char nChannel = channelOf(i);
        QList<int> pixels;
        m_pImageCubeView->getPaintPixelIndex(nChannel, pixels);
        if (nChannel != 0 && !pixels.isEmpty()) {
            writeRegion(i, pixels);
        }
    }
    updateSpectrumPlot();
}

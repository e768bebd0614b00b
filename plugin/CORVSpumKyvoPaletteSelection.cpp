// SPDX-License-Identifier: GPL-3.0-or-later
// The table of images.
#include "plugin/CORVSpumKyvoPalette.h"

#include "plugin/CellCheckBox.h"
#include "plugin/selectionTable.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/keySelection.h"
#include "engine/runTexts.h"
#include "host/CORVMessageBox.h"
#include "spectra/SpectrumAxis.h"

#include <QCheckBox>
#include <QEvent>
#include <QHeaderView>
#include <QPointer>
#include <QSignalBlocker>

#include <algorithm>

namespace {

constexpr int columnWidth = 30;
constexpr int rowHeight = 20;
// A header's key: what it reads may be the same in two rows.
constexpr int keyRole = Qt::UserRole;
// As many are enough to know that two are ticked.
constexpr int countedAtMost = 3;

QCheckBox* boxAt(const QTableWidget& table, int nRow, int nColumn)
{
    return qobject_cast<QCheckBox*>(table.cellWidget(nRow, nColumn));
}

QVector<QCheckBox*> boxesOf(const QTableWidget& table)
{
    QVector<QCheckBox*> boxes;
    for (int c = 0; c < table.columnCount(); ++c) {
        for (int r = 0; r < table.rowCount(); ++r) {
            if (QCheckBox* pBox = boxAt(table, r, c)) {
                boxes.append(pBox);
            }
        }
    }
    return boxes;
}

} // namespace

int CORVSpumKyvoPalette::rowNames() const
{
    return m_pSpectrumAxisCMB->currentIndex();
}

void CORVSpumKyvoPalette::setRowText(int nRow)
{
    QTableWidgetItem* pHeader = m_pWaveLengthTable->verticalHeaderItem(nRow);
    const QString strKey = pHeader->data(keyRole).toString();
    const QString strText = selectionTable::rowText(m_eAxis, rowNames(), strKey, nRow);
    pHeader->setText(strText);
    pHeader->setToolTip(strText);
    for (int c = 0; c < m_pWaveLengthTable->columnCount(); ++c) {
        if (QCheckBox* pBox = boxAt(*m_pWaveLengthTable, nRow, c)) {
            const QString strColumn = m_pWaveLengthTable->horizontalHeaderItem(c)->data(keyRole).toString();
            const QString strName = selectionTable::cellName(m_eAxis, strColumn, strText);
            pBox->setAccessibleName(strName);
            pBox->setToolTip(strName);
        }
    }
}

KeyPair CORVSpumKyvoPalette::pairAt(int nRow, int nColumn) const
{
    return KeyPair{m_pWaveLengthTable->horizontalHeaderItem(nColumn)->data(keyRole).toString(),
                   m_pWaveLengthTable->verticalHeaderItem(nRow)->data(keyRole).toString()};
}

void CORVSpumKyvoPalette::initializeUI()
{
    QTableWidget& table = *m_pWaveLengthTable;
    for (int c = table.columnCount() - 1; c >= 0; --c) {
        table.removeColumn(c);
    }
    for (int r = table.rowCount() - 1; r >= 0; --r) {
        table.removeRow(r);
    }
    if (m_pEngine == nullptr) {
        return;
    }
    for (const QString& key : m_pEngine->getExcitationKeys()) {
        const int c = table.columnCount();
        table.insertColumn(c);
        auto* pHeader = new QTableWidgetItem(key);
        pHeader->setData(keyRole, key);
        table.setHorizontalHeaderItem(c, pHeader);
        table.setColumnWidth(c, columnWidth);
    }
    for (const QString& key : m_pEngine->getEmissionKeys()) {
        const int r = table.rowCount();
        table.insertRow(r);
        auto* pHeader = new QTableWidgetItem;
        pHeader->setData(keyRole, key);
        table.setVerticalHeaderItem(r, pHeader);
        table.setRowHeight(r, rowHeight);
    }
    for (int r = 0; r < table.rowCount(); ++r) {
        for (int c = 0; c < table.columnCount(); ++c) {
            if (m_pEngine->getAllKeyPairs().contains(pairAt(r, c))) {
                addCell(r, c);
            }
        }
        setRowText(r);
    }
    orderTabStops();
}

// From the bar of the tabs downward, as it is seen. New boxes come last by themselves, and the tab widget cannot be
// named in the form: whatever follows it there would come after all that is in it.
void CORVSpumKyvoPalette::orderTabStops()
{
    setTabOrder(tabWidget1->tabBar(), m_pSpectrumAxisCMB);
    setTabOrder(m_pSpectrumAxisCMB, m_pWaveLengthTable);
    QWidget* pBefore = m_pWaveLengthTable;
    for (int r = 0; r < m_pWaveLengthTable->rowCount(); ++r) {
        for (int c = 0; c < m_pWaveLengthTable->columnCount(); ++c) {
            if (QCheckBox* pBox = boxAt(*m_pWaveLengthTable, r, c)) {
                setTabOrder(pBefore, pBox);
                pBefore = pBox;
            }
        }
    }
    for (QWidget* pNext : {static_cast<QWidget*>(m_pUnmixingMethodsCMB), static_cast<QWidget*>(m_pUnmixSpectraButton),
                           static_cast<QWidget*>(m_pSavedResultsCB), static_cast<QWidget*>(m_pDeleteButton),
                           static_cast<QWidget*>(m_pLoadButton), static_cast<QWidget*>(m_pSaveButton),
                           static_cast<QWidget*>(m_pSPUnResultsLV)}) {
        setTabOrder(pBefore, pNext);
        pBefore = pNext;
    }
}

void CORVSpumKyvoPalette::addCell(int nRow, int nColumn)
{
    auto* pBox = new CellCheckBox(m_pWaveLengthTable);
    pBox->setChecked(true);
    connect(pBox, &QCheckBox::toggled, this, &CORVSpumKyvoPalette::onChangeWLSelection);
    pBox->installEventFilter(this);
    m_pWaveLengthTable->setCellWidget(nRow, nColumn, pBox);
}

// A box that is reached by the keyboard comes into sight.
bool CORVSpumKyvoPalette::eventFilter(QObject* pWatched, QEvent* pEvent)
{
    const auto* pBox = pEvent->type() == QEvent::FocusIn ? qobject_cast<QCheckBox*>(pWatched) : nullptr;
    if (pBox != nullptr) {
        const QModelIndex index = m_pWaveLengthTable->indexAt(pBox->geometry().center());
        if (index.isValid()) {
            m_pWaveLengthTable->scrollTo(index);
        }
    }
    return QWidget::eventFilter(pWatched, pEvent);
}

void CORVSpumKyvoPalette::updateUI()
{
    if (m_pEngine == nullptr) {
        return;
    }
    const QTableWidget& table = *m_pWaveLengthTable;
    for (int r = 0; r < table.rowCount(); ++r) {
        for (int c = 0; c < table.columnCount(); ++c) {
            if (QCheckBox* pBox = boxAt(table, r, c)) {
                const QSignalBlocker blocker(pBox);
                pBox->setChecked(m_selection.contains(pairAt(r, c)));
            }
        }
    }
    // The user's choice of a method outlasts a refused tick.
    const QString strChosen = m_pUnmixingMethodsCMB->currentText();
    const QSignalBlocker blocker(m_pUnmixingMethodsCMB);
    m_pUnmixingMethodsCMB->clear();
    for (const int nMode : m_pEngine->availableModes()) {
        m_pUnmixingMethodsCMB->addItem(runModeText(nMode));
    }
    m_pUnmixingMethodsCMB->setCurrentIndex(std::max(0, m_pUnmixingMethodsCMB->findText(strChosen)));
}

void CORVSpumKyvoPalette::onChangeWLSelection()
{
    if (m_pEngine == nullptr || m_pRunning != nullptr) {
        return;
    }
    m_selection.clear();
    const QTableWidget& table = *m_pWaveLengthTable;
    for (int c = 0; c < table.columnCount(); ++c) {
        for (int r = 0; r < table.rowCount(); ++r) {
            const QCheckBox* pBox = boxAt(table, r, c);
            if (pBox != nullptr && pBox->isChecked()) {
                m_selection.append(pairAt(r, c));
            }
        }
    }
    const int eShownAxis = m_eAxis;
    if (m_pEngine->validateSelection(m_selection, &m_eAxis, true) == SelectionCheck::Usable) {
        if (m_eAxis != eShownAxis) {
            fillAxisTypes();
        }
        return;
    }
    const QPointer<CORVSpumKyvoPalette> self(this);
    CORVMessageBox::warning(nullptr, m_pEngine->m_strSeqId,
                            QStringLiteral("Invalid image selection. Will restore to the last used selection."),
                            CORVMessageBox::Ok);
    if (self && m_pEngine != nullptr) {
        m_eAxis = eShownAxis;
        m_selection = m_pEngine->getSelectedKeyPairs();
        updateUI();
    }
}

bool CORVSpumKyvoPalette::hasEnoughSelected()
{
    int nTicked = 0;
    for (const QCheckBox* pBox : boxesOf(*m_pWaveLengthTable)) {
        nTicked += pBox->isChecked() ? 1 : 0;
        if (nTicked >= countedAtMost) {
            break;
        }
    }
    return nTicked >= 2;
}

void CORVSpumKyvoPalette::toggleLine(QHeaderView& header, int nSection)
{
    if (nSection < 0 || nSection >= header.count()) {
        return;
    }
    const QSignalBlocker headerBlocker(&header);
    const bool bColumn = header.orientation() == Qt::Horizontal;
    const QHeaderView& across =
        *(bColumn ? m_pWaveLengthTable->verticalHeader() : m_pWaveLengthTable->horizontalHeader());
    QVector<QCheckBox*> boxes;
    for (int i = 0; i < across.count(); ++i) {
        if (QCheckBox* pBox = boxAt(*m_pWaveLengthTable, bColumn ? i : nSection, bColumn ? nSection : i)) {
            boxes.append(pBox);
        }
    }
    const bool bTick =
        std::none_of(boxes.begin(), boxes.end(), [](const QCheckBox* pBox) { return pBox->isChecked(); });
    for (QCheckBox* pBox : qAsConst(boxes)) {
        const QSignalBlocker blocker(pBox);
        pBox->setChecked(bTick);
    }
    onChangeWLSelection();
}

void CORVSpumKyvoPalette::onClickHHeader(int section)
{
    toggleLine(*m_pWaveLengthTable->horizontalHeader(), section);
}

void CORVSpumKyvoPalette::onClickVHeader(int section)
{
    toggleLine(*m_pWaveLengthTable->verticalHeader(), section);
}

void CORVSpumKyvoPalette::onAxisTypeChanged(int /*nIndex*/)
{
    if (m_pEngine == nullptr || m_eAxis != SPECTRUMAXIS_TIME ||
        m_pWaveLengthTable->rowCount() != m_pEngine->getEmissionKeys().size()) {
        return;
    }
    for (int r = 0; r < m_pWaveLengthTable->rowCount(); ++r) {
        setRowText(r);
    }
}

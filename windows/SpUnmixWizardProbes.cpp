// SPDX-License-Identifier: GPL-3.0-or-later
// The components of the wizard: the table of probes and their number.
#include "windows/SpUnmixWizardWnd.h"

#include "host/CORVTreeMenuComboBox.h"
#include "windows/componentCount.h"
#include "windows/probeOffer.h"
#include "windows/widgets/wizardColumns.h"

#include <QComboBox>
#include <QEvent>
#include <QShortcut>

namespace {

constexpr int kLuminescent = 0;
constexpr int kTemporal = 3;
constexpr int kRowHeight = 20;    // pixels
constexpr int kColumnWidth = 170; // pixels

} // namespace

// Ins and Del work anywhere in the table.
void SpUnmixWizardWnd::addProbeKeys()
{
    const auto addKey = [this](Qt::Key key, QToolButton* pButton) {
        auto* pShortcut = new QShortcut(QKeySequence(key), m_pProbeTable);
        pShortcut->setContext(Qt::WidgetWithChildrenShortcut);
        connect(pShortcut, &QShortcut::activated, pButton, &QToolButton::click);
    };
    addKey(Qt::Key_Insert, m_pAddProbeTB);
    addKey(Qt::Key_Delete, m_pRemoveProbeTB);
}

void SpUnmixWizardWnd::fillProbeTable()
{
    for (int nRow = m_pProbeTable->rowCount() - 1; nRow >= 0; --nRow) {
        m_pProbeTable->removeRow(nRow);
    }
    m_pLastProbeCombo = nullptr;
    const ProbeProposal proposal = proposeProbes(m_initialProbes, m_probeNames);
    m_probeNames = proposal.offered;
    for (const QString& strName : proposal.names) {
        onAddProbe(strName);
    }
    const int nFewest = m_nAnalysisType == kTemporal ? 2 : 1;
    while (m_pProbeTable->rowCount() < nFewest) {
        onAddProbe();
    }
}

QComboBox* SpUnmixWizardWnd::makeProbeCombo()
{
    const bool bTree = m_probeNames.contains(QStringLiteral("ICG")) && m_nAnalysisType != kLuminescent &&
                       CORVTreeMenuComboBox::hasTree(PROBETREE_LIBRARY);
    QComboBox* pCombo =
        bTree ? new CORVTreeMenuComboBox(PROBETREE_LIBRARY, m_pProbeTable) : new QComboBox(m_pProbeTable);
    pCombo->setFocusPolicy(Qt::StrongFocus);
    pCombo->installEventFilter(this);
    connect(pCombo, &QComboBox::currentTextChanged, pCombo, &QWidget::setToolTip);
    return pCombo;
}

void SpUnmixWizardWnd::onAddProbe(QString strProbe)
{
    const int nRow = m_pProbeTable->rowCount();
    m_pProbeTable->insertRow(nRow);
    m_pProbeTable->setVerticalHeaderItem(nRow, new QTableWidgetItem);
    m_pProbeTable->setRowHeight(nRow, kRowHeight);
    QComboBox* pCombo = makeProbeCombo();
    pCombo->addItems(m_probeNames);
    if (!strProbe.isEmpty()) {
        pCombo->setCurrentIndex(pCombo->findData(strProbe, Qt::DisplayRole, Qt::MatchCaseSensitive));
    }
    m_pProbeTable->setCellWidget(nRow, 0, pCombo);
    m_pProbeTable->setColumnWidth(0, kColumnWidth);
    m_pLastProbeCombo = pCombo;
    arrangeRows();
    m_pProbeTable->selectRow(nRow);
    onUpdateNumber();
}

void SpUnmixWizardWnd::onAddProbe()
{
    onAddProbe(QString());
}

void SpUnmixWizardWnd::onRemoveProbe()
{
    const int nRow = m_pProbeTable->currentRow();
    if (nRow >= 0) {
        const bool bFocus = m_pProbeTable->isAncestorOf(focusWidget());
        m_pProbeTable->removeRow(nRow);
        arrangeRows();
        if (bFocus) {
            m_pProbeTable->setFocus();
        }
    }
    onUpdateNumber();
    m_pLastProbeCombo = nullptr;
}

void SpUnmixWizardWnd::onProbeSelectionChanged()
{
    m_pRemoveProbeTB->setEnabled(m_pProbeTable->currentRow() >= 0);
    m_pAddProbeTB->setEnabled(canAddComponent(m_pNCompLabel->text().toInt(), m_nImageCount));
}

int SpUnmixWizardWnd::componentNumber() const
{
    return componentCount(m_pProbeTable->rowCount(), m_pTissueAFCB->isChecked(), m_pFoodAFCB->isChecked());
}

void SpUnmixWizardWnd::onUpdateNumber()
{
    const int nNumber = componentNumber();
    m_pNCompLabel->setText(QString::number(nNumber));
    onProbeSelectionChanged();
    validateCurrentPage();
    m_pWarningLabel->setText(componentCountWarning(nNumber, m_nImageCount));
}

QStringList SpUnmixWizardWnd::getComponentNames() const
{
    QStringList rows;
    for (int nRow = 0; nRow < m_pProbeTable->rowCount(); ++nRow) {
        const auto* pCombo = qobject_cast<const QComboBox*>(m_pProbeTable->cellWidget(nRow, 0));
        rows.append(pCombo != nullptr ? pCombo->currentText() : QString());
    }
    return componentNames(m_pTissueAFCB->isChecked(), m_pFoodAFCB->isChecked(), rows);
}

int SpUnmixWizardWnd::rowOf(const QObject* pCombo) const
{
    for (int nRow = 0; nRow < m_pProbeTable->rowCount(); ++nRow) {
        if (m_pProbeTable->cellWidget(nRow, 0) == pCombo) {
            return nRow;
        }
    }
    return -1;
}

// Numbers the rows, and lets the Tab key go from one to the next.
void SpUnmixWizardWnd::arrangeRows()
{
    QWidget* pBefore = m_pProbeTable;
    for (int nRow = 0; nRow < m_pProbeTable->rowCount(); ++nRow) {
        m_pProbeTable->verticalHeaderItem(nRow)->setText(QString::number(nRow + 1));
        QWidget* pCombo = m_pProbeTable->cellWidget(nRow, 0);
        pCombo->setAccessibleName(tr("Component %1").arg(nRow + 1));
        setTabOrder(pBefore, pCombo);
        pBefore = pCombo;
    }
}

// The row whose box has the focus is the current one. The wheel chooses only in that one, so that scrolling past the
// table changes nothing.
bool SpUnmixWizardWnd::eventFilter(QObject* pWatched, QEvent* pEvent)
{
    if (pWatched == m_pMaskProbePage && pEvent->type() == QEvent::Resize) {
        fitWizardColumns(*this, m_pMaskProbePage->width());
    }
    auto* pCombo = qobject_cast<QComboBox*>(pWatched);
    if (pCombo != nullptr && pEvent->type() == QEvent::FocusIn) {
        const int nRow = rowOf(pCombo);
        if (nRow >= 0) {
            m_pProbeTable->setCurrentCell(nRow, 0);
        }
    }
    if (pCombo != nullptr && pEvent->type() == QEvent::Wheel && !pCombo->hasFocus()) {
        pEvent->ignore();
        return true;
    }
    return QWizard::eventFilter(pWatched, pEvent);
}

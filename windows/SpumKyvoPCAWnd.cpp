// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/SpumKyvoPCAWnd.h"

#include "windows/explainedVariance.h"

#include <QHeaderView>

namespace {

constexpr int kPixelsPerCharacter = 7;

} // namespace

SpumKyvoPCAWnd::SpumKyvoPCAWnd(QWidget* pParent) : QDialog(pParent)
{
    setupUi(this);
    init();
}

void SpumKyvoPCAWnd::init()
{
    const QStringList headers{tr("# of Components"), tr("Explained Variance(%)")};
    m_pDataTable->setColumnCount(headers.size());
    m_pDataTable->setHorizontalHeaderLabels(headers);
    for (int column = 0; column < headers.size(); ++column) {
        m_pDataTable->setColumnWidth(column, headers[column].length() * kPixelsPerCharacter);
        m_pDataTable->horizontalHeaderItem(column)->setToolTip(headers[column]);
    }
}

void SpumKyvoPCAWnd::setEigenvalues(XTNT::Vector<double>& values)
{
    const ExplainedVariance found = explainedVariance(values);
    if (found.isEmpty()) {
        return;
    }
    values = found.percent;
    m_pNCompLabel->setText(QString::number(found.nSuggested));
    m_pVarianceLabel->setText(explainedVarianceText(found.dSuggestedPercent));

    m_pDataTable->clearContents();
    const int rows = static_cast<int>(values.size());
    m_pDataTable->setRowCount(rows);
    for (int row = 0; row < rows; ++row) {
        auto* pCount = new QTableWidgetItem(QString::number(row + 1));
        auto* pPercent = new QTableWidgetItem(explainedVarianceText(values[row]));
        pCount->setTextAlignment(Qt::AlignHCenter);
        pPercent->setTextAlignment(Qt::AlignHCenter);
        m_pDataTable->setItem(row, 0, pCount);
        m_pDataTable->setItem(row, 1, pPercent);
    }
}

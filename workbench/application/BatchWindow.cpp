// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/BatchWindow.h"

#include "workbench/application/BatchRun.h"
#include "workbench/application/elapsedText.h"
#include "workbench/application/literalToolTip.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

enum Column
{
    SequenceColumn,
    StateColumn,
    ResidualColumn,
    WarningsColumn,
    TimeColumn,
    ColumnCount
};

void setCell(QTableWidget& table, int nRow, int nColumn, const QString& strText, const QString& strTip)
{
    QTableWidgetItem* pItem = table.item(nRow, nColumn);
    if (pItem == nullptr) {
        pItem = new QTableWidgetItem;
        const bool bNumber = nColumn >= ResidualColumn;
        pItem->setTextAlignment((bNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
        table.setItem(nRow, nColumn, pItem);
    }
    pItem->setText(strText);
    pItem->setToolTip(literalToolTip(strTip));
}

} // namespace

BatchWindow::BatchWindow(BatchRun& run, QWidget* pParent)
    : QDialog(pParent), m_run(run), m_pTable(new QTableWidget(this)), m_pTotals(new QLabel(this)),
      m_pAbortSequence(new QPushButton(tr("Abort this &sequence"), this)),
      m_pAbortAll(new QPushButton(tr("&Abort all"), this)), m_pCopy(new QPushButton(tr("&Copy as CSV"), this)),
      m_pClose(new QPushButton(tr("C&lose"), this))
{
    setObjectName(QStringLiteral("batchWindow"));
    setWindowTitle(tr("Unmixing of many sequences"));
    auto* pLayout = new QVBoxLayout(this);
    makeTable();
    pLayout->addWidget(m_pTable);
    m_pTotals->setObjectName(QStringLiteral("batchTotals"));
    m_pTotals->setTextFormat(Qt::PlainText);
    m_pTotals->setWordWrap(true);
    pLayout->addWidget(m_pTotals);
    makeButtons();
    connect(&m_run, &BatchRun::started, this, [this] { showRows(-1); });
    connect(&m_run, &BatchRun::changed, this, &BatchWindow::showRows);
    connect(&m_run, &BatchRun::ended, this, [this] { showRows(-1); });
    m_tick.setInterval(500);
    connect(&m_tick, &QTimer::timeout, this, &BatchWindow::showTime);
    m_tick.start();
    resize(fontMetrics().averageCharWidth() * 110, fontMetrics().height() * 22);
    showRows(-1);
}

void BatchWindow::makeTable()
{
    m_pTable->setObjectName(QStringLiteral("batchTable"));
    m_pTable->setAccessibleName(tr("Sequences of the batch"));
    m_pTable->setColumnCount(ColumnCount);
    m_pTable->setHorizontalHeaderLabels({tr("Sequence"), tr("State"), tr("Residual"), tr("Warnings"), tr("Time")});
    m_pTable->verticalHeader()->hide();
    m_pTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_pTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_pTable->setTabKeyNavigation(false);
    m_pTable->horizontalHeader()->setSectionResizeMode(StateColumn, QHeaderView::Stretch);
    for (const int nColumn : {ResidualColumn, WarningsColumn, TimeColumn}) {
        m_pTable->horizontalHeader()->setSectionResizeMode(nColumn, QHeaderView::ResizeToContents);
    }
    m_pTable->setColumnWidth(SequenceColumn, fontMetrics().averageCharWidth() * 30);
    connect(m_pTable->horizontalHeader(), &QHeaderView::sectionResized, m_pTable, &QTableWidget::resizeRowsToContents);
}

void BatchWindow::makeButtons()
{
    auto* pRow = new QHBoxLayout;
    const QPair<QPushButton*, const char*> buttons[] = {{m_pAbortSequence, "batchAbortSequence"},
                                                        {m_pAbortAll, "batchAbortAll"},
                                                        {m_pCopy, "batchCopy"},
                                                        {m_pClose, "batchClose"}};
    for (const auto& [pButton, pName] : buttons) {
        pButton->setObjectName(QLatin1String(pName));
        pButton->setAutoDefault(false);
        if (pButton == m_pCopy) {
            pRow->addStretch(1);
        }
        pRow->addWidget(pButton);
    }
    static_cast<QVBoxLayout*>(layout())->addLayout(pRow);
    // The window of the next sequence takes the focus, and a button that loses it while it is down is not clicked.
    connect(m_pAbortSequence, &QPushButton::pressed, &m_run, &BatchRun::abortSequence);
    connect(m_pAbortAll, &QPushButton::pressed, &m_run, &BatchRun::abortAll);
    connect(m_pCopy, &QPushButton::clicked, this, &BatchWindow::copy);
    connect(m_pClose, &QPushButton::clicked, this, &BatchWindow::reject);
}

void BatchWindow::reject()
{
    if (!m_run.isRunning()) {
        QDialog::reject();
    }
}

void BatchWindow::showRows(int nRow)
{
    const int nRows = m_run.sheet().rows().size();
    m_pTable->setRowCount(nRows);
    for (int i = nRow < 0 ? 0 : nRow; i < (nRow < 0 ? nRows : nRow + 1); ++i) {
        showRow(i);
    }
    if (nRow >= 0 && nRow == m_run.sheet().running()) {
        m_pTable->scrollToItem(m_pTable->item(nRow, SequenceColumn));
    }
    showFoot();
}

void BatchWindow::showRow(int nRow)
{
    const BatchSheet::Row& row = m_run.sheet().rows().at(nRow);
    const bool bRuns = nRow == m_run.sheet().running();
    const bool bBegun = row.state != BatchSheet::State::Waiting && row.state != BatchSheet::State::Left;
    const QString outcome = BatchSheet::outcomeText(row);
    setCell(*m_pTable, nRow, SequenceColumn, row.name(), row.folder);
    setCell(*m_pTable, nRow, StateColumn, outcome.simplified(), outcome);
    setCell(*m_pTable, nRow, ResidualColumn, BatchSheet::residualText(row), QString());
    setCell(*m_pTable, nRow, WarningsColumn, bBegun ? QString::number(row.warnings.size()) : QString(),
            row.warnings.join(QLatin1Char('\n')));
    setCell(*m_pTable, nRow, TimeColumn, bBegun ? elapsedText(bRuns ? m_run.elapsed() : row.milliseconds) : QString(),
            QString());
    m_pTable->resizeRowToContents(nRow);
}

void BatchWindow::showTime()
{
    const int nRow = m_run.sheet().running();
    if (nRow >= 0 && nRow < m_pTable->rowCount()) {
        showRow(nRow);
    }
}

void BatchWindow::showFoot()
{
    const bool bRuns = m_run.isRunning();
    m_pTotals->setText(m_run.sheet().totals());
    m_pAbortSequence->setEnabled(bRuns);
    m_pAbortAll->setEnabled(bRuns && !m_run.sheet().isAborted());
    m_pClose->setEnabled(!bRuns);
}

void BatchWindow::copy()
{
    QApplication::clipboard()->setText(QString::fromUtf8(m_run.sheet().csv()));
}

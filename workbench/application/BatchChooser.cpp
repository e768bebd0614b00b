// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/BatchChooser.h"

#include "host/CORVFileDialog.h"
#include "workbench/application/literalToolTip.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QTableWidget>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace {

enum Column
{
    SequenceColumn,
    ImagesColumn,
    VerdictColumn,
    ColumnCount
};

} // namespace

BatchChooser::BatchChooser(const QString& strStart, const BatchBands& bands, QWidget* pParent)
    : QDialog(pParent), m_strStart(strStart), m_bands(bands), m_pTable(new QTableWidget(this)),
      m_pSummary(new QLabel(this)),
      m_pAdaptive(new QCheckBox(tr("A&daptive background for fluorescent sequences"), this)),
      m_pAdd(new QPushButton(tr("&Add a folder ..."), this)), m_pRemove(new QPushButton(tr("&Remove"), this)),
      m_pStart(nullptr)
{
    setObjectName(QStringLiteral("batchChooser"));
    setWindowTitle(tr("Sequences to unmix"));
    setAcceptDrops(true);
    auto* pLayout = new QVBoxLayout(this);
    auto* pHint = new QLabel(tr("A folder that holds sequences stands for all of them. Folders can be dropped here, "
                                "too."),
                             this);
    pHint->setWordWrap(true);
    pLayout->addWidget(pHint);
    makeTable();
    pLayout->addWidget(m_pTable);
    m_pSummary->setObjectName(QStringLiteral("batchSummary"));
    m_pSummary->setTextFormat(Qt::PlainText);
    m_pSummary->setWordWrap(true);
    pLayout->addWidget(m_pSummary);
    m_pAdaptive->setObjectName(QStringLiteral("batchAdaptive"));
    pLayout->addWidget(m_pAdaptive);
    makeButtons();
    m_look.setSingleShot(true);
    connect(&m_look, &QTimer::timeout, this, &BatchChooser::lookAtNext);
    resize(fontMetrics().averageCharWidth() * 100, fontMetrics().height() * 24);
    showSummary();
}

void BatchChooser::makeTable()
{
    m_pTable->setObjectName(QStringLiteral("batchCandidates"));
    m_pTable->setAccessibleName(tr("Sequences"));
    m_pTable->setColumnCount(ColumnCount);
    m_pTable->setHorizontalHeaderLabels({tr("Sequence"), tr("Images"), tr("Can be analysed")});
    m_pTable->verticalHeader()->hide();
    m_pTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_pTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_pTable->setTabKeyNavigation(false);
    m_pTable->horizontalHeader()->setSectionResizeMode(VerdictColumn, QHeaderView::Stretch);
    m_pTable->horizontalHeader()->setSectionResizeMode(ImagesColumn, QHeaderView::ResizeToContents);
    m_pTable->setColumnWidth(SequenceColumn, fontMetrics().averageCharWidth() * 30);
    connect(m_pTable, &QTableWidget::itemSelectionChanged, this, &BatchChooser::showSummary);
    connect(m_pTable->horizontalHeader(), &QHeaderView::sectionResized, m_pTable, &QTableWidget::resizeRowsToContents);
}

void BatchChooser::makeButtons()
{
    auto* pButtons = new QDialogButtonBox(this);
    m_pStart = pButtons->addButton(tr("&Unmix"), QDialogButtonBox::AcceptRole);
    m_pStart->setDefault(true);
    QPushButton* pCancel = pButtons->addButton(QDialogButtonBox::Cancel);
    m_pAdd->setAutoDefault(false);
    m_pRemove->setAutoDefault(false);
    m_pAdd->setObjectName(QStringLiteral("batchAdd"));
    m_pRemove->setObjectName(QStringLiteral("batchRemove"));
    m_pStart->setObjectName(QStringLiteral("batchStart"));
    pCancel->setObjectName(QStringLiteral("batchCancel"));
    auto* pRow = new QHBoxLayout;
    pRow->addWidget(m_pAdd);
    pRow->addWidget(m_pRemove);
    pRow->addStretch(1);
    pRow->addWidget(pButtons);
    static_cast<QVBoxLayout*>(layout())->addLayout(pRow);
    connect(m_pAdd, &QPushButton::clicked, this, &BatchChooser::choose);
    connect(m_pRemove, &QPushButton::clicked, this, &BatchChooser::remove);
    connect(pButtons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void BatchChooser::choose()
{
    const QString folder = CORVFileDialog::getExistingDirectory(this, tr("Sequences to unmix"), m_strStart);
    if (!folder.isEmpty()) {
        m_strStart = QDir(folder).absoluteFilePath(QStringLiteral(".."));
        add({folder});
    }
}

void BatchChooser::add(const QStringList& folders)
{
    for (const QString& given : folders) {
        for (const QString& folder : sequencesIn(given)) {
            BatchCandidate candidate;
            candidate.folder = QDir::cleanPath(QDir(folder).absolutePath());
            candidate.name = QDir(candidate.folder).dirName();
            const bool bListed = std::any_of(m_candidates.cbegin(), m_candidates.cend(),
                                             [&](const auto& other) { return other.folder == candidate.folder; });
            if (bListed) {
                continue;
            }
            const int nRow = m_candidates.size();
            m_candidates.append(candidate);
            m_pTable->setRowCount(nRow + 1);
            for (int i = 0; i < ColumnCount; ++i) {
                m_pTable->setItem(nRow, i, new QTableWidgetItem);
            }
            m_pTable->item(nRow, SequenceColumn)->setText(candidate.name);
            m_pTable->item(nRow, SequenceColumn)->setToolTip(literalToolTip(candidate.folder));
            m_pTable->item(nRow, ImagesColumn)->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        }
    }
    showSummary();
    m_look.start(0);
}

// One an event: hundreds on a network disk take their time.
void BatchChooser::lookAtNext()
{
    if (m_nLookedAt < m_candidates.size()) {
        const int nRow = m_nLookedAt++;
        BatchCandidate& candidate = m_candidates[nRow];
        candidate = batchCandidate(candidate.folder, m_bands);
        m_pTable->item(nRow, ImagesColumn)->setText(QString::number(candidate.images));
        m_pTable->item(nRow, VerdictColumn)
            ->setText(candidate.isUsable() ? tr("Yes") : tr("No: %1").arg(candidate.reason.simplified()));
        m_pTable->item(nRow, VerdictColumn)->setToolTip(literalToolTip(candidate.reason));
        m_pTable->resizeRowToContents(nRow);
        m_look.start(0);
    }
    showSummary();
}

void BatchChooser::remove()
{
    for (int nRow = m_candidates.size() - 1; nRow >= 0; --nRow) {
        if (m_pTable->item(nRow, SequenceColumn)->isSelected()) {
            m_candidates.removeAt(nRow);
            m_nLookedAt -= nRow < m_nLookedAt ? 1 : 0;
            m_pTable->removeRow(nRow);
        }
    }
    showSummary();
}

void BatchChooser::showSummary()
{
    const int nAll = m_candidates.size();
    const int nUsable = static_cast<int>(std::count_if(m_candidates.cbegin(), m_candidates.cbegin() + m_nLookedAt,
                                                       [](const auto& candidate) { return candidate.isUsable(); }));
    if (nAll == 0) {
        m_pSummary->setText(tr("No sequence is chosen."));
    } else if (m_nLookedAt < nAll) {
        m_pSummary->setText(tr("Looking at %1 of %2").arg(m_nLookedAt + 1).arg(nAll));
    } else if (nUsable == nAll) {
        m_pSummary->setText(tr("%1 of %1 can be analysed.").arg(nAll));
    } else {
        m_pSummary->setText(
            tr("%1 of %2 can be analysed; there will be no result of the others.").arg(nUsable).arg(nAll));
    }
    m_pStart->setEnabled(nUsable > 0 && m_nLookedAt == nAll);
    m_pRemove->setEnabled(!m_pTable->selectedItems().isEmpty());
}

QStringList BatchChooser::folders() const
{
    QStringList all;
    for (const BatchCandidate& candidate : m_candidates) {
        all.append(candidate.folder);
    }
    return all;
}

bool BatchChooser::adaptiveBackground() const
{
    return m_pAdaptive->isChecked();
}

void BatchChooser::dragEnterEvent(QDragEnterEvent* pEvent)
{
    if (pEvent->mimeData()->hasUrls()) {
        pEvent->acceptProposedAction();
    }
}

void BatchChooser::dropEvent(QDropEvent* pEvent)
{
    QStringList folders;
    for (const QUrl& url : pEvent->mimeData()->urls()) {
        if (url.isLocalFile()) {
            folders.append(url.toLocalFile());
        }
    }
    pEvent->acceptProposedAction();
    add(folders);
}

// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of the library window. A library may hold thousands of spectra and a row is half a dozen widgets, so that
// rows are made a slice at a time between other events, and without being asked for the first spectra only. A spectrum
// without a row is as its file has it.
#include "spectra/SpUnmixSpectrumLibraryWnd.h"

#include "spectra/NameEdit.h"
#include "spectra/SpectrumAxis.h"
#include "spectra/SpumKyvoSpectrumCtrl.h"
#include "spectra/bandCoverage.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QEvent>
#include <QLabel>
#include <QSignalBlocker>
#include <QTextCursor>

#include <algorithm>

namespace {

constexpr int kRowsAtFirst = 200;
constexpr int kRowsOfSlice = 20;
constexpr int kRowGap = 2; // pixels

QVBoxLayout* rowColumn(QWidget& widget)
{
    auto* pColumn = new QVBoxLayout(&widget);
    pColumn->setContentsMargins(0, 0, 0, 0);
    pColumn->setSpacing(kRowGap);
    return pColumn;
}

} // namespace

// Takes over the spectra.
void SpUnmixSpectrumLibraryWnd::showSpectra(const QList<SpectrumPlotParams*>& spectra)
{
    clearRows();
    m_spectra = spectra;
    for (int i = 0; i < m_spectra.size(); ++i) {
        m_spectra.at(i)->axis = m_eAxis;
        m_spectra.at(i)->settings.index = i;
        m_spectra.at(i)->settings.enabled = m_spectra.at(i)->hasData(); // its name can be changed
    }
    m_covered = bandCoverage(m_spectra, m_referencePairs);
    m_nRowLimit = std::min(kRowsAtFirst, m_spectra.size());
    if (!m_bMultiSelect) {
        keepOneSelected();
    }
    addRows();
}

// Of several that are selected in a library the last remains, as in a group of radio buttons; one that is seen.
void SpUnmixSpectrumLibraryWnd::keepOneSelected()
{
    SpectrumPlotParams* pKept = nullptr;
    for (int i = 0; i < m_spectra.size(); ++i) {
        SpectrumSettings& settings = m_spectra.at(i)->settings;
        if (settings.selected && (i < m_nRowLimit || pKept == nullptr)) {
            pKept = m_spectra.at(i);
        }
        settings.selected = false;
    }
    if (pKept != nullptr) {
        pKept->settings.selected = true;
    }
}

// A new page for the rows takes the old one's place, which goes a slice at a time.
void SpUnmixSpectrumLibraryWnd::clearRows()
{
    m_rowTimer.stop();
    if (QWidget* pOld = m_pRowArea->takeWidget()) {
        pOld->hide();
        m_leavingPages.append(pOld);
        m_leavingRows += m_rows;
        m_leaveTimer.start(0);
    }
    for (const auto& pRow : qAsConst(m_rows)) {
        // The focus of a name that goes with its row is no end of its editing.
        pRow->m_pNameEdit->disconnect(this);
        pRow->m_pSelectBox->disconnect(this);
    }
    auto* pPage = new QWidget;
    pPage->setObjectName(QStringLiteral("m_pRowPage"));
    auto* pFirst = new QWidget(pPage);
    m_pHBoxSpectrumList = rowColumn(*pFirst);
    m_pHBoxSpectrumList->setObjectName(QStringLiteral("m_pHBoxSpectrumList"));
    m_pSliceColumn = rowColumn(*pPage);
    m_pSliceColumn->addWidget(pFirst);
    m_pSliceColumn->addStretch(1);
    m_pRowArea->setWidget(pPage);
    m_rows.clear();
    qDeleteAll(m_spectra);
    m_spectra.clear();
    m_covered.clear();
    m_nRowLimit = 0;
    textEdit->clear();
    showRowCount();
}

void SpUnmixSpectrumLibraryWnd::dropSlice()
{
    if (m_leavingPages.isEmpty()) {
        return;
    }
    const auto slices = m_leavingPages.last()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    if (slices.isEmpty()) {
        delete m_leavingPages.takeLast();
    } else {
        delete slices.last(); // many widgets go fast only together with their parent
    }
    while (!m_leavingRows.isEmpty() && m_leavingRows.last()->m_pSelectBox.isNull()) {
        m_leavingRows.removeLast();
    }
    if (!m_leavingPages.isEmpty()) {
        m_leaveTimer.start(0);
    }
}

void SpUnmixSpectrumLibraryWnd::addRows()
{
    const int nFirst = m_rows.size();
    const int nEnd = std::min(m_nRowLimit, nFirst + kRowsOfSlice);
    if (nFirst < nEnd) {
        addSlice(nEnd);
    }
    tellSpectra(nFirst);
    showRowCount();
    if (nEnd < m_nRowLimit) {
        m_rowTimer.start(0);
    }
}

// The first rows stand in the list, each later slice in a widget of its own: whenever something comes, a layout
// arranges all that is in it, but not what is in its widgets.
void SpUnmixSpectrumLibraryWnd::addSlice(int nEnd)
{
    const bool bFirst = m_rows.size() < kRowsAtFirst;
    QWidget* pPage = m_pRowArea->widget();
    QWidget* pSlice = bFirst ? m_pHBoxSpectrumList->parentWidget() : new QWidget(pPage);
    QVBoxLayout* pColumn = bFirst ? m_pHBoxSpectrumList : rowColumn(*pSlice);
    // A widget that appears has everything squeezed into the size that the page had without it, unless nobody arranges
    // the page until that has grown.
    m_pSliceColumn->setEnabled(false);
    pColumn->setEnabled(false);
    while (m_rows.size() < nEnd) {
        addRow(*pSlice);
        pColumn->addLayout(m_rows.last()->m_pLayout);
    }
    if (!bFirst) {
        m_pSliceColumn->insertWidget(m_pSliceColumn->count() - 1, pSlice); // above the stretch
    }
    pSlice->show();
    pColumn->setEnabled(true);
    m_pSliceColumn->setEnabled(true);
    m_pSliceColumn->invalidate();
    QCoreApplication::postEvent(pPage, new QEvent(QEvent::LayoutRequest));
}

void SpUnmixSpectrumLibraryWnd::addRow(QWidget& slice)
{
    const int nPlace = m_rows.size();
    const auto pRow =
        QSharedPointer<SpumKyvoSpectrumCtrl>::create(&slice, m_eAxis != SPECTRUMAXIS_TIME, m_bMultiSelect);
    pRow->hide();
    m_spectra.at(nPlace)->attachControl(pRow, false);
    if (!m_bMultiSelect) {
        connect(pRow->m_pSelectBox, &QAbstractButton::toggled, this, [this, nPlace](bool bOn) {
            if (bOn) {
                deselectAllBut(nPlace);
            }
        });
    }
    connect(pRow->m_pColorCombo, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &SpUnmixSpectrumLibraryWnd::updateSpectrumPlot);
    connect(pRow->m_pSelectBox, &QAbstractButton::toggled, this, &SpUnmixSpectrumLibraryWnd::updateSpectrumPlot);
    connect(pRow->m_pNameEdit, &QLineEdit::editingFinished, this, &SpUnmixSpectrumLibraryWnd::updateSpectrumPlot);

    // People count from 1.
    const QString number = QString::number(nPlace + 1);
    pRow->m_pIndexLabel->setText(number);
    pRow->m_pIndexLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    pRow->m_pIndexLabel->setMinimumWidth(
        pRow->m_pIndexLabel->fontMetrics().horizontalAdvance(QString::number(m_spectra.size())));
    pRow->m_pSelectBox->setAccessibleName(tr("Select spectrum %1").arg(number));
    pRow->m_pNameEdit->setAccessibleName(tr("Name of spectrum %1").arg(number));
    pRow->m_pColorCombo->setAccessibleName(tr("Color of spectrum %1").arg(number));

    QWidget* pBefore = m_rows.isEmpty() ? m_pNotationLE : static_cast<QWidget*>(m_rows.last()->m_pColorCombo);
    setTabOrder(pBefore, pRow->m_pSelectBox);
    setTabOrder(pRow->m_pSelectBox, pRow->m_pNameEdit);
    setTabOrder(pRow->m_pNameEdit, pRow->m_pColorCombo);
    for (QWidget* pPart : std::initializer_list<QWidget*>{pRow->m_pIndexLabel, pRow->m_pSelectBox, pRow->m_pNameEdit,
                                                          pRow->m_pColorCombo}) {
        pPart->show();
    }
    m_rows.append(pRow);
}

// Radio buttons exclude only those beside them in their slice.
void SpUnmixSpectrumLibraryWnd::deselectAllBut(int nPlace)
{
    for (int i = 0; i < m_spectra.size(); ++i) {
        if (i != nPlace) {
            m_spectra.at(i)->settings.selected = false;
        }
        if (i != nPlace && i < m_rows.size()) {
            const QSignalBlocker blocker(m_rows.at(i)->m_pSelectBox);
            m_rows.at(i)->uncheck();
        }
    }
}

// The information of the spectra that got a row.
void SpUnmixSpectrumLibraryWnd::tellSpectra(int nFirst)
{
    QStringList lines;
    for (int i = nFirst; i < m_rows.size(); ++i) {
        lines += m_spectra.at(i)->toolTipLines();
        lines += QStringLiteral(" ");
    }
    QTextCursor cursor(textEdit->document());
    cursor.movePosition(QTextCursor::End);
    if (nFirst > 0 && !lines.isEmpty()) {
        cursor.insertBlock();
    }
    cursor.insertText(lines.join(QLatin1Char('\n')));
}

void SpUnmixSpectrumLibraryWnd::showRowCount()
{
    m_pShowAllBtn->setVisible(m_nRowLimit < m_spectra.size());
    m_pShowAllBtn->setText(tr("Show all %1 spectra").arg(m_spectra.size()));
}

void SpUnmixSpectrumLibraryWnd::onClickShowAll()
{
    m_nRowLimit = m_spectra.size();
    showRowCount();
    addRows();
}

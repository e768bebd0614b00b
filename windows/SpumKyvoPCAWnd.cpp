// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/SpumKyvoPCAWnd.h"

#include "windows/explainedVariance.h"
#include "windows/widgets/focusFrame.h"

#include <QHeaderView>
#include <QPushButton>

namespace {

constexpr int kPixelsPerCharacter = 7;
constexpr int kHeaderMargin = 8;      // pixels that a header takes beside its text
constexpr double kSmallestFont = 6.0; // points
constexpr double kFontStep = 0.25;    // points
constexpr int kRowMargin = 4;         // pixels that a row takes beside its text

// The columns have the width that a number of characters usually takes; where letters are wider, they become smaller.
QFont fittingFont(QFont font, const QString& strText, int nWidth)
{
    while (QFontMetrics(font).horizontalAdvance(strText) > nWidth && font.pointSizeF() > kSmallestFont) {
        font.setPointSizeF(font.pointSizeF() - kFontStep);
    }
    return font;
}

} // namespace

SpumKyvoPCAWnd::SpumKyvoPCAWnd(QWidget* pParent) : QDialog(pParent)
{
    setupUi(this);
    frameFocusOf(*dialogButtonBox->button(QDialogButtonBox::Close));
    init();
}

void SpumKyvoPCAWnd::init()
{
    const QStringList headers{tr("# of Components"), tr("Explained Variance(%)")};
    m_pDataTable->setColumnCount(headers.size());
    m_pDataTable->setHorizontalHeaderLabels(headers);
    QFont font = m_pDataTable->horizontalHeader()->font();
    for (int column = 0; column < headers.size(); ++column) {
        const int width = headers[column].length() * kPixelsPerCharacter;
        m_pDataTable->setColumnWidth(column, width);
        m_pDataTable->horizontalHeaderItem(column)->setToolTip(headers[column]);
        font = fittingFont(font, headers[column], width - kHeaderMargin);
    }
    m_pDataTable->horizontalHeader()->setFont(font);
    m_pDataTable->horizontalHeader()->setHighlightSections(false); // bold letters would not fit
    m_pDataTable->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kRowMargin);
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

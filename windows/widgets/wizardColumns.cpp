// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/widgets/wizardColumns.h"

#include "windows/ui_SpUnmixWizardWnd.h"

#include <QHeaderView>
#include <QStyle>

namespace {

// Of the page that has room for both columns as the form has them, in characters.
constexpr int wideEnough = 90;
constexpr int narrowMargin = 2;
constexpr int tableWidth = 210;
constexpr int narrowTableWidth = 120;
constexpr int columnWidth = 170;

void setMargins(QLayout& layout, bool bNarrow)
{
    if (bNarrow) {
        layout.setContentsMargins(narrowMargin, narrowMargin, narrowMargin, narrowMargin);
        return;
    }
    const QStyle& style = *layout.parentWidget()->style();
    const auto margin = [&style](QStyle::PixelMetric eSide) { return style.pixelMetric(eSide); };
    layout.setContentsMargins(margin(QStyle::PM_LayoutLeftMargin), margin(QStyle::PM_LayoutTopMargin),
                              margin(QStyle::PM_LayoutRightMargin), margin(QStyle::PM_LayoutBottomMargin));
}

} // namespace

// By the width of the page and not of the column, which depends on what comes out of this.
void fitWizardColumns(Ui::SpUnmixWizardWnd& form, int nPageWidth)
{
    const bool bNarrow = nPageWidth < wideEnough * form.m_pMaskProbePage->fontMetrics().averageCharWidth();
    if (bNarrow == form.label_2->wordWrap()) {
        return;
    }
    for (QBoxLayout* pRow : {form.horizontalLayout_3, form.horizontalLayout_4}) {
        pRow->setDirection(bNarrow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    }
    for (QLabel* pLabel : {form.m_pDataPointInfo, form.label_2, form.label2}) {
        pLabel->setWordWrap(bNarrow);
    }
    for (QLayout* pGroup : std::initializer_list<QLayout*>{form.verticalLayout, form.gridLayout, form.verticalLayout_2,
                                                           form.verticalLayout_3, form.horizontalLayout_4,
                                                           form.gridLayout_2, form.gridLayout_3}) {
        setMargins(*pGroup, bNarrow);
    }
    form.m_pProbeTable->setMinimumWidth(bNarrow ? narrowTableWidth : tableWidth);
    form.m_pProbeTable->horizontalHeader()->setSectionResizeMode(bNarrow ? QHeaderView::Stretch
                                                                         : QHeaderView::Interactive);
    if (!bNarrow) {
        form.m_pProbeTable->setColumnWidth(0, columnWidth);
    }

    // As narrow as the column: its title asks for more than what is in the group.
    form.groupBoxProbe->setMinimumWidth(bNarrow ? 1 : 0);
}

// SPDX-License-Identifier: GPL-3.0-or-later
// The window that tells how many components the data hold.
#include "support/screen.h"

#include "windows/SpumKyvoPCAWnd.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>

#include <gtest/gtest.h>

#include <vector>

namespace {

using Values = XTNT::Vector<double>;

Values valuesOf(const std::vector<double>& list)
{
    Values values(static_cast<long long>(list.size()));
    long long i = 0;
    for (const double value : list) {
        values[i++] = value;
    }
    return values;
}

QString cell(const SpumKyvoPCAWnd& window, int nRow, int nColumn)
{
    const QTableWidgetItem* pItem = window.m_pDataTable->item(nRow, nColumn);
    return pItem != nullptr ? pItem->text() : QString();
}

TEST(PcaWindowTest, OpensAsDesigned)
{
    const SpumKyvoPCAWnd window;
    EXPECT_EQ(window.windowTitle(), "Principle Component Analysis");
    EXPECT_EQ(window.size(), QSize(274, 302));
    EXPECT_EQ(window.label->text(), "Suggested # of components:");
    EXPECT_EQ(window.label_2->text(), "Explained variance (%):");
    EXPECT_EQ(window.m_pNCompLabel->toolTip(), "Suggested number of independent components within the data");
    EXPECT_EQ(window.m_pNCompLabel->whatsThis(),
              "Suggested number of independent components within the data: This number is based on the target to "
              "explain at least 99% of the data variance.");
    EXPECT_EQ(window.m_pVarianceLabel->toolTip(), "Explained variance by the suggested number of components");
    EXPECT_EQ(window.m_pDataTable->toolTip(), "Explained variance by number of components");
    EXPECT_EQ(window.label_3->text(),
              "Note: Suggestion is made based on the assumption that the variance due to the noise is less than 1%. "
              "Otherwise, it may overestimate the real components.");
    EXPECT_TRUE(window.label_3->wordWrap());
    ASSERT_EQ(window.m_pDataTable->columnCount(), 2);
    EXPECT_EQ(window.m_pDataTable->horizontalHeaderItem(0)->text(), "# of Components");
    EXPECT_EQ(window.m_pDataTable->horizontalHeaderItem(1)->text(), "Explained Variance(%)");
    EXPECT_EQ(window.m_pDataTable->columnWidth(0), 15 * 7);
    EXPECT_EQ(window.m_pDataTable->columnWidth(1), 21 * 7);
}

TEST(PcaWindowTest, OneEigenvalueSuggestsOneComponentThatExplainsAll)
{
    SpumKyvoPCAWnd window;
    Values values = valuesOf({42.0});
    window.setEigenvalues(values);
    EXPECT_EQ(window.m_pNCompLabel->text(), "1");
    EXPECT_EQ(window.m_pVarianceLabel->text(), "100");
    ASSERT_EQ(window.m_pDataTable->rowCount(), 1);
    EXPECT_EQ(cell(window, 0, 1), "100");
}

TEST(PcaWindowTest, ThreeEigenvaluesGiveThreeNumberedRows)
{
    SpumKyvoPCAWnd window;
    Values values = valuesOf({6.0, 3.95, 0.05});
    window.setEigenvalues(values);
    EXPECT_EQ(window.m_pNCompLabel->text(), "2");
    EXPECT_EQ(window.m_pVarianceLabel->text(), "99.5");
    ASSERT_EQ(window.m_pDataTable->rowCount(), 3);
    for (int row = 0; row < 3; ++row) {
        EXPECT_EQ(cell(window, row, 0), QString::number(row + 1));
        for (int column = 0; column < 2; ++column) {
            EXPECT_EQ(window.m_pDataTable->item(row, column)->textAlignment(), 4);
        }
    }
    EXPECT_EQ(cell(window, 0, 1), "60");
    EXPECT_EQ(cell(window, 1, 1), "99.5");
    EXPECT_EQ(cell(window, 2, 1), "100");
}

TEST(PcaWindowTest, SixDigitsAreShown)
{
    SpumKyvoPCAWnd window;
    Values values = valuesOf({2.0, 1.0});
    window.setEigenvalues(values);
    EXPECT_EQ(cell(window, 0, 1), "66.6667");
}

TEST(PcaWindowTest, ValuesBecomePercentagesAndWhatSharesThemStays)
{
    SpumKyvoPCAWnd window;
    const Values kept = valuesOf({3.0, 1.0});
    Values values = kept;
    window.setEigenvalues(values);
    EXPECT_DOUBLE_EQ(values[0], 75.0);
    EXPECT_DOUBLE_EQ(values[1], 100.0);
    EXPECT_EQ(kept[0], 3.0);
}

class NothingToShowTest : public ::testing::TestWithParam<std::vector<double>>
{
};

TEST_P(NothingToShowTest, LeavesLabelsAndTable)
{
    SpumKyvoPCAWnd window;
    const QString count = window.m_pNCompLabel->text();
    const QString percent = window.m_pVarianceLabel->text();
    Values values = valuesOf(GetParam());
    window.setEigenvalues(values);
    EXPECT_EQ(window.m_pNCompLabel->text(), count);
    EXPECT_EQ(window.m_pVarianceLabel->text(), percent);
    EXPECT_EQ(window.m_pDataTable->rowCount(), 0);

    Values good = valuesOf({3.0, 1.0});
    window.setEigenvalues(good);
    Values again = valuesOf(GetParam());
    window.setEigenvalues(again);
    EXPECT_EQ(window.m_pNCompLabel->text(), "2");
    EXPECT_EQ(window.m_pDataTable->rowCount(), 2);
}

INSTANTIATE_TEST_SUITE_P(Values, NothingToShowTest,
                         ::testing::Values(std::vector<double>{}, std::vector<double>{0.0, 0.0},
                                           std::vector<double>{-1.0, -2.0}));

TEST(PcaWindowTest, ClosesByButtonAndByEscape)
{
    SpumKyvoPCAWnd window;
    screen::show(window);
    QTest::mouseClick(window.dialogButtonBox->button(QDialogButtonBox::Close), Qt::LeftButton);
    EXPECT_FALSE(window.isVisible());
    window.show();
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
}

class PcaLookTest : public ::testing::TestWithParam<bool>
{
};

TEST_P(PcaLookTest, ShowsAllOfItsTexts)
{
    SpumKyvoPCAWnd window;
    if (GetParam()) {
        window.setPalette(screen::darkPalette());
    }
    Values values = valuesOf({60.0, 25.0, 9.0, 4.0, 1.5, 0.3, 0.15, 0.05});
    window.setEigenvalues(values);
    screen::show(window);
    screen::keep(screen::grab(window), GetParam() ? "pca_dark" : "pca");
    const QHeaderView* pHeader = window.m_pDataTable->horizontalHeader();
    for (int column = 0; column < 2; ++column) {
        const QString text = window.m_pDataTable->horizontalHeaderItem(column)->text();
        EXPECT_LT(QFontMetrics(pHeader->font()).horizontalAdvance(text), pHeader->sectionSize(column));
    }
    EXPECT_LE(pHeader->length(), window.m_pDataTable->viewport()->width());
    for (const QLabel* pLabel : window.findChildren<QLabel*>()) {
        EXPECT_GE(pLabel->width(), pLabel->wordWrap() ? 0 : pLabel->sizeHint().width()) << qPrintable(pLabel->text());
        EXPECT_GE(pLabel->height(), pLabel->heightForWidth(pLabel->width())) << qPrintable(pLabel->text());
    }
}

INSTANTIATE_TEST_SUITE_P(LightAndDark, PcaLookTest, ::testing::Bool());

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
// The keyboard in the windows of images as they lie in the main window: Tab and Shift+Tab come to every control, in the
// order in which they are seen.
#include "MainWindowFixture.h"
#include "support/pointer.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "workbench/application/DatasetView.h"
#include "workbench/application/DatasetWindow.h"
#include "workbench/application/SequenceTab.h"
#include "workbench/application/ThumbnailView.h"
#include "workbench/application/Thumbnails.h"

#include <QCheckBox>
#include <QScrollArea>

#include <algorithm>

namespace {

// Those that take the focus by Tab: rows from the top, each from the left; what lies left of `nColumn` before the rest.
QList<QWidget*> asSeen(const QWidget& window, int nColumn)
{
    QList<QWidget*> controls;
    for (QWidget* pWidget : window.findChildren<QWidget*>()) {
        // The edit of a box has its focus through the box.
        if (pWidget->focusProxy() == nullptr && pWidget->isVisible() && pWidget->isEnabled() &&
            (pWidget->focusPolicy() & Qt::TabFocus) != 0) {
            controls.append(pWidget);
        }
    }
    const auto middle = [&window](const QWidget* pWidget) { return pWidget->mapTo(&window, pWidget->rect().center()); };
    std::sort(controls.begin(), controls.end(), [&](const QWidget* pOne, const QWidget* pOther) {
        const QPoint one = middle(pOne);
        const QPoint other = middle(pOther);
        if ((one.x() < nColumn) != (other.x() < nColumn)) {
            return one.x() < nColumn;
        }
        return std::abs(one.y() - other.y()) > 8 ? one.y() < other.y() : one.x() < other.x();
    });
    return controls;
}

std::string namesOf(const QList<QWidget*>& widgets)
{
    QStringList names;
    for (const QWidget* pWidget : widgets) {
        names << QStringLiteral("%1 %2 %3")
                     .arg(QLatin1String(pWidget->metaObject()->className()), pWidget->objectName(), pWidget->toolTip());
    }
    return names.join('\n').toStdString();
}

// What has the focus, from the first control on, until the window is left.
QList<QWidget*> visited(const QWidget& window, QWidget* pFirst, Qt::Key key)
{
    constexpr int kMost = 60;
    QList<QWidget*> seen;
    pFirst->setFocus(Qt::TabFocusReason);
    for (int i = 0; i < kMost; ++i) {
        QWidget* pFocus = QApplication::focusWidget();
        if (pFocus == nullptr || !window.isAncestorOf(pFocus) || (i > 0 && pFocus == pFirst)) {
            return seen;
        }
        seen.append(pFocus);
        QTest::keyClick(pFocus, key);
    }
    ADD_FAILURE() << "Tab stays within the window";
    return seen;
}

class TabOrderTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        makeWindow();
        m_pWindow->resize(1400, 1000);
        m_pWindow->open(mouse());
        settle();
        m_pWindow->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_pWindow.get()));
        m_pTab = m_pWindow->findChild<SequenceTab*>();
        ASSERT_NE(m_pTab, nullptr);
        ASSERT_TRUE(QTest::qWaitFor([this] { return m_pTab->thumbnails().isFinished(); }, 20000));
    }
    static void expectOrder(const QWidget& window, int nColumn = 0)
    {
        QList<QWidget*> seen = asSeen(window, nColumn);
        ASSERT_GT(seen.size(), 4);
        EXPECT_EQ(namesOf(visited(window, seen.first(), Qt::Key_Tab)), namesOf(seen));
        std::reverse(seen.begin(), seen.end());
        EXPECT_EQ(namesOf(visited(window, seen.first(), Qt::Key_Backtab)), namesOf(seen));
    }

    SequenceTab* m_pTab = nullptr;
};

TEST_F(TabOrderTest, OfTheImagesOfASequence)
{
    expectOrder(*m_pTab);
}

TEST_F(TabOrderTest, OfAnImage)
{
    m_pTab->view()->setCurrentTile(1);
    QTest::keyClick(m_pTab->view(), Qt::Key_Return);
    settle();
    auto* pImage = m_pWindow->findChild<DatasetWindow*>();
    ASSERT_NE(pImage, nullptr);
    ASSERT_TRUE(pImage->isVisible());
    pImage->findChild<QCheckBox*>("m_pOverlayBox")->setChecked(true);
    // The image with its regions, then the panel beside it.
    pImage->view()->regions().setTool(RegionEditor::Tool::Rectangle);
    QTest::mousePress(pImage->view(), Qt::LeftButton, Qt::NoModifier, pImage->view()->rect().center());
    pointer::move(*pImage->view(), pImage->view()->rect().center() + QPoint(40, 40), Qt::LeftButton);
    QTest::mouseRelease(pImage->view(), Qt::LeftButton, Qt::NoModifier,
                        pImage->view()->rect().center() + QPoint(40, 40));
    settle();
    ASSERT_EQ(pImage->view()->regions().regions().size(), 1);
    const auto* pPanel = pImage->findChild<QScrollArea*>();
    expectOrder(*pImage, pPanel->mapTo(pImage, QPoint(0, 0)).x());
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
// The composite window: what it starts with, what its controls do to the picture, the background, the spots.
#include "windows_on_screen/CompositeFixture.h"

#include <QMenu>
#include <QSignalSpy>
#include <QToolButton>

namespace {

TEST_F(CompositeWindowTest, StartsWithAnEntryForEachComponentAndThePhotograph)
{
    fillAndShow();
    ASSERT_EQ(m_window.m_pImageList->count(), 3);
    EXPECT_EQ(item(0)->text(), "Cy5");
    EXPECT_EQ(item(0)->foreground().color(), QColor("red"));
    EXPECT_EQ(item(2)->text(), "Photograph");
    for (int row = 0; row < 3; ++row) {
        EXPECT_EQ(item(row)->checkState(), Qt::Checked);
    }
    EXPECT_EQ(m_window.m_pImageList->currentRow(), 0);
    ASSERT_EQ(m_window.m_channels.size(), 3);
    EXPECT_EQ(m_window.m_channels[2]->label, "Photograph");
    EXPECT_EQ(m_window.m_channels[2]->brightness, 0.35);
    EXPECT_EQ(m_window.m_ranges[0], qMakePair(0.0, 100.0));
    EXPECT_EQ(m_window.m_ranges[1], qMakePair(0.0, 10.0));
    EXPECT_FALSE(m_window.m_pUnitCB->isEnabled());
    EXPECT_FALSE(m_window.m_pView->picture().isNull());
}

TEST_F(CompositeWindowTest, SizesThatDoNotGoTogetherAreToldAndChangeNothing)
{
    fill();
    const QImage before = m_window.getCompositeImage();
    LogCapture log;
    m_window.setCompositeData(&m_photo, m_maps, 1, {}, 3, 2, {namedChannel("A", "red"), namedChannel("B", "lime")}, 1);
    m_window.setCompositeData(&m_photo, m_maps, 1, {}, 2, 2, {namedChannel("A", "red")}, 1);
    EXPECT_EQ(log.count("SpUnmixCompositeWnd: input data size mismatch for composite image.", 3), 2);
    EXPECT_EQ(item(0)->text(), "Cy5");
    EXPECT_EQ(m_window.m_pUnitCB->currentIndex(), 0);
    EXPECT_EQ(m_window.getCompositeImage(), before);
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/LogCapture.h"
#include "support/screen.h"
#include "windows/CompositeScene.h"

#include "host/CORVQImageView.h"
#include "windows/SpUnmixCompositeWnd.h"

#include <QListWidget>

#include <gtest/gtest.h>

#include <vector>

inline XTNT::Matrix<double> mapsOf(const std::vector<std::vector<double>>& rows)
{
    XTNT::Matrix<double> data(static_cast<long long>(rows.size()), static_cast<long long>(rows.front().size()));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t j = 0; j < rows[i].size(); ++j) {
            data[static_cast<long long>(i)][j] = rows[i][j];
        }
    }
    return data;
}

inline CompositeChannel namedChannel(const QString& strLabel, const QString& strColor)
{
    CompositeChannel channel;
    channel.label = strLabel;
    channel.color = QColor(strColor);
    return channel;
}

// A window over two maps of 2 x 2 pixels: one that rises to 100, and one that rises to 10 the other way round.
class CompositeWindowTest : public ::testing::Test
{
protected:
    // Unit 0 are counts.
    void fill(int nUnit = 0)
    {
        m_window.setCompositeData(&m_photo, m_maps, nUnit, {}, 2, 2,
                                  {namedChannel("Cy5", "red"), namedChannel("Cy7", "blue")}, 1);
    }
    void fillAndShow(int nUnit = 0)
    {
        fill(nUnit);
        screen::show(m_window);
    }
    // The X-ray image is constant but for a brighter pixel at the upper left.
    void fillAndShowWithXRay()
    {
        m_xray.setValue(0, 20.0);
        m_xray.RefreshImageStats();
        fillAndShow();
        m_window.setXRayImage(&m_xray);
    }
    QListWidgetItem* item(int nRow) const { return m_window.m_pImageList->item(nRow); }
    void select(int nRow) { m_window.m_pImageList->setCurrentRow(nRow); }
    void check(int nRow, bool bOn) { item(nRow)->setCheckState(bOn ? Qt::Checked : Qt::Unchecked); }
    // The colour in the middle of an enlarged pixel of the maps.
    unsigned colorOf(int nColumn, int nRow)
    {
        const QImage picture = m_window.getCompositeImage();
        return colorAt(picture, 120 + 240 * nColumn, 120 + 240 * nRow);
    }

    CILImage m_photo = constantImage(480, 480, 50.0);
    CILImage m_xray = constantImage(480, 480, 10.0);
    XTNT::Matrix<double> m_maps = mapsOf({{0.0, 40.0, 60.0, 100.0}, {10.0, 6.0, 4.0, 0.0}});
    SpUnmixCompositeWnd m_window;
};

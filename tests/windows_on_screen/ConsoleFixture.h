// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/pointer.h"
#include "support/screen.h"

#include "engine/CImageCube.h"
#include "host/CORVGLXYPlot1.h"
#include "host/CORVPaintQImageView.h"
#include "spectra/NameEdit.h"
#include "spectra/SpumKyvoSpectrumCtrl.h"
#include "windows/SpumKyvoConsoleWnd.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QSignalSpy>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

constexpr int kCubeWidth = 40;
constexpr int kCubeHeight = 30;
constexpr int kCubeImages = 4;

// The keys of the images: filters 600, 620, ... in emission, 500, 520, ... in excitation, or time points.
inline QList<KeyPair> cubeKeys(int nType = 0, int nImages = kCubeImages)
{
    QList<KeyPair> keys;
    for (int i = 0; i < nImages; ++i) {
        switch (nType) {
        case 1:
            keys.append({QString::number(500 + 20 * i), QStringLiteral("700")});
            break;
        case 2:
            keys.append({QStringLiteral("Int1"), QString::number(45000 * i)});
            break;
        default:
            keys.append({QStringLiteral("500"), QString::number(600 + 20 * i)});
        }
    }
    return keys;
}

// The value of a pixel: rising bands in the left half of the picture, falling ones in the right half, brighter from
// line to line.
inline double cubeValue(int x, int y, int nImage, int nImages = kCubeImages)
{
    const double band = x < kCubeWidth / 2 ? nImage + 1 : nImages - nImage;
    return band * (y + 1);
}

inline void fillCube(CImageCube& cube, int nSpots = 1, std::vector<int> mask = {})
{
    ASSERT_TRUE(cube.init(kCubeWidth, kCubeHeight, nSpots, kCubeImages, std::move(mask)));
    for (int s = 0; s < nSpots; ++s) {
        for (int i = 0; i < kCubeImages; ++i) {
            std::vector<float> pixels;
            for (int p = 0; p < kCubeWidth * kCubeHeight; ++p) {
                pixels.push_back(static_cast<float>(cubeValue(p % kCubeWidth, p / kCubeWidth, i) * (s + 1)));
            }
            ASSERT_TRUE(cube.setImage(s, i, pixels));
        }
    }
    cube.m_rgbImage = QImage(kCubeWidth, kCubeHeight, QImage::Format_RGB32);
    cube.m_rgbImage.fill(QColor(30, 60, 120));
}

// Values that no short decimal holds, for comparisons to the bit.
inline bool fillWithFractions(CImageCube& cube)
{
    for (int i = 0; i < kCubeImages; ++i) {
        std::vector<float> pixels;
        for (int p = 0; p < kCubeWidth * kCubeHeight; ++p) {
            pixels.push_back(static_cast<float>(1.0 / (p + 3.7 * i + 0.1)));
        }
        if (!cube.setImage(0, i, pixels)) {
            return false;
        }
    }
    return true;
}

// A spectrum as an analysis makes it.
inline std::unique_ptr<SpectrumPlotParams> spectrumOf(const QString& strName, const QString& strColor,
                                                      const std::vector<double>& values, int nType = 0)
{
    auto pSpectrum = std::make_unique<SpectrumPlotParams>();
    pSpectrum->axis = nType;
    pSpectrum->setPairs(cubeKeys(nType, static_cast<int>(values.size())));
    for (std::size_t i = 0; i < values.size(); ++i) {
        pSpectrum->points[static_cast<int>(i)].value = values[i];
    }
    pSpectrum->settings.name = strName;
    pSpectrum->settings.color = strColor;
    return pSpectrum;
}

// The console with its toolbar in a window, as in the tab of a sequence, over a small cube.
class ConsoleTest : public ::testing::Test
{
protected:
    ConsoleTest()
    {
        auto* pLayout = new QVBoxLayout(&m_window);
        pLayout->setContentsMargins(0, 0, 0, 0);
        m_pConsole = new SpumKyvoConsoleWnd;
        m_pConsole->toolbar()->show();
        pLayout->addWidget(m_pConsole->toolbar());
        pLayout->addWidget(m_pConsole, 1);
        m_pConsole->setWindowFlags(Qt::Widget);
        m_window.resize(1000, 800);
    }
    ~ConsoleTest() override { delete m_pConsole; }

    void openCube(int nType = 0, int nSpots = 1, std::vector<int> mask = {})
    {
        fillCube(m_cube, nSpots, std::move(mask));
        ASSERT_TRUE(m_pConsole->setImageCube(cubeKeys(nType), nType, m_cube));
        screen::show(m_window);
    }

    // For what depends on the focus.
    void activate()
    {
        m_window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
    }

    SpumKyvoSpectrumCtrl& row(int nRow) const { return *m_pConsole->m_spectrumCtrls.at(nRow); }
    int rows() const { return m_pConsole->m_spectrumCtrls.size(); }
    void click(QWidget* pWidget) const { QTest::mouseClick(pWidget, Qt::LeftButton); }
    void tick(int nRow) const { row(nRow).m_pSelectBox->click(); }
    QStringList lines() const { return m_pConsole->m_pSpectrumPlot->dataLines(); }

    // Where the middle of a pixel of the cube is in its view.
    QPointF at(double x, double y) const { return m_pConsole->m_pImageCubeView->toView(QPointF(x + 0.5, y + 0.5)); }
    // A stroke with the tool that is on.
    void paint(double x1, double y1, double x2, double y2) const
    {
        pointer::drag(*m_pConsole->m_pImageCubeView, at(x1, y1), at(x2, y2));
    }
    std::vector<double> values(int nRow) const
    {
        std::vector<double> list;
        for (const SpectrumPoint& point : qAsConst(m_pConsole->m_spectra.at(nRow)->points)) {
            list.push_back(point.value);
        }
        return list;
    }
    // A new row with a dab of the pen.
    void addDab(const char* pPen, double x, double y)
    {
        click(m_pConsole->m_pAddSpectrum);
        chooseTool(rows() - 1, pPen);
        paint(x, y, x, y);
    }
    // A row with a painted region in the left (or right) half.
    void addPainted(bool bLeft)
    {
        click(m_pConsole->m_pAddSpectrum);
        const double x = bLeft ? 5.0 : 30.0;
        paint(x, 10.0, x + 5.0, 10.0);
    }
    void chooseTool(int nRow, const char* pName) const
    {
        for (QAction* pAction : row(nRow).m_pToolMenu->actions()) {
            if (pAction->text() == QLatin1String(pName)) {
                pAction->trigger();
                return;
            }
        }
        FAIL() << "no tool " << pName;
    }

    CImageCube m_cube;
    QWidget m_window;
    SpumKyvoConsoleWnd* m_pConsole = nullptr;
};

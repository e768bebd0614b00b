// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures of the plot, the table, the menu of probes and the slider, in a light and a dark palette, kept in the build
// folder to be looked at. What can be told of them without eyes is tested here.
#include "support/screen.h"

#include "host/CORVGLXYPlot1.h"
#include "host/CORVSortingTable.h"
#include "host/CORVTreeMenuComboBox.h"
#include "host/QDoubleSpinBoxEx.h"
#include "host/QSpanSlider.h"

#include <QCheckBox>
#include <QMenu>
#include <QVBoxLayout>

#include <cmath>
#include <gtest/gtest.h>

namespace {

// The share of pixels that are far from the colour at the upper left corner.
double inkShare(const QImage& picture)
{
    const QColor paper = picture.pixelColor(0, 0);
    int nInk = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            nInk += std::abs(qGray(picture.pixel(x, y)) - qGray(paper.rgb())) > 40 ? 1 : 0;
        }
    }
    return nInk / (1.0 * picture.width() * picture.height());
}

void fill(CORVGLXYPlot1& plot, double dLargest, int nExcitations)
{
    const QStringList names{"TissueAF", "ICG", "Cy5.5", "AlexaFluor 750", "Computed"};
    const QStringList colors{"lime", "red", "blue", "magenta", "black"};
    plot.setYLabelFormat("%.2f");
    for (int i = 0; i < names.size(); ++i) {
        QVector<double> x;
        QVector<double> y;
        for (int j = 0; j < 24; ++j) {
            const int nBand = j % (24 / nExcitations);
            x.append(620 + 20 * nBand);
            const double dCentre = 640 + 40 * i;
            y.append(dLargest * std::exp(-std::pow((x.last() - dCentre) / 60.0, 2)) * (1.0 + j / (24 / nExcitations)));
        }
        const QString key = QString::number(i);
        plot.addDataLine(key, names[i], x, y);
        SPlotDisplaySettings settings;
        settings.color = QColor(colors[i]);
        plot.setDisplaySettings(key, settings);
    }
    plot.setXAxisLabel("Emission Wavelength [nm]");
    plot.plotData();
}

struct LookCase
{
    const char* name;
    double largest;
    int excitations;
    QSize size;
    bool dark;
};

class PlotLookTest : public ::testing::TestWithParam<LookCase>
{
};

TEST_P(PlotLookTest, HasInkOnItsPaper)
{
    const LookCase& c = GetParam();
    CORVGLXYPlot1 plot(nullptr, "Spectrum Plot");
    if (c.dark) {
        plot.setPalette(screen::darkPalette());
    }
    plot.resize(c.size);
    fill(plot, c.largest, c.excitations);
    screen::show(plot);
    const QImage picture = screen::grab(plot);
    screen::keep(picture, c.name);
    EXPECT_GT(inkShare(picture), 0.02);
    EXPECT_LT(inkShare(picture), 0.5);
}

INSTANTIATE_TEST_SUITE_P(Table, PlotLookTest,
                         ::testing::Values(LookCase{"plot_plain", 1.0, 1, {300, 200}, false},
                                           LookCase{"plot_radiance", 1.3e9, 1, {300, 200}, false},
                                           LookCase{"plot_efficiency", 1e-9, 1, {300, 200}, false},
                                           LookCase{"plot_excitations", 1.3e9, 3, {300, 200}, false},
                                           LookCase{"plot_dark", 1.3e9, 3, {300, 200}, true},
                                           LookCase{"plot_large", 1.3e9, 3, {700, 450}, false}));

class ControlsLookTest : public ::testing::TestWithParam<bool>
{
};

TEST_P(ControlsLookTest, StandOffTheirWindow)
{
    QWidget window;
    if (GetParam()) {
        window.setPalette(screen::darkPalette());
    }
    window.setAutoFillBackground(true);
    auto* pLayout = new QVBoxLayout(&window);
    for (const auto& [nLower, nUpper] : {std::pair{5, 95}, {40, 60}, {50, 50}}) {
        auto* pSlider = new QSpanSlider;
        pSlider->setRange(0, 100);
        pSlider->setSpan(nLower, nUpper);
        pLayout->addWidget(pSlider);
    }
    auto* pBox = new QDoubleSpinBoxEx;
    pBox->m_bExponentDisplay = true;
    pBox->setRange(0.0, 1e12);
    pBox->setValue(1.3e9);
    pLayout->addWidget(pBox);
    auto* pTable = new CORVSortingTable(3, 4);
    pTable->setHorizontalHeaderLabels({"570", "605", "Int10", "much longer key"});
    for (int nColumn = 0; nColumn < 4; ++nColumn) {
        pTable->setColumnWidth(nColumn, 30);
        pTable->setCellWidget(0, nColumn, new QCheckBox);
    }
    pTable->setMinimumHeight(220);
    pLayout->addWidget(pTable);
    window.resize(320, 420);
    screen::show(window);
    window.findChild<QSpanSlider*>()->setFocus();
    const QImage picture = screen::grab(window);
    screen::keep(picture, GetParam() ? "controls_dark" : "controls");
    EXPECT_GT(inkShare(picture), 0.01);
}

INSTANTIATE_TEST_SUITE_P(LightAndDark, ControlsLookTest, ::testing::Bool());

TEST(ProbeMenuLookTest, ShowsFamilies)
{
    CORVTreeMenuComboBox combo(PROBETREE_LIBRARY);
    combo.addItems({"Unknown", "AlexaFluor 488", "AlexaFluor 647", "AlexaFluor 750", "Cy5", "Cy5.5", "Cy7", "ICG",
                    "ICG in water", "iRFP670", "iRFP720", "DiR"});
    combo.setCurrentIndex(3);
    screen::show(combo);
    combo.showPopup();
    auto* pMenu = combo.findChild<QMenu*>("probeMenu");
    ASSERT_NE(pMenu, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(pMenu));
    screen::keep(screen::grab(*pMenu), "probe_menu");
    QMenu* pFamily = pMenu->actions()[1]->menu();
    ASSERT_NE(pFamily, nullptr);
    pFamily->ensurePolished();
    screen::keep(screen::grab(*pFamily), "probe_family");
    combo.hidePopup();
}

} // namespace

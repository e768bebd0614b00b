// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVGLXYPlot1.h"
#include "platform/orvwidgets/PlotChart.h"
#include "platform/orvwidgets/PlotLegend.h"
#include "platform/orvwidgets/PlotView.h"

#include <QAbstractAxis>
#include <QChart>
#include <QChartView>
#include <QDir>
#include <QFile>
#include <QGraphicsSimpleTextItem>
#include <QHelpEvent>
#include <QLabel>
#include <QLineSeries>
#include <QTemporaryDir>
#include <QTest>
#include <QToolTip>
#include <QValueAxis>

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

using namespace QtCharts;

class PlotTest : public ::testing::Test
{
protected:
    PlotTest()
    {
        QPalette light;
        light.setColor(QPalette::Base, Qt::white);
        light.setColor(QPalette::Text, Qt::black);
        m_plot.setPalette(light);
        m_plot.setYLabelFormat("%.2f");
        m_plot.resize(300, 200);
    }

    void show()
    {
        m_plot.plotData();
        m_plot.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_plot));
        QCoreApplication::processEvents();
    }

    QChart* chart() { return m_plot.findChild<QChartView*>()->chart(); }
    QLineSeries* series(int nIndex) { return qobject_cast<QLineSeries*>(chart()->series().value(nIndex)); }
    QValueAxis* axis(Qt::Orientation eOrientation)
    {
        return qobject_cast<QValueAxis*>(chart()->axes(eOrientation).first());
    }
    QString powerShown()
    {
        for (QGraphicsItem* pItem : chart()->childItems()) {
            if (auto* pText = dynamic_cast<QGraphicsSimpleTextItem*>(pItem)) {
                return pText->text();
            }
        }
        return QString();
    }
    orv::PlotLegend* legend() { return m_plot.findChild<orv::PlotLegend*>(); }
    static SPlotDisplaySettings colored(const char* pName)
    {
        SPlotDisplaySettings settings;
        settings.color = QColor(pName);
        return settings;
    }

    CORVGLXYPlot1 m_plot{nullptr, "Spectrum Plot"};
};

// A view hands a chart that it is to show no more to whoever gave it another.
TEST_F(PlotTest, TheChartIsTheOneThatTheViewWasMadeWith)
{
    orv::PlotView view(nullptr);
    const QChart* pChart = view.chart();
    orv::PlotLegend legend(nullptr);
    const orv::PlotChart chart(&view, &legend, QString());
    EXPECT_EQ(view.chart(), pChart);
}

TEST_F(PlotTest, IsCheapUntilItIsWanted)
{
    EXPECT_EQ(m_plot.findChild<QChartView*>(), nullptr);
    m_plot.initInstance();
    EXPECT_NE(m_plot.findChild<QChartView*>(), nullptr);
    m_plot.initInstance();
    EXPECT_EQ(m_plot.findChildren<QChartView*>().size(), 1);
}

TEST_F(PlotTest, LinesNamedAlikeStandBesideEachOther)
{
    EXPECT_TRUE(m_plot.addDataLine("row 1", "Cursor", {1, 2}, {3, 4}));
    EXPECT_TRUE(m_plot.addDataLine("row 2", "Cursor", {1, 2}, {5, 6}));
    EXPECT_TRUE(m_plot.addDataLine("Cursor", {1, 2}, {7, 8}));
    m_plot.plotData();
    EXPECT_EQ(chart()->series().size(), 3);
    m_plot.removeDataLine("Cursor");
    EXPECT_EQ(m_plot.dataLines(), (QStringList{"row 1", "row 2"}));
    EXPECT_EQ(chart()->series().size(), 2);
    m_plot.removeDataLine("nobody");
    EXPECT_EQ(m_plot.dataLines().size(), 2);
}

TEST_F(PlotTest, ALineWithAKnownKeyTakesTheOldOnesPlace)
{
    m_plot.addDataLine("a", {1, 2}, {3, 4});
    m_plot.addDataLine("b", {1, 2}, {3, 4});
    m_plot.plotData();
    m_plot.addDataLine("a", {1, 2}, {30, 40});
    m_plot.plotData();
    EXPECT_EQ(m_plot.dataLines(), (QStringList{"a", "b"}));
    EXPECT_EQ(chart()->series().size(), 2);
}

TEST_F(PlotTest, RefusesALineWithFewerValuesThanPlaces)
{
    EXPECT_FALSE(m_plot.addDataLine("a", {1, 2}, {3}));
    EXPECT_TRUE(m_plot.dataLines().isEmpty());
}

TEST_F(PlotTest, BlackStaysBlackWheneverItIsSet)
{
    m_plot.addDataLine("a", {1, 2}, {3, 4});
    m_plot.setDisplaySettings("a", colored("black"));
    m_plot.plotData();
    EXPECT_EQ(series(0)->pen().color(), QColor(Qt::black));
    m_plot.addDataLine("b", {1, 2}, {3, 4});
    m_plot.plotData();
    m_plot.setDisplaySettings("b", colored("black"));
    EXPECT_EQ(series(1)->pen().color(), QColor(Qt::black));
    m_plot.setDisplaySettings("b", colored("lime"));
    EXPECT_EQ(series(1)->pen().color(), QColor("lime"));
}

TEST_F(PlotTest, ALineIsBrokenWhereXRunsBackwardsAndHasOneEntryInTheLegend)
{
    m_plot.addDataLine("a", {700, 720, 740, 700, 720, 740}, {1, 2, 3, 4, 5, 6});
    m_plot.setDisplaySettings("a", colored("red"));
    show();
    ASSERT_EQ(chart()->series().size(), 2);
    EXPECT_EQ(series(0)->count(), 3);
    EXPECT_EQ(series(1)->count(), 3);
    EXPECT_EQ(series(1)->pen().color(), QColor("red"));
    ASSERT_EQ(legend()->entries().size(), 1);
    EXPECT_EQ(legend()->entries()[0].m_color, QColor("red"));
    EXPECT_FALSE(chart()->legend()->isVisible());
}

TEST_F(PlotTest, PointsThatAreNoNumbersAreLeftOutWithoutAWord)
{
    static QStringList messages;
    messages.clear();
    const auto pBefore = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& strText) { messages.append(strText); });
    m_plot.addDataLine("a", {1, 2, 3}, {1, std::numeric_limits<double>::quiet_NaN(), 3});
    m_plot.plotData();
    const QPixmap picture = m_plot.grab();
    qInstallMessageHandler(pBefore);
    EXPECT_FALSE(picture.isNull());
    EXPECT_TRUE(messages.filter("NaN").isEmpty()) << messages.join('\n').toStdString();
    EXPECT_EQ(chart()->series().size(), 2);
    EXPECT_TRUE(series(0)->pointsVisible());
}

TEST_F(PlotTest, LargeAndSmallValuesShareAPowerAtTheAxis)
{
    m_plot.addDataLine("a", {700, 720}, {2e8, 1.3e9});
    m_plot.plotData();
    EXPECT_EQ(powerShown(), QString::fromUtf8("×10⁹"));
    EXPECT_EQ(axis(Qt::Vertical)->labelFormat(), "%.2f");
    EXPECT_LE(axis(Qt::Vertical)->max(), 10.0);
    EXPECT_DOUBLE_EQ(series(0)->at(1).y(), 1.3);
    m_plot.clear();
    m_plot.addDataLine("a", {700, 720}, {2e-10, 4e-9});
    m_plot.plotData();
    EXPECT_EQ(powerShown(), QString::fromUtf8("×10⁻⁹"));
    EXPECT_NEAR(series(0)->at(1).y(), 4.0, 1e-12);
    m_plot.clear();
    m_plot.addDataLine("a", {700, 720}, {0.2, 1.0});
    m_plot.plotData();
    EXPECT_EQ(powerShown(), "");
}

TEST_F(PlotTest, ALineThatChangesThePowerMovesTheOthers)
{
    m_plot.addDataLine("a", {700, 720}, {20, 40});
    m_plot.plotData();
    m_plot.addDataLine("b", {700, 720}, {2e9, 4e9});
    m_plot.plotData();
    EXPECT_NEAR(series(0)->at(1).y(), 4e-8, 1e-15);
    m_plot.removeDataLine("b");
    m_plot.plotData();
    EXPECT_DOUBLE_EQ(series(0)->at(1).y(), 40.0);
}

TEST_F(PlotTest, ShowsMarksAndLabelsAtItsSmallSize)
{
    for (int i = 0; i < 5; ++i) {
        QVector<double> x;
        QVector<double> y;
        for (int j = 0; j < 24; ++j) {
            x.append(500 + 10 * j);
            y.append(1e9 * std::exp(-0.01 * (j - 4 * i) * (j - 4 * i)));
        }
        m_plot.addDataLine(QString("UMX%1").arg(i + 1), x, y);
    }
    m_plot.setXAxisLabel("Emission Wavelength [nm]");
    show();
    EXPECT_GT(chart()->plotArea().width(), 200.0);
    EXPECT_GT(chart()->plotArea().height(), 90.0);
    EXPECT_EQ(axis(Qt::Horizontal)->titleText(), "Emission Wavelength [nm]");
}

TEST_F(PlotTest, TheLegendFollowsItsFlag)
{
    m_plot.addDataLine("a", {1, 2}, {3, 4});
    m_plot.plotData();
    EXPECT_TRUE(m_plot.isLegendVisible());
    EXPECT_FALSE(legend()->isHidden());
    m_plot.setLegendVisible(false);
    EXPECT_FALSE(m_plot.isLegendVisible());
    EXPECT_TRUE(legend()->isHidden());
    m_plot.setLegendVisible(true);
    EXPECT_FALSE(legend()->isHidden());
}

TEST_F(PlotTest, TheLegendHasTheNamesWholeInAsManyRowsAsTheyTake)
{
    const QStringList names{"TissueAF", "ICG", "Cy5.5", "AlexaFluor 750", "Computed", "Click-Beetle Red Luciferase"};
    for (int i = 0; i < names.size(); ++i) {
        m_plot.addDataLine(QString::number(i), names[i], {1, 2}, {3, 4});
    }
    show();
    ASSERT_EQ(legend()->places().size(), 6);
    const QFontMetrics metrics(legend()->font());
    for (int i = 0; i < names.size(); ++i) {
        const QRect place = legend()->places()[i];
        EXPECT_GE(place.width(), metrics.horizontalAdvance(names[i])) << i;
        EXPECT_TRUE(legend()->rect().contains(place)) << i;
        EXPECT_TRUE(i == 0 || !place.intersects(legend()->places()[i - 1])) << i;
    }
    EXPECT_GT(legend()->places()[5].top(), legend()->places()[0].top());
}

TEST_F(PlotTest, TheLegendTakesAThirdOfThePlotAtMost)
{
    for (int i = 0; i < 60; ++i) {
        m_plot.addDataLine(QString::number(i), QString(i == 0 ? 200 : 12, 'x'), {1, 2}, {3, 4});
    }
    show();
    EXPECT_LE(legend()->height(), m_plot.height() / 3);
    EXPECT_LT(legend()->places().size(), 60);
    EXPECT_LE(legend()->places()[0].width(), m_plot.width());
    EXPECT_GT(chart()->plotArea().height(), 50.0);
}

TEST_F(PlotTest, AnEntryOfTheLegendTellsItsWholeNameInATip)
{
    m_plot.addDataLine("1", "<b>long</b>", {1, 2}, {3, 4});
    show();
    const QPoint place = legend()->places()[0].center();
    QHelpEvent help(QEvent::ToolTip, place, legend()->mapToGlobal(place));
    QApplication::sendEvent(legend(), &help);
    EXPECT_EQ(QToolTip::text(), "&lt;b&gt;long&lt;/b&gt;");
}

TEST_F(PlotTest, TextsThatLookLikeMarkupAreShownAsTheyAre)
{
    m_plot.addDataLine("1", "<b>a</b>", {1, 2}, {3, 4});
    m_plot.setXAxisLabel("<i>x</i>");
    m_plot.plotData();
    EXPECT_EQ(legend()->entries()[0].m_strLabel, "<b>a</b>"); // painted as it is
    EXPECT_EQ(axis(Qt::Horizontal)->titleText(), "&lt;i&gt;x&lt;/i&gt;");
}

TEST_F(PlotTest, ClearingTakesLinesAndLabelAway)
{
    m_plot.addDataLine("a", {1, 2}, {3, 4});
    m_plot.setXAxisLabel("nm");
    m_plot.plotData();
    m_plot.clear();
    EXPECT_TRUE(chart()->series().isEmpty());
    m_plot.plotData();
    EXPECT_TRUE(m_plot.dataLines().isEmpty());
    EXPECT_FALSE(axis(Qt::Horizontal)->isTitleVisible());
    EXPECT_FALSE(m_plot.grab().isNull());
}

TEST_F(PlotTest, ARectangleZoomsInAndADoubleClickBack)
{
    m_plot.addDataLine("a", {500, 600, 700}, {0, 5e9, 1e10});
    show();
    auto* pPort = m_plot.findChild<QChartView*>()->viewport();
    const QRectF area = chart()->plotArea();
    const QPoint a = (area.topLeft() + QPointF(area.width() * 0.25, area.height() * 0.25)).toPoint();
    const QPoint b = (area.topLeft() + QPointF(area.width() * 0.75, area.height() * 0.75)).toPoint();
    QTest::mousePress(pPort, Qt::LeftButton, {}, a);
    QMouseEvent move(QEvent::MouseMove, b, pPort->mapToGlobal(b), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(pPort, &move);
    QTest::mouseRelease(pPort, Qt::LeftButton, {}, b);
    EXPECT_NEAR(m_plot.zoom().left(), 550.0, 3.0);
    EXPECT_NEAR(m_plot.zoom().right(), 650.0, 3.0);
    EXPECT_NEAR(m_plot.zoom().top(), 2.5e9, 2e8);
    EXPECT_NEAR(axis(Qt::Horizontal)->min(), m_plot.zoom().left(), 1e-6);
    // New values over the same x, as a cursor that moves brings them, leave the zoom.
    m_plot.addDataLine("Cursor", {500, 600, 700}, {1, 2, 3});
    m_plot.plotData();
    EXPECT_FALSE(m_plot.zoom().isNull());
    QTest::mouseDClick(pPort, Qt::LeftButton, {}, a);
    EXPECT_TRUE(m_plot.zoom().isNull());
    EXPECT_DOUBLE_EQ(axis(Qt::Horizontal)->min(), 500.0);
}

TEST_F(PlotTest, OtherXEndsTheZoomAndAClickStartsNone)
{
    m_plot.addDataLine("a", {500, 600}, {0, 1});
    show();
    QTest::mouseClick(m_plot.findChild<QChartView*>()->viewport(), Qt::LeftButton, {}, QPoint(150, 80));
    EXPECT_TRUE(m_plot.zoom().isNull());
    m_plot.setZoom(QRectF(520, 0.2, 50, 0.5));
    EXPECT_FALSE(m_plot.zoom().isNull());
    m_plot.addDataLine("a", {500, 800}, {0, 1});
    m_plot.plotData();
    EXPECT_TRUE(m_plot.zoom().isNull());
}

TEST_F(PlotTest, ThePointAtThePointerIsReadOut)
{
    m_plot.addDataLine("1", "ICG <b>", {500, 600, 700}, {0, 1.25e9, 1e9});
    show();
    auto* pReadOut = m_plot.findChild<QLabel*>("readOut");
    auto* pPort = m_plot.findChild<QChartView*>()->viewport();
    const QPoint place = chart()->mapToPosition(series(0)->at(1)).toPoint() + QPoint(2, 2);
    QMouseEvent move(QEvent::MouseMove, place, pPort->mapToGlobal(place), Qt::NoButton, Qt::NoButton, {});
    QApplication::sendEvent(pPort, &move);
    EXPECT_TRUE(pReadOut->isVisible());
    EXPECT_EQ(pReadOut->text(), "ICG <b>\n600, 1.25e+09");
    EXPECT_TRUE(pReadOut->parentWidget()->rect().contains(pReadOut->geometry()));
    const QPoint away = chart()->mapToPosition({550, 0.05}).toPoint();
    QMouseEvent moveAway(QEvent::MouseMove, away, pPort->mapToGlobal(away), Qt::NoButton, Qt::NoButton, {});
    QApplication::sendEvent(pPort, &moveAway);
    EXPECT_FALSE(pReadOut->isVisible());
}

TEST_F(PlotTest, ADarkPaletteColorsTheChartAndKeepsBlackLegible)
{
    m_plot.addDataLine("Computed", {1, 2}, {3, 4});
    m_plot.setDisplaySettings("Computed", colored("black"));
    m_plot.plotData();
    QPalette dark;
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, Qt::white);
    m_plot.setPalette(dark);
    EXPECT_EQ(chart()->backgroundBrush().color(), QColor(30, 30, 30));
    EXPECT_EQ(axis(Qt::Vertical)->labelsColor(), QColor(Qt::white));
    EXPECT_GT(series(0)->pen().color().lightness(), 80);
}

TEST_F(PlotTest, SavesItsLinesAsATable)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QString::fromUtf8("plöt.csv"));
    m_plot.addDataLine("1", "a,b", {700, 720}, {0.5, 1});
    m_plot.setXAxisLabel("Emission Wavelength [nm]");
    EXPECT_TRUE(m_plot.saveData(QFile::encodeName(path).constData(), 0, ','));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "Emission Wavelength [nm],\"a,b\"\n700,0.5\n720,1\n");
}

TEST_F(PlotTest, AFailedSaveIsToldAndLeavesWhatWasThere)
{
    QTemporaryDir folder;
    EXPECT_FALSE(m_plot.saveData(QFile::encodeName(folder.filePath("no/such/folder.csv")).constData(), 0, ','));
    EXPECT_FALSE(m_plot.saveData(nullptr, 0, ','));
    EXPECT_FALSE(m_plot.saveData("", 0, ','));
    const QString taken = folder.filePath("taken");
    ASSERT_TRUE(QDir().mkpath(taken + "/inside"));
    EXPECT_FALSE(m_plot.saveData(QFile::encodeName(taken).constData(), 0, ','));
    EXPECT_TRUE(QDir(taken + "/inside").exists());
    EXPECT_FALSE(m_plot.saveData(QFile::encodeName(folder.filePath("a.csv")).constData(), 1, ','));
    EXPECT_FALSE(QFile::exists(folder.filePath("a.csv")));
}

} // namespace

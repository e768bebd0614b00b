// SPDX-License-Identifier: GPL-3.0-or-later
// What a load tells the view, and what it leaves behind where little is left to see.
#include "ResultFixture.h"

#include "engine/OwnResultView.h"

namespace {

// Writes down what it is told, and keeps spectra of its own as a window does.
class RecordingView : public OwnResultView
{
public:
    explicit RecordingView(CORVSpumKyvo& engine)
        : OwnResultView(engine.m_spectrumPlots, engine.m_analysisInput, [](CImageCube&) {}), m_engine(engine)
    {
    }
    ~RecordingView() override { qDeleteAll(m_own); }

    bool setImageCube(const QList<KeyPair>& xValues, int nSpectrumType, CImageCube& cube) override
    {
        calls.append(QString("cube of %1 images, axis %2").arg(xValues.size()).arg(nSpectrumType));
        isEnginesCube = &cube == &m_engine.m_cube && cube.m_nImages == xValues.size();
        return OwnResultView::setImageCube(xValues, nSpectrumType, cube);
    }
    void setBackgroundMode(bool bOn) override { calls.append(bOn ? "background" : "analysis"); }
    void setSpectra(const QList<SpectrumPlotParams*>& spectra) override
    {
        calls.append(QString("%1 spectra").arg(spectra.size()));
        // One that cannot be shown.
        m_own = {new SpectrumPlotParams(*spectra.first())};
        m_own.first()->settings.name = "as the view has it";
    }
    QList<SpectrumPlotParams*> getSpectra() const override { return m_own; }

    QStringList calls;
    bool isEnginesCube = false;

private:
    CORVSpumKyvo& m_engine;
    QList<SpectrumPlotParams*> m_own;
};

class LoadStepsTest : public ResultFixture
{
};

} // namespace

TEST_F(LoadStepsTest, TheViewGetsTheCubeThenItsStateThenTheSpectra)
{
    RecordingView view(*m_second);
    m_second->setResultView(&view);
    EXPECT_TRUE(loadElements(spectrumListText(2)));
    EXPECT_EQ(view.calls, QStringList({"cube of 4 images, axis 0", "analysis", "2 spectra"}));
    EXPECT_TRUE(view.isEnginesCube);
    m_second->setResultView(nullptr);
}

TEST_F(LoadStepsTest, TheEngineGoesOnWithTheSpectraOfTheView)
{
    RecordingView view(*m_second);
    m_second->setResultView(&view);
    EXPECT_TRUE(loadElements(spectrumListText(2)));
    ASSERT_EQ(m_second->m_spectrumPlots.size(), 1);
    EXPECT_EQ(m_second->m_spectrumPlots.first()->settings.name, "as the view has it");
    EXPECT_NE(m_second->m_spectrumPlots.first(), view.getSpectra().first());
    EXPECT_EQ(m_second->m_concentrations.num_rows(), 1);
    EXPECT_EQ(m_second->m_scaleRatios.size(), 1);
    m_second->setResultView(nullptr);
}

TEST_F(LoadStepsTest, MoreRatiosThanSpectraAreAppendedToAsWell)
{
    ASSERT_TRUE(loadElements(spectrumListText(2) + "<ImageControl><m MinRatio=\"0\" MaxRatio=\"0.5\"/>"
                                                   "<m MinRatio=\"0\" MaxRatio=\"0.6\"/><m MinRatio=\"0\" "
                                                   "MaxRatio=\"0.7\"/></ImageControl>"));
    ASSERT_EQ(m_second->m_scaleRatios.size(), 5);
    EXPECT_EQ(m_second->m_scaleRatios.at(2).MaxRatio, 0.7);
    EXPECT_EQ(m_second->m_scaleRatios.at(3).MinRatio, 0.1);
    EXPECT_EQ(m_second->m_scaleRatios.at(4).MaxRatio, 0.9);
}

TEST_F(LoadStepsTest, AsManyRatiosAsSpectraStay)
{
    ASSERT_TRUE(loadElements(spectrumListText(2) + "<ImageControl><m MinRatio=\"0\" MaxRatio=\"0.5\"/>"
                                                   "<m MinRatio=\"0\" MaxRatio=\"0.6\"/></ImageControl>"));
    EXPECT_EQ(m_second->m_scaleRatios.size(), 2);
}

TEST_F(LoadStepsTest, AnOldFileThatFailsStillReplacesTheProperties)
{
    m_second->m_properties = {{"Method", "Library"}};
    EXPECT_FALSE(loadElements("<SeqDataset id=\"other\"/>", "1.5"));
    EXPECT_TRUE(m_second->m_properties.contains({"Method", "MCR"}));
    EXPECT_TRUE(m_second->m_properties.contains({"SPUM_Ver", "1.0"}));
    EXPECT_TRUE(m_second->m_properties.contains({"Orvia", "Unknown"}));
}

TEST_F(LoadStepsTest, APresentFileThatFailsKeepsTheProperties)
{
    m_second->m_properties = {{"Method", "Library"}};
    EXPECT_FALSE(loadElements("<SeqDataset id=\"other\"/>"));
    EXPECT_EQ(m_second->m_properties.size(), 1);
}

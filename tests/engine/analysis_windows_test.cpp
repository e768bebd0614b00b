// SPDX-License-Identifier: GPL-3.0-or-later
// What the engine hands over to its windows.
#include "engine/AnalysisWindows.h"
#include "engine/CORVSpumKyvo.h"
#include "engine/OwnResultView.h"
#include "engine/TestSequence.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>

namespace {

QImage filled(QRgb colour)
{
    QImage picture(3, 2, QImage::Format_RGB32);
    picture.fill(colour);
    return picture;
}

class RecordedWindows : public AnalysisWindows
{
public:
    explicit RecordedWindows(QStringList& calls) : m_calls(calls) {}
    ~RecordedWindows() override { m_calls << "gone"; }
    SpUnmixWizardWnd* wizard() override
    {
        m_calls << "wizard";
        return nullptr;
    }
    SpumKyvoConsoleWnd* console() override
    {
        m_calls << "console";
        return nullptr;
    }
    SpUnmixCompositeWnd* compositeWnd() override
    {
        m_calls << "composite";
        return nullptr;
    }
    void deleteWindows() override { m_calls << "delete windows"; }
    ResultView& resultView() override { return m_view; }
    void prepareAnalysis(int nMode, bool bUsePreset) override
    {
        m_calls << QString("prepare %1 %2").arg(nMode).arg(bUsePreset ? "preset" : "ask");
    }
    void takeWizardInput() override { m_calls << "take input"; }
    void wizardFinished(int nResult) override { m_calls << QString("wizard finished %1").arg(nResult); }
    void consoleFinished(int nResult) override { m_calls << QString("console finished %1").arg(nResult); }
    void compositeFinished(int nResult) override { m_calls << QString("composite finished %1").arg(nResult); }
    void showCompositeInCube() override { m_calls << "composite in cube"; }
    void updatePreferences() override { m_calls << "preferences"; }
    QImage pictureOfButton(const QObject* pButton) override
    {
        m_calls << QString("picture of %1").arg(pButton != nullptr ? pButton->objectName() : QString("nobody"));
        return m_picture;
    }
    void openTile(int nImgIndex) override { m_calls << QString("open %1").arg(nImgIndex); }

    QImage m_picture = filled(qRgb(10, 20, 30));

private:
    QStringList& m_calls;
    QList<SpectrumPlotParams*> m_spectra;
    AnalysisInput m_input;
    OwnResultView m_view{m_spectra, m_input, [](CImageCube&) {}};
};

class WaitingEngine : public CORVSpumKyvo
{
public:
    using CORVSpumKyvo::CORVSpumKyvo;
    void run() override
    {
        setTerminationEnabled(false);
        while (!m_bEnd) {
            msleep(1);
        }
    }
    std::atomic<bool> m_bEnd{false};
};

class AnalysisWindowsTest : public ::testing::Test
{
protected:
    void giveWindows(CORVSpumKyvo& engine)
    {
        auto pWindows = std::make_unique<RecordedWindows>(m_calls);
        m_pWindows = pWindows.get();
        engine.setWindows(std::move(pWindows));
    }
    // Every slot and operation that hands over, as a signal or the palette would call it.
    static void callAll(CORVSpumKyvo& engine)
    {
        engine.prepareAnalysis(2, true);
        engine.onImageDoubleClicked(5);
        engine.onClickPrintButtons();
        engine.onClickCopyToClipboard();
        engine.onSignalUpdatePreference();
        engine.onClickUnmixWizardFinished(1);
        engine.onClickDrawingFinished(0);
        engine.onClickCompositeFinished(1);
        engine.onUpdateImageCubeRGB();
        engine.onRunPCA();
    }

    QStringList m_calls;
    RecordedWindows* m_pWindows = nullptr;
};

TEST_F(AnalysisWindowsTest, EverythingIsHandedOver)
{
    CORVSpumKyvo engine("an id");
    giveWindows(engine);
    callAll(engine);
    EXPECT_EQ(m_calls, (QStringList{"prepare 2 preset", "open 5", "picture of nobody", "picture of nobody",
                                    "preferences", "wizard finished 1", "console finished 0", "composite finished 1",
                                    "composite in cube", "take input"}));
    m_calls.clear();
    engine.wizard();
    engine.console();
    engine.compositeWnd();
    EXPECT_EQ(m_calls, (QStringList{"wizard", "console", "composite"}));
}

TEST_F(AnalysisWindowsTest, WithoutWindowsNothingHappens)
{
    CORVSpumKyvo engine("an id");
    callAll(engine);
    EXPECT_EQ(engine.windows(), nullptr);
    EXPECT_EQ(engine.wizard(), nullptr);
    EXPECT_EQ(engine.console(), nullptr);
    EXPECT_EQ(engine.compositeWnd(), nullptr);
}

// The worker has the engine to itself until it ends.
TEST_F(AnalysisWindowsTest, DuringARunNothingIsHandedOver)
{
    WaitingEngine engine("an id");
    giveWindows(engine);
    QSignalSpy spy(&engine, SIGNAL(pcaRun()));
    engine.start();
    callAll(engine);
    engine.onAutoScaleClicked(false);
    EXPECT_TRUE(m_calls.isEmpty());
    EXPECT_FALSE(engine.m_bRunPCA);
    EXPECT_TRUE(engine.m_bIndividualScale);
    EXPECT_EQ(spy.count(), 0);
    engine.m_bEnd = true;
    engine.wait();
}

// The input is there when the PCA is asked for.
TEST_F(AnalysisWindowsTest, TheInputIsTakenAheadOfAPCA)
{
    CORVSpumKyvo engine("an id");
    giveWindows(engine);
    QStringList& calls = m_calls;
    QObject::connect(&engine, &CORVSpumKyvo::pcaRun, [&calls] { calls << "pca"; });
    engine.onRunPCA();
    EXPECT_EQ(m_calls, (QStringList{"take input", "pca"}));
}

TEST_F(AnalysisWindowsTest, ThePictureOfTheButtonIsPrintedOrCopied)
{
    CORVSpumKyvo engine("an id");
    giveWindows(engine);
    QObject button;
    button.setObjectName("the button");
    QObject::connect(&button, &QObject::objectNameChanged, &engine, &CORVSpumKyvo::onClickPrintButtons);
    QList<QPixmap> printed;
    QObject::connect(&engine, &CORVSpumKyvo::printPixmap, [&printed](const QPixmap& pixmap) { printed << pixmap; });
    button.setObjectName("print");
    EXPECT_EQ(m_calls, QStringList("picture of print"));
    ASSERT_EQ(printed.size(), 1);
    EXPECT_EQ(printed.first().toImage().convertToFormat(QImage::Format_RGB32), m_pWindows->m_picture);

    button.disconnect();
    QObject::connect(&button, &QObject::objectNameChanged, &engine, &CORVSpumKyvo::onClickCopyToClipboard);
    button.setObjectName("copy");
    EXPECT_EQ(QGuiApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32), m_pWindows->m_picture);
    EXPECT_EQ(printed.size(), 1);
}

TEST_F(AnalysisWindowsTest, AButtonWithoutAPictureLeavesPrinterAndClipboard)
{
    CORVSpumKyvo engine("an id");
    giveWindows(engine);
    m_pWindows->m_picture = QImage();
    QSignalSpy spy(&engine, SIGNAL(printPixmap(QPixmap)));
    QGuiApplication::clipboard()->setText("before");
    engine.onClickPrintButtons();
    engine.onClickCopyToClipboard();
    EXPECT_EQ(spy.count(), 0);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QString("before"));
}

TEST_F(AnalysisWindowsTest, TheResultIsShownWhereTheWindowsSay)
{
    CORVSpumKyvo engine("an id");
    giveWindows(engine);
    EXPECT_EQ(&engine.resultView(), &m_pWindows->resultView());
    engine.setWindows(nullptr);
    EXPECT_EQ(&engine.resultView(), static_cast<ResultView*>(&engine.ownResultView()));
    EXPECT_EQ(m_calls, (QStringList{"delete windows", "gone"}));
}

TEST_F(AnalysisWindowsTest, TheEngineTakesItsWindowsAlong)
{
    {
        CORVSpumKyvo engine("an id");
        giveWindows(engine);
    }
    EXPECT_EQ(m_calls, (QStringList{"delete windows", "gone"}));
}

} // namespace

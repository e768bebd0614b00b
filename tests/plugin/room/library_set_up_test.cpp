// SPDX-License-Identifier: GPL-3.0-or-later
// An analysis with spectra of a library, and with spectra that were chosen before.
#include "WorkArea.h"

#include "host/orv_paths.h"
#include "spectra/SpUnmixSpectrumLibraryWnd.h"
#include "spectra/SpectrumPlotParams.h"
#include "spectra/SpumKyvoDatabase.h"
#include "windows/CORVDistributionView.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTimer>

#include <algorithm>
#include <functional>

using namespace workarea;

namespace {

using LibrarySetUpTest = WorkAreaTest;

// The dialog of libraries, used as soon as it is open.
void whenLibrariesOpen(QObject* pContext, const std::function<void(SpUnmixSpectrumLibraryWnd&)>& use)
{
    auto* pTimer = new QTimer(pContext);
    QObject::connect(pTimer, &QTimer::timeout, pContext, [pTimer, use] {
        if (auto* pDialog = qobject_cast<SpUnmixSpectrumLibraryWnd*>(QApplication::activeModalWidget())) {
            pTimer->deleteLater();
            use(*pDialog);
        }
    });
    pTimer->start(2);
}

TEST_F(LibrarySetUpTest, BackingOutOfTheLibrariesStartsNothing)
{
    auto& opened = open();
    QSignalSpy cancelled(&engine(), SIGNAL(cancelRun()));
    QSignalSpy ready(&engine(), SIGNAL(readyToRun()));
    bool bAppendHidden = false;
    whenLibrariesOpen(m_palette.get(), [&](SpUnmixSpectrumLibraryWnd& dialog) {
        bAppendHidden = dialog.m_pAppendChk->isHidden();
        dialog.reject();
    });
    start("Library");
    EXPECT_TRUE(bAppendHidden);
    EXPECT_EQ(cancelled.count(), 1);
    EXPECT_EQ(ready.count(), 0);
    EXPECT_EQ(opened.tabs(), QStringList());
}

// Libraries may know more images than are selected, in another order.
TEST_F(LibrarySetUpTest, SpectraOfALibraryAreUnmixed)
{
    open();
    QList<SpectrumPlotParams*> spectra;
    QList<KeyPair> pairs = engine().m_allKeyPairs;
    std::reverse(pairs.begin(), pairs.end());
    for (std::size_t k = 0; k < 2; ++k) {
        std::vector<double> values = bellSpectra(2, 6)[k];
        std::reverse(values.begin(), values.end());
        spectra << plotOf(pairs, values);
        spectra.last()->settings.name = k == 0 ? "one" : "two";
    }
    const QString strFolder = getORVPath(ORV_PATH_USER_DATA, true, nullptr) + "Spum";
    ASSERT_TRUE(QDir().mkpath(strFolder));
    ASSERT_TRUE(SpumKyvoDatabase().saveLibrary(strFolder + "/both.csv", spectra, "a note"));
    qDeleteAll(spectra);
    box(0, 0)->setChecked(false);
    whenLibrariesOpen(m_palette.get(), [](SpUnmixSpectrumLibraryWnd& dialog) {
        dialog.preload(true, "both");
        dialog.onClickNext();
    });
    start("Library");
    EXPECT_EQ(complaints(), "");
    ASSERT_EQ(engine().m_concentrations.num_rows(), 2);
    ASSERT_EQ(engine().m_spectra.num_cols(), 5);
    EXPECT_EQ(engine().m_spectrumPlots.first()->settings.name, "one");
    EXPECT_EQ(engine().m_spectrumPlots.first()->points.first().second, engine().m_selectedKeyPairs.first().second);
    EXPECT_EQ(console().getSpectra().size(), 2);
    EXPECT_EQ(m_palette->m_pSPUnResultsLV->topLevelItem(3)->text(1), "Library");
    QFile::remove(strFolder + "/both.csv");
}

TEST_F(LibrarySetUpTest, ASpectrumThatLacksAnImageIsRefusedByTheRun)
{
    open();
    engine().setPresetSpectra({plotOf(engine().m_selectedKeyPairs.mid(0, 3), {1.0, 0.5, 0.2})});
    engine().prepareAnalysis(RUNMODE_LIBRARY, true);
    EXPECT_TRUE(m_log.has("SpumKyvo: Incorrect initial guess settings!", 3));
    EXPECT_TRUE(resultItems().isEmpty());
}

TEST_F(LibrarySetUpTest, PresetSpectraRunAtOnce)
{
    open();
    engine().setPresetSpectra({plotOf(engine().m_selectedKeyPairs, bellSpectra(2, 6)[0]),
                               plotOf(engine().m_selectedKeyPairs, bellSpectra(2, 6)[1])});
    engine().prepareAnalysis(RUNMODE_LIBRARY, true);
    EXPECT_EQ(complaints(), "");
    EXPECT_EQ(engine().m_eMode, RUNMODE_LIBRARY);
    EXPECT_EQ(engine().m_concentrations.num_rows(), 2);
    EXPECT_EQ(console().getSpectra().size(), 2);
    EXPECT_EQ(console().distributionView()->getImageNumber(), 3);
    EXPECT_EQ(m_palette->m_pSPUnResultsLV->topLevelItem(3)->text(1), "Library");
}

TEST_F(LibrarySetUpTest, AFailedOverviewOfTheLibraryMethodIsSilent)
{
    open();
    QSignalSpy ready(&engine(), SIGNAL(readyToRun()));
    QSignalSpy cancelled(&engine(), SIGNAL(cancelRun()));
    engine().m_imageRecords.clear();
    start("Library");
    EXPECT_EQ(ready.count() + cancelled.count(), 0);
    EXPECT_TRUE(m_answers.asked.isEmpty());
    EXPECT_FALSE(m_log.mentions("unable to create pseudo color image"));
}

} // namespace

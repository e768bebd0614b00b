// SPDX-License-Identifier: GPL-3.0-or-later
// How long the window of the libraries holds the events up while it shows a library: the longest turn, from the choice
// until the rows that are made without being asked for are drawn, and from there until all are. Without a display
// nothing is drawn:
// scripts/with-xvfb.sh gives one.
#include "bench_support.h"

#include "host/orv_paths.h"
#include "spectra/SpUnmixSpectrumLibraryWnd.h"
#include "spectra/SpumKyvoDatabase.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace {

constexpr int bands = 24;
constexpr int rowsUnasked = 200;

const QString name = QStringLiteral("bench");

// A library of so many spectra, all of them selected.
void writeLibrary(int nSpectra)
{
    QList<SpectrumPlotParams*> spectra;
    for (int i = 0; i < nSpectra; ++i) {
        auto* pSpectrum = new SpectrumPlotParams;
        pSpectrum->settings.name = QStringLiteral("Dye %1").arg(i);
        pSpectrum->settings.color = QStringLiteral("blue");
        for (int b = 0; b < bands; ++b) {
            pSpectrum->points.append(
                {QStringLiteral("500"), QString::number(560 + 10 * b), 1.1 + std::sin(i + 0.2 * b)});
        }
        spectra.append(pSpectrum);
    }
    const QString folder = getORVPath(ORV_PATH_USER_DATA, true, nullptr) + QStringLiteral("Spum/");
    QDir().mkpath(folder);
    SpumKyvoDatabase().saveLibrary(folder + name + QStringLiteral(".csv"), spectra, QString());
    qDeleteAll(spectra);
}

// The longest of the turns of the event loop.
class Turns
{
public:
    template <class Act>
    void turn(Act act)
    {
        const double dBefore = bench::threadSeconds();
        m_clock.start();
        act();
        m_dLongest = std::max(m_dLongest, 1e-9 * static_cast<double>(m_clock.nsecsElapsed()));
        m_dProcessor = std::max(m_dProcessor, bench::threadSeconds() - dBefore);
    }
    void turnUntilRows(const SpUnmixSpectrumLibraryWnd& window, int nRows)
    {
        while (window.m_rows.size() < nRows) {
            turn([] { QApplication::processEvents(); });
        }
        turn([] { QApplication::processEvents(); });
    }
    // The longest of this iteration; that of the processor is of all of them.
    double takeLongest() { return std::exchange(m_dLongest, 0.0); }
    double processor() const { return m_dProcessor; }

private:
    QElapsedTimer m_clock;
    double m_dLongest = 0.0;
    double m_dProcessor = 0.0; // of the user-interface thread
};

// The argument: spectra of the library.
void longestTurn(benchmark::State& state)
{
    const int nSpectra = static_cast<int>(state.range(0));
    writeLibrary(nSpectra);
    SpUnmixSpectrumLibraryWnd window;
    window.show();
    QApplication::processEvents();
    Turns turns;
    for (auto _ : state) {
        turns.turn([&window] { window.preload(true, name); });
        turns.turnUntilRows(window, std::min(nSpectra, rowsUnasked));
        state.SetIterationTime(turns.takeLongest());
    }
    state.counters["processor_ms"] = 1e3 * turns.processor();
}

// "Show all" of as many.
void longestTurnOfAll(benchmark::State& state)
{
    const int nSpectra = static_cast<int>(state.range(0));
    writeLibrary(nSpectra);
    SpUnmixSpectrumLibraryWnd window;
    window.show();
    Turns turns;
    for (auto _ : state) {
        window.preload(true, name);
        turns.turnUntilRows(window, rowsUnasked);
        turns.takeLongest();
        turns.turn([&window] { window.m_pShowAllBtn->click(); });
        turns.turnUntilRows(window, nSpectra);
        state.SetIterationTime(turns.takeLongest());
    }
    state.counters["processor_ms"] = 1e3 * turns.processor();
    Turns leaving;
    writeLibrary(1);
    leaving.turn([&window] { window.preload(true, name); });
    leaving.turnUntilRows(window, 1);
    state.counters["leave_ms"] = 1e3 * leaving.processor();
}

} // namespace

BENCHMARK(longestTurn)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(10);
BENCHMARK(longestTurnOfAll)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QTemporaryDir home;
    qputenv("XDG_DATA_HOME", home.filePath(QStringLiteral("data")).toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toLocal8Bit());
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

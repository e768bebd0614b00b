// SPDX-License-Identifier: GPL-3.0-or-later
// How long the window of the libraries holds the events up while it shows a library: the longest turn, from the choice
// until the rows that are made without being asked for are drawn. Without a display nothing is drawn:
// scripts/with-xvfb.sh gives one.
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
#include <ctime>
#include <memory>

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

double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// The argument: spectra of the library.
void longestTurn(benchmark::State& state)
{
    const int nSpectra = static_cast<int>(state.range(0));
    writeLibrary(nSpectra);
    SpUnmixSpectrumLibraryWnd window;
    window.show();
    QApplication::processEvents();
    double dProcessor = 0.0;
    for (auto _ : state) {
        double dLongest = 0.0;
        QElapsedTimer clock;
        const auto turn = [&dLongest, &dProcessor, &clock](auto act) {
            const double dBefore = threadSeconds();
            clock.start();
            act();
            dLongest = std::max(dLongest, 1e-9 * static_cast<double>(clock.nsecsElapsed()));
            dProcessor = std::max(dProcessor, threadSeconds() - dBefore);
        };
        turn([&window] { window.preload(true, name); });
        while (window.m_rows.size() < std::min(nSpectra, rowsUnasked)) {
            turn([] { QApplication::processEvents(); });
        }
        turn([] { QApplication::processEvents(); });
        state.SetIterationTime(dLongest);
    }
    state.counters["processor_ms"] = 1e3 * dProcessor; // of the user-interface thread, in the longest turn of all
}

} // namespace

BENCHMARK(longestTurn)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(10);

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

// SPDX-License-Identifier: GPL-3.0-or-later
// Results documents with a mask: how long a mask of a million pixels takes to write and to read, and the memory on the
// way.
#include "engine/CORVSpumKyvo.h"
#include "process_memory.h"

#include "platform/orvutils/LogSinks.h"
#include "spectra/SpectrumPlotParams.h"
#include "storage/documentText.h"

#include <benchmark/benchmark.h>

#include <QDomDocument>

#include <numeric>

namespace {

constexpr int pixels = 1000000;

// An engine without a sequence, whose result has a mask of so many pixels.
void takeMask(CORVSpumKyvo& engine)
{
    engine.m_selectedKeyPairs = {{"480", "500"}, {"480", "520"}};
    engine.m_spectrumPlots = {new SpectrumPlotParams};
    engine.m_spectrumPlots.first()->setPairs(engine.m_selectedKeyPairs);
    engine.m_nBinning = 1;
    engine.m_nWidth = engine.m_nHeight = 1024;
    engine.m_bUseMask = 1;
    engine.m_maskIndices.resize(pixels);
    std::iota(engine.m_maskIndices.begin(), engine.m_maskIndices.end(), 0);
}

// Counters: the file's size, and the memory above that of before as a multiple of it.
void tellMemory(benchmark::State& state, double dBytes, double dFile)
{
    state.counters["file_MB"] = dFile / 1e6;
    state.counters["peak_MB"] = dBytes / 1e6;
    state.counters["peak_by_file"] = dBytes / dFile;
}

void writeMask(benchmark::State& state)
{
    CORVSpumKyvo engine("no sequence");
    takeMask(engine);
    double dFile = 0.0;
    const double dPeak = bench::peakBytes([&] { dFile = engine.resultToXml().toLocal8Bit().size(); });
    for (auto _ : state) {
        benchmark::DoNotOptimize(engine.resultToXml().toLocal8Bit());
    }
    tellMemory(state, dPeak, dFile);
}

// From the bytes of the file: what a program does that loads a result, up to the computing of the concentrations.
void readMask(benchmark::State& state)
{
    QByteArray file;
    {
        CORVSpumKyvo engine("no sequence");
        takeMask(engine);
        file = engine.resultToXml().toLocal8Bit();
    }
    // Without a sequence the load ends, with a line, where the images would be read.
    orv::setConsoleLogLevel(orv::ConsoleLog::Nothing);
    CORVSpumKyvo engine("no sequence");
    const auto load = [&] {
        QString strContent;
        {
            QDomDocument document;
            QString strReason;
            documentText::parse(file, &document, &strReason);
            strContent = document.toString(1);
        }
        engine.loadResult(strContent);
    };
    const double dPeak = bench::peakBytes(load);
    for (auto _ : state) {
        load();
    }
    if (engine.m_maskIndices.size() != pixels) {
        state.SkipWithError("the mask did not come back");
    }
    tellMemory(state, dPeak, file.size());
}

} // namespace

BENCHMARK(writeMask)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(readMask)->Unit(benchmark::kMillisecond)->UseRealTime();

BENCHMARK_MAIN();

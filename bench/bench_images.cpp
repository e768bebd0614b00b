// SPDX-License-Identifier: GPL-3.0-or-later
// The windows of images on a sequence of 24 images of 1024 x 1024 and a photograph: until all thumbnails are there and
// drawn, opening the window of an image of several sizes, the longest that the event loop is held up meanwhile, and one
// step of the range, up to the pixels on the screen. Counters: median_ms on the clock, and cpu_ms, the least time that
// all threads of the process together had a processor; of the event loop the time of its own thread. To be run on an X
// server (scripts/with-xvfb.sh).
#include "bench_sequence.h"

#include "workbench/application/DatasetView.h"
#include "workbench/application/DatasetWindow.h"
#include "workbench/application/RangePanel.h"
#include "workbench/application/SequenceTab.h"
#include "workbench/application/Thumbnails.h"

#include "host/QSpanSlider.h"

#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>

namespace {

constexpr bench::Size large{1024, 24, 5};

double processSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

class Clock
{
public:
    Clock() { m_wall.start(); }
    void stop(benchmark::State& state)
    {
        m_times.push_back(static_cast<double>(m_wall.nsecsElapsed()) * 1e-9);
        m_processor.push_back(processSeconds() - m_before);
        state.SetIterationTime(m_times.back());
    }
    void start()
    {
        m_before = processSeconds();
        m_wall.start();
    }
    void tell(benchmark::State& state) const
    {
        state.counters["median_ms"] = bench::medianOf(m_times) * 1e3;
        state.counters["cpu_ms"] = *std::min_element(m_processor.begin(), m_processor.end()) * 1e3;
    }

private:
    QElapsedTimer m_wall;
    double m_before = 0.0;
    std::vector<double> m_times;
    std::vector<double> m_processor;
};

// The longest turn of the event loop.
class Block
{
public:
    void processEvents()
    {
        const bench::Seconds turn = bench::secondsOf([] { QCoreApplication::processEvents(); });
        m_wall = std::max(m_wall, turn.wall);
        m_processor = std::max(m_processor, turn.processor);
    }
    void tell(benchmark::State& state) const
    {
        state.counters["longest_block_ms"] = m_wall * 1e3;
        state.counters["longest_block_cpu_ms"] = m_processor * 1e3;
    }

private:
    double m_wall = 0.0;
    double m_processor = 0.0;
};

bench::DiskSequence& sequenceOnDisk()
{
    static bench::DiskSequence sequence(large);
    return sequence;
}

// Events until nothing is left to be drawn.
void settle()
{
    for (int i = 0; i < 20; ++i) {
        QCoreApplication::processEvents();
    }
}

void thumbnailsOfASequence(benchmark::State& state)
{
    bench::DiskSequence& sequence = sequenceOnDisk();
    Clock clock;
    Block block;
    for (auto _ : state) {
        clock.start();
        SequenceTab tab(&sequence.sequence());
        tab.resize(900, 700);
        tab.show();
        while (!tab.thumbnails().isFinished()) {
            block.processEvents();
        }
        QCoreApplication::processEvents();
        clock.stop(state);
    }
    clock.tell(state);
    block.tell(state);
}

// An image of `side` x `side` pixels; the window itself is not counted as a block.
void imageWindow(benchmark::State& state)
{
    bench::DiskSequence sequence({state.range(0), 2, 2});
    CORVDataset* pDataset = sequence.sequence().getDatasets().at(1);
    Clock clock;
    Block block;
    for (auto _ : state) {
        clock.start();
        DatasetWindow window(pDataset);
        window.resize(1000, 700);
        window.show();
        const auto* pSlider = window.findChild<QSpanSlider*>("m_pRangeSlider");
        for (int i = 0; i < 5 || !pSlider->isEnabled(); ++i) {
            block.processEvents();
        }
        QCoreApplication::processEvents();
        clock.stop(state);
    }
    clock.tell(state);
    block.tell(state);
}

// With and without the photograph beneath.
void stepOfTheRange(benchmark::State& state)
{
    DatasetWindow window(sequenceOnDisk().sequence().getDatasets().at(1));
    window.resize(1000, 700);
    window.show();
    window.view(); // with its image
    window.findChild<QCheckBox*>("m_pOverlayBox")->setChecked(state.range(0) != 0);
    settle();
    auto* pSlider = window.findChild<QSpanSlider*>("m_pRangeSlider");
    Clock clock;
    int step = 0;
    for (auto _ : state) {
        clock.start();
        pSlider->setUpperValue(900 - (++step % 100));
        window.view()->repaint();
        clock.stop(state);
        settle();
    }
    clock.tell(state);
}

BENCHMARK(thumbnailsOfASequence)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(5);
BENCHMARK(imageWindow)
    ->ArgName("side")
    ->Arg(1024)
    ->Arg(2048)
    ->Arg(4096)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(5);
BENCHMARK(stepOfTheRange)
    ->ArgName("photograph")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(20);

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

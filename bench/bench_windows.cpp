// SPDX-License-Identifier: GPL-3.0-or-later
// Steps of a control in the windows, from the change of the control until the view has drawn it: how long the event
// loop stands still. Needs a display with OpenGL (scripts/with-xvfb.sh). Counters: median_ms and worst_ms by the clock,
// cpu_ms the median time that all threads of the process together had a processor (the server draws beside).
#include "bench_support.h"

#include "host/CILImage.h"
#include "host/CORVQImageView.h"
#include "host/CORVSimpleImageView.h"
#include "windows/SpUnmixCompositeWnd.h"
#include "windows/SpUnmixWizardWnd.h"

#include <QApplication>
#include <QEventLoop>

#include <cstdio>

namespace {

constexpr int kSide = 1024;
constexpr int kComponents = 5;
constexpr int kWidth = 1400; // of the window
constexpr int kHeight = 1000;

// Smooth, with noise from a fixed seed.
CILImage photograph()
{
    CILImage photo;
    photo.InitWithType(ORVTYPE_FLOAT, kSide, kSide);
    std::mt19937 random(1);
    std::normal_distribution<double> noise(0.0, 15.0);
    for (int i = 0; i < kSide * kSide; ++i) {
        const double x = (i % kSide) / double(kSide) - 0.5;
        const double y = (i / kSide) / double(kSide) - 0.5;
        photo.floats()[i] = static_cast<float>(1000.0 * std::exp(-(x * x + y * y) / 0.05) + noise(random));
    }
    photo.RefreshImageStats();
    return photo;
}

void waitForDrawing(const QOpenGLWidget& view)
{
    QEventLoop loop;
    QObject::connect(&view, &QOpenGLWidget::frameSwapped, &loop, &QEventLoop::quit);
    loop.exec();
}

double processSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

template <class Step>
void timeSteps(benchmark::State& state, const QOpenGLWidget& view, const Step& step)
{
    std::vector<double> times;
    std::vector<double> processor;
    int n = 0;
    step(n++);
    waitForDrawing(view);
    for (auto _ : state) {
        const double before = processSeconds();
        times.push_back(bench::secondsOf([&] {
                            step(n++);
                            waitForDrawing(view);
                        }).wall);
        processor.push_back(processSeconds() - before);
        state.SetIterationTime(times.back());
    }
    state.counters["median_ms"] = bench::medianOf(times) * 1e3;
    state.counters["worst_ms"] = *std::max_element(times.begin(), times.end()) * 1e3;
    state.counters["cpu_ms"] = bench::medianOf(processor) * 1e3;
}

void maskThreshold(benchmark::State& state)
{
    CILImage photo = photograph();
    SpUnmixWizardWnd wizard;
    wizard.m_nImageCount = 8;
    wizard.setPhotoImage(&photo);
    wizard.resize(kWidth, kHeight);
    wizard.show();
    QApplication::processEvents();
    timeSteps(state, *wizard.m_pImageView, [&](int n) { wizard.m_pThresholdSlider->setValue(20 + n % 40); });
}

void compositeBrightness(benchmark::State& state)
{
    CILImage photo = photograph();
    XTNT::Matrix<double> maps(kComponents, static_cast<long long>(kSide) * kSide);
    QList<CompositeChannel> channels;
    for (int k = 0; k < kComponents; ++k) {
        CompositeChannel channel;
        channel.label = QString::number(k);
        channel.color = QColor::fromHsv(60 * k, 255, 255);
        channels.append(channel);
        for (int i = 0; i < kSide * kSide; ++i) {
            maps[k][i] = static_cast<double>((i * (k + 7)) % 1000) + photo.floats()[i];
        }
    }
    SpUnmixCompositeWnd window;
    window.setCompositeData(&photo, maps, 0, {}, kSide, kSide, channels, 1);
    window.resize(kWidth, kHeight);
    window.show();
    QApplication::processEvents();
    timeSteps(state, *window.m_pView, [&](int n) { window.m_pBrightnessSlider->setValue(30 + n % 60); });
}

BENCHMARK(maskThreshold)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(compositeBrightness)->Unit(benchmark::kMillisecond)->UseManualTime();

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        std::fputs("bench_windows: no display; run it by scripts/with-xvfb.sh\n", stderr);
        return 1;
    }
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

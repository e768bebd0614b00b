// SPDX-License-Identifier: GPL-3.0-or-later
// What the console does at every move of the mouse and every step of a slider, over a cube of 1024 x 1024 x 24, until
// it is drawn. Without a display nothing is drawn: scripts/with-xvfb.sh gives one.
#include "bench_support.h"

#include "engine/CImageCube.h"
#include "host/CORVPaintQImageView.h"
#include "windows/CORVDistributionView.h"
#include "windows/SpumKyvoConsoleWnd.h"

#include <QApplication>
#include <QMouseEvent>
#include <QVBoxLayout>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace {

constexpr int side = 1024;
constexpr int bands = 24;

void fillCube(CImageCube& cube)
{
    cube.init(side, side, 1, bands, {});
    std::vector<float> image(static_cast<std::size_t>(side) * side);
    for (int b = 0; b < bands; ++b) {
        for (std::size_t i = 0; i < image.size(); ++i) {
            const auto place = static_cast<double>(i);
            image[i] = static_cast<float>(1e8 * (1.1 + std::sin(1e-3 * place + 0.2 * b)));
        }
        cube.setImage(0, b, image);
    }
    cube.m_rgbImage = QImage(side, side, QImage::Format_RGB32);
    cube.m_rgbImage.fill(Qt::darkBlue);
}

// The console with five spectra, as on a screen.
class Scene
{
public:
    Scene()
    {
        fillCube(m_cube);
        auto* pLayout = new QVBoxLayout(&m_window);
        m_pConsole = new SpumKyvoConsoleWnd;
        m_pConsole->setWindowFlags(Qt::Widget);
        m_pConsole->toolbar()->show();
        pLayout->addWidget(m_pConsole->toolbar());
        pLayout->addWidget(m_pConsole, 1);
        m_window.resize(1400, 1000);
        QList<KeyPair> keys;
        for (int b = 0; b < bands; ++b) {
            keys.append({QStringLiteral("500"), QString::number(560 + 10 * b)});
        }
        m_pConsole->setImageCube(keys, 0, m_cube);
        QList<SpectrumPlotParams> spectra;
        for (int k = 0; k < 5; ++k) {
            SpectrumPlotParams spectrum;
            spectrum.setPairs(keys);
            for (int b = 0; b < bands; ++b) {
                spectrum.points[b].value = 1e8 * std::exp(-std::pow((b - 5.0 * k) / 4.0, 2));
            }
            spectrum.settings.name = QStringLiteral("dye %1").arg(k);
            spectra.append(spectrum);
        }
        QList<SpectrumPlotParams*> pointers;
        for (SpectrumPlotParams& spectrum : spectra) {
            pointers.append(&spectrum);
        }
        m_pConsole->setSpectra(pointers);
        m_window.show();
        settle();
    }

    static void settle()
    {
        for (int i = 0; i < 3; ++i) {
            QApplication::processEvents();
        }
    }

    CImageCube m_cube;
    QWidget m_window;
    SpumKyvoConsoleWnd* m_pConsole = nullptr;
};

void cursorMove(benchmark::State& state)
{
    const Scene scene;
    int n = 0;
    for (auto _ : state) {
        n = (n + 7919) % (side * side);
        Q_EMIT scene.m_pConsole->m_pImageCubeView->updateCursorPosition(n % side, n / side);
        Scene::settle();
    }
}

// From the release of the button until the spectrum of a filled region of 100,000 pixels is drawn, and of the processor
// until the row has it.
void regionFilled(benchmark::State& state)
{
    const Scene scene;
    CORVPaintQImageView& view = *scene.m_pConsole->m_pImageCubeView;
    scene.m_pConsole->m_pAddSpectrum->click();
    view.setPaintShape(CORVPaintQImageView::Rectangle);
    constexpr double regionSide = 316.5;
    const QPointF from = view.toView(QPointF(200.5, 200.5));
    const QPointF to = view.toView(QPointF(200.0 + regionSide, 200.0 + regionSide));
    const auto send = [&view](QEvent::Type eType, const QPointF& at, Qt::MouseButtons held) {
        QMouseEvent event(eType, at, Qt::LeftButton, held, Qt::NoModifier);
        QApplication::sendEvent(&view, &event);
    };
    double dSpectrum = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        view.takeStrokeBack();
        send(QEvent::MouseButtonPress, from, Qt::LeftButton);
        send(QEvent::MouseMove, to, Qt::LeftButton);
        Scene::settle();
        state.ResumeTiming();
        const double dBefore = bench::threadSeconds();
        send(QEvent::MouseButtonRelease, to, Qt::NoButton);
        dSpectrum = std::max(dSpectrum, bench::threadSeconds() - dBefore);
        Scene::settle();
    }
    QList<int> pixels;
    view.getPaintPixelIndex(static_cast<unsigned char>(scene.m_pConsole->m_nNextChannel), pixels);
    state.counters["pixels"] = pixels.size();
    state.counters["spectrum_ms"] = 1e3 * dSpectrum; // of the user-interface thread, the longest
}

void imageIndexChange(benchmark::State& state)
{
    const Scene scene;
    scene.m_pConsole->m_pVideoCheckBox->setChecked(false);
    int n = 0;
    for (auto _ : state) {
        n = (n + 1) % bands;
        scene.m_pConsole->m_pImageIndexSlider->setValue(n + 1);
        Scene::settle();
    }
}

void brightnessStep(benchmark::State& state)
{
    const Scene scene;
    scene.m_pConsole->m_pVideoCheckBox->setChecked(false);
    int n = 0;
    for (auto _ : state) {
        n = (n + 1) % 10;
        scene.m_pConsole->m_ImageScaleSlider->setValue(n + 1);
        Scene::settle();
    }
}

// Without what the engine does on it.
void scaleStep(benchmark::State& state)
{
    const Scene scene;
    scene.m_pConsole->selectUnmixedTab(false);
    scene.m_pConsole->m_pIndividualScaleCkB->setChecked(false);
    scene.m_pConsole->setColorBar(2, false, 1, 0.0, 1e8, false, false);
    Scene::settle();
    int n = 0;
    for (auto _ : state) {
        n = (n + 1) % 50;
        scene.m_pConsole->m_pDataSpanSlider->setLowerValue(n);
        Scene::settle();
    }
}

void plotAnew(benchmark::State& state)
{
    const Scene scene;
    for (auto _ : state) {
        scene.m_pConsole->m_pNormalizedCkb->toggle();
        Scene::settle();
    }
}

} // namespace

BENCHMARK(cursorMove)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(regionFilled)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(imageIndexChange)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(brightnessStep)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(scaleStep)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(plotAnew)->Unit(benchmark::kMillisecond)->UseRealTime();

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures that are made on the user-interface thread, and made anew at every step of a slider. Each is timed from its
// inputs to a picture that can be drawn. Counters: least_ms the least time on the clock, median_ms the median, and
// cpu_ms the least time that all threads of the process together had a processor.
#include "bench_sequence.h"
#include "process_memory.h"

#include "host/CORVOverlayImage.h"
#include "windows/compositePicture.h"
#include "windows/maskPixels.h"
#include "windows/photoMask.h"

#include <QCoreApplication>

#include <memory>

namespace {

constexpr int large = 1024;
constexpr int small = 256;
constexpr int bands = 18;
constexpr unsigned formatRgb = 0x1907;
constexpr unsigned formatRgba = 0x1908;

double processSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

template <class Path>
void timePath(benchmark::State& state, const Path& path)
{
    std::vector<double> times;
    std::vector<double> processor;
    path();
    for (auto _ : state) {
        const double before = processSeconds();
        times.push_back(bench::secondsOf(path).wall);
        processor.push_back(processSeconds() - before);
        state.SetIterationTime(times.back());
    }
    state.counters["least_ms"] = *std::min_element(times.begin(), times.end()) * 1e3;
    state.counters["median_ms"] = bench::medianOf(times) * 1e3;
    state.counters["cpu_ms"] = *std::min_element(processor.begin(), processor.end()) * 1e3;
}

// Component k of a scene at a place, 0 to 1 along both sides: two spots of a Gaussian shape.
double amount(int k, double x, double y)
{
    const auto spot = [&](double cx, double cy) {
        return std::exp(-((x - cx) * (x - cx) + (y - cy) * (y - cy)) / 0.01);
    };
    return spot(0.2 + 0.11 * k, 0.3 + 0.05 * k) + 0.5 * spot(0.75 - 0.09 * k, 0.7);
}

// Pixels of such a component with noise from a fixed seed.
std::vector<double> mapPixels(int k, int side)
{
    std::mt19937_64 generator(static_cast<std::uint64_t>(k) + 1);
    std::normal_distribution<double> noise(0, 0.01);
    std::vector<double> pixels;
    pixels.reserve(static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            pixels.push_back(std::max(0.0, amount(k, (x + 0.5) / side, (y + 0.5) / side) + noise(generator)));
        }
    }
    return pixels;
}

CILImage mapImage(int k, int side)
{
    CILImage map;
    map.initWithData(ORVTYPE_DOUBLE, side, side, mapPixels(k, side).data());
    map.RefreshImageStats();
    map.setColorTable(1);
    map.getPalette()->setReversed(1);
    map.setGLFormat(formatRgba);
    map.getPalette()->SetImageMinMax(0.1 * map.getMax(), 0.9 * map.getMax());
    return map;
}

// 16 bit: a body with some shade on a bed, with noise and specks.
CILImage photograph(int side)
{
    std::mt19937_64 generator(7);
    std::normal_distribution<double> noise(0, 150);
    CILImage photo;
    photo.InitWithType(ORVTYPE_USHORT, side, side);
    auto* counts = static_cast<std::uint16_t*>(photo.m_pData);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const double u = 2.0 * (x + 0.5) / side - 1.0;
            const double v = 2.0 * (y + 0.5) / side - 1.0;
            const double body = u * u / 0.2 + v * v / 0.6 < 1.0 ? 20000.0 + 15000.0 * (1.0 - v * v) : 3000.0;
            const double speck = generator() % 5000 == 0 ? 30000.0 : 0.0;
            *counts++ = static_cast<std::uint16_t>(std::clamp(body + speck + noise(generator), 0.0, 65535.0));
        }
    }
    photo.RefreshImageStats();
    return photo;
}

// The side of the map; the photograph's is 1024.
void blendOfAnOverlay(benchmark::State& state)
{
    const CILImage photo = photograph(large);
    const CILImage map = mapImage(0, static_cast<int>(state.range(0)));
    CORVOverlayImage overlay;
    overlay.setBackground(&photo, IMAGETYPE_PHOTOGRAPH);
    overlay.setForeground(&map, IMAGETYPE_LUMINESCENT);
    timePath(state, [&] {
        overlay.blend(0.7F, 1);
        benchmark::DoNotOptimize(overlay.toQImage().constBits());
    });
}

// An engine with a result of `components` maps of `side` x `side` pixels at each of `spots`, and a photograph of 1024.
class Result
{
public:
    Result(int components, int side, int spots)
        : m_sequence(bench::Size{16, 3, 3}), m_engine(m_sequence.id()), m_photo(photograph(large))
    {
        if (!m_engine.buildDatasetInfo() || !m_engine.createImageList()) {
            bench::giveUp(QStringLiteral("the sequence cannot be analysed"));
        }
        m_engine.m_pPhoto = &m_photo;
        m_engine.m_nWidth = side;
        m_engine.m_nHeight = side;
        for (int s = 0; spots > 1 && s < spots; ++s) {
            m_engine.m_spots.append(QString::number(s));
        }
        static const char* const colors[] = {"lime", "red", "blue", "magenta", "gold", "cyan"};
        const long long pixels = static_cast<long long>(side) * side;
        m_engine.m_concentrations.reshape(components, pixels * spots);
        for (int k = 0; k < components; ++k) {
            const std::vector<double> map = mapPixels(k, side);
            for (int s = 0; s < spots; ++s) {
                std::copy(map.begin(), map.end(), m_engine.m_concentrations[k] + s * pixels);
            }
            auto* pPlot = new SpectrumPlotParams;
            pPlot->settings.name = QStringLiteral("probe %1").arg(k);
            pPlot->settings.color = colors[k % 6];
            m_engine.m_spectrumPlots.append(pPlot);
            m_engine.m_scaleRatios.append(ScaleRatio());
        }
    }

    void update()
    {
        if (!m_engine.updateUnmixedImages(false)) {
            bench::giveUp(QStringLiteral("the result cannot be shown"));
        }
    }
    void look() const
    {
        for (const UnmixedTile& tile : m_engine.ownResultView().tiles()) {
            benchmark::DoNotOptimize(tile.image->toQImage().constBits());
        }
    }

private:
    bench::DiskSequence m_sequence;
    CORVSpumKyvo m_engine;
    CILImage m_photo;
};

// Components, side of the maps, spots; and whether the whole picture of each tile is taken afterwards.
void updateUnmixedImages(benchmark::State& state)
{
    Result result(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), static_cast<int>(state.range(2)));
    const bool looks = state.range(3) != 0;
    const auto path = [&] {
        result.update();
        if (looks) {
            result.look();
        }
    };
    state.counters["peak_MB"] = bench::peakBytes(path) / 1e6;
    timePath(state, path);
}

void photoMaskTick(benchmark::State& state)
{
    CILImage photo = photograph(large);
    photo.setGLFormat(formatRgb);
    const float range = photoRange(photo);
    CILImage mask;
    CORVOverlayImage overlay;
    float threshold = 30.0F;
    timePath(state, [&] {
        threshold = threshold > 50.0F ? 30.0F : threshold + 1.0F;
        overlay.setBackground(&photo, IMAGETYPE_PHOTOGRAPH);
        makePhotoMask(photo, threshold, range, mask);
        benchmark::DoNotOptimize(isMaskValid(mask));
        mask.setColorTable(1);
        mask.setGLFormat(formatRgba);
        mask.getPalette()->setAlphaMode(1, 1.0);
        mask.getPalette()->SetImageMinMax(0.001, 1.0);
        overlay.setBackground(&photo, IMAGETYPE_PHOTOGRAPH);
        overlay.setForeground(&mask, IMAGETYPE_LUMINESCENT);
        overlay.blend(0.5F, 1);
        benchmark::DoNotOptimize(overlay.toQImage().constBits());
    });
}

CImageCube sceneCube()
{
    CImageCube cube;
    cube.init(large, large, 1, bands, {});
    const std::vector<double> first = mapPixels(0, large);
    const std::vector<double> second = mapPixels(1, large);
    std::vector<float> image(first.size());
    for (int b = 0; b < bands; ++b) {
        for (std::size_t i = 0; i < image.size(); ++i) {
            image[i] = static_cast<float>(1e8 * (0.05 + first[i] * (bands - b) / bands + second[i] * b / bands));
        }
        cube.setImage(0, b, image);
    }
    return cube;
}

void overviewOfTheCube(benchmark::State& state)
{
    CImageCube cube = sceneCube();
    bench::Matrix<double> weights(bands, 3);
    for (int b = 0; b < bands; ++b) {
        for (int c = 0; c < 3; ++c) {
            weights[b][c] = std::exp(-0.5 * (b - 6.0 * c) * (b - 6.0 * c) / 9.0);
        }
    }
    timePath(state, [&] { benchmark::DoNotOptimize(cube.buildRGBImage(weights)); });
}

void greyImageOfTheCube(benchmark::State& state)
{
    CImageCube cube = sceneCube();
    int n = 0;
    timePath(state, [&] {
        n = (n + 1) % bands;
        benchmark::DoNotOptimize(cube.image(n).constBits());
    });
}

// The side of the maps, and whether the layers are logarithmic; five components over a photograph of 1024.
void compositeOfFive(benchmark::State& state)
{
    constexpr int components = 5;
    const int side = static_cast<int>(state.range(0));
    bench::Matrix<double> data(components, static_cast<long long>(side) * side);
    QList<CompositeChannel> channels;
    const Qt::GlobalColor colors[] = {Qt::green, Qt::red, Qt::blue, Qt::magenta, Qt::yellow};
    for (int k = 0; k < components; ++k) {
        const std::vector<double> map = mapPixels(k, side);
        std::copy(map.begin(), map.end(), data[k]);
        CompositeChannel channel;
        channel.color = colors[k];
        channel.logScale = state.range(1) != 0;
        channels.append(channel);
    }
    const std::vector<int> all;
    const CompositeMaps maps{data, all, side, side, 1};
    const CILImage photo = photograph(large);
    const QList<CompositeLayer> layers = compositeStartLayers(maps, channels, photo);
    timePath(state, [&] { benchmark::DoNotOptimize(compositePicture(maps, 0, layers, photo).constBits()); });
}

BENCHMARK(blendOfAnOverlay)->Arg(large)->Arg(small)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(updateUnmixedImages)
    ->ArgNames({"K", "side", "spots", "look"})
    ->Args({4, small, 1, 0})
    ->Args({4, small, 1, 1})
    ->Args({6, large, 1, 0})
    ->Args({6, large, 1, 1})
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();
BENCHMARK(updateUnmixedImages)
    ->Name("updateUnmixedImagesOfAScan")
    ->ArgNames({"K", "side", "spots", "look"})
    ->Args({4, small, 25, 0})
    ->Args({4, small, 25, 1})
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(2);
BENCHMARK(photoMaskTick)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(overviewOfTheCube)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(greyImageOfTheCube)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(compositeOfFive)
    ->ArgNames({"side", "log"})
    ->Args({large, 0})
    ->Args({large, 1})
    ->Args({small, 0})
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

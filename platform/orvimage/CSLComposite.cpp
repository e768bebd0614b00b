// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CSLComposite.h"
#include "host/CILHistogram.h"
#include "host/CILImage.h"
#include "platform/orvimage/PixelTypes.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace {

constexpr int kBins = 256;
// Smoothing passes after which a histogram counts as not bimodal.
constexpr int kMaxSmoothings = 10000;

std::vector<double> finiteHistogram(const CILImage& image, const orvimage::FiniteRange& range)
{
    CILHistogram histogram;
    histogram.setMaxBins(kBins);
    histogram.setImageMin(range.minimum);
    histogram.setImageMax(range.maximum);
    histogram.reset();
    orvimage::visitPixels(image, [&](const auto* pixels, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) {
            const auto v = static_cast<double>(pixels[i]);
            if (std::isfinite(v)) {
                histogram.add(v);
            }
        }
    });
    return histogram.bins();
}

// Middle of the first run of the largest (sign 1) or smallest (sign -1) values in [first, last].
double middleOfExtreme(const std::vector<double>& values, int first, int last, double sign, double tolerance)
{
    const auto at = [&](int i) { return sign * values[static_cast<std::size_t>(i)]; };
    int best = first;
    for (int i = first + 1; i <= last; ++i) {
        if (at(i) > at(best) + tolerance) {
            best = i;
        }
    }
    int end = best;
    while (end < last && at(end + 1) >= at(best) - tolerance) {
        ++end;
    }
    return 0.5 * (best + end);
}

// Number of the last bin of the lower class, halves where a run of equally good bins has an even length.
double otsuBin(const std::vector<double>& counts)
{
    double total = 0.0;
    double totalMoment = 0.0;
    for (int i = 0; i < kBins; ++i) {
        total += counts[static_cast<std::size_t>(i)];
        totalMoment += i * counts[static_cast<std::size_t>(i)];
    }
    std::vector<double> between(kBins - 1, 0.0);
    double weight = 0.0;
    double moment = 0.0;
    double highest = 0.0;
    for (int i = 0; i < kBins - 1; ++i) {
        const auto bin = static_cast<std::size_t>(i);
        weight += counts[bin];
        moment += i * counts[bin];
        if (weight > 0.0 && weight < total) {
            const double difference = moment / weight - (totalMoment - moment) / (total - weight);
            between[bin] = weight * (total - weight) * difference * difference;
        }
        highest = std::max(highest, between[bin]);
    }
    return middleOfExtreme(between, 0, kBins - 2, 1.0, 1e-12 * highest);
}

// Middles of the local maxima; an end of the histogram counts when it falls away inwards.
std::vector<int> modes(const std::vector<double>& h)
{
    std::vector<int> found;
    int begin = 0;
    const int n = static_cast<int>(h.size());
    while (begin < n) {
        int end = begin;
        const double level = h[static_cast<std::size_t>(begin)];
        while (end + 1 < n && h[static_cast<std::size_t>(end) + 1] == level) {
            ++end;
        }
        const bool leftLower = begin == 0 || h[static_cast<std::size_t>(begin - 1)] < level;
        const bool rightLower = end == n - 1 || h[static_cast<std::size_t>(end) + 1] < level;
        if (leftLower && rightLower && level > 0.0) {
            found.push_back((begin + end) / 2);
        }
        begin = end + 1;
    }
    return found;
}

void smooth(std::vector<double>& h)
{
    double left = h.front();
    for (std::size_t i = 0; i < h.size(); ++i) {
        const double own = h[i];
        const double right = i + 1 < h.size() ? h[i + 1] : own;
        h[i] = (left + own + right) / 3.0;
        left = own;
    }
}

double valueAt(const orvimage::FiniteRange& range, double fraction)
{
    return range.minimum * (1.0 - fraction) + range.maximum * fraction;
}

} // namespace

float CSLComposite::AutomaticThresholdOtsu(const CILImage* image)
{
    if (image == nullptr) {
        return 0.0F;
    }
    const orvimage::FiniteRange range = orvimage::finiteRange(*image);
    if (range.count == 0 || !(range.maximum > range.minimum)) {
        return 0.0F;
    }
    // The threshold is the upper edge of the lower class's last bin.
    return static_cast<float>(100.0 * (otsuBin(finiteHistogram(*image, range)) + 1.0) / kBins);
}

float CSLComposite::AutomaticThresholdBimodal(const CILImage* image)
{
    if (image == nullptr) {
        return 0.0F;
    }
    const orvimage::FiniteRange range = orvimage::finiteRange(*image);
    if (range.count == 0 || !(range.maximum > range.minimum)) {
        return static_cast<float>(range.minimum);
    }

    const std::vector<double> counts = finiteHistogram(*image, range);
    std::vector<double> h = counts;
    std::vector<int> peaks = modes(h);
    for (int pass = 0; pass < kMaxSmoothings && peaks.size() > 2; ++pass) {
        smooth(h);
        peaks = modes(h);
    }
    if (peaks.size() != 2) {
        return static_cast<float>(valueAt(range, (otsuBin(counts) + 1.0) / kBins));
    }
    const double valley = middleOfExtreme(h, peaks[0], peaks[1], -1.0, 0.0);
    return static_cast<float>(valueAt(range, (valley + 0.5) / kBins));
}

void CSLComposite::closeHolesInBinaryImage(CILImage& image)
{
    if (image.isEmpty()) {
        return;
    }
    const orvimage::FiniteRange range = orvimage::finiteRange(image);
    // A frame of zeros round the image joins all of its border, so that one fill from a corner reaches what is no hole.
    const auto width = static_cast<int>(image.m_lWidth);
    const auto height = static_cast<int>(image.m_lHeight);
    cv::Mat zeros(height + 2, width + 2, CV_8UC1, cv::Scalar(1));
    orvimage::visitPixels(std::as_const(image), [&](const auto* pixels, std::size_t) {
        using Pixel = std::remove_const_t<std::remove_pointer_t<decltype(pixels)>>;
        for (int y = 0; y < height; ++y) {
            unsigned char* row = zeros.ptr(y + 1) + 1;
            for (int x = 0; x < width; ++x) {
                row[x] = *pixels++ == Pixel{0} ? 1 : 0;
            }
        }
    });
    cv::floodFill(zeros, cv::Point(0, 0), cv::Scalar(2), nullptr, cv::Scalar(), cv::Scalar(), 4);
    std::size_t i = 0;
    for (int y = 0; y < height; ++y) {
        const unsigned char* row = zeros.ptr(y + 1) + 1;
        for (int x = 0; x < width; ++x, ++i) {
            if (row[x] == 1) {
                image.setValue(i, range.maximum);
            }
        }
    }
    image.RefreshImageStats();
}

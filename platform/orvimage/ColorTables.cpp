// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/ColorTables.h"

#include <QFile>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>

namespace orvimage {

namespace {

constexpr int kColors = 256;
constexpr double kPi = 3.14159265358979323846;

using Triple = std::array<double, 3>;

double linearFromSrgb(double c)
{
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

double srgbFromLinear(double c)
{
    return c <= 0.0031308 ? 12.92 * c : 1.055 * std::pow(c, 1.0 / 2.4) - 0.055;
}

// Linear sRGB of an Oklab colour; components outside 0 to 1 tell that no screen shows it.
Triple linearFromOklab(double lightness, double a, double b)
{
    const double l = lightness + 0.3963377774 * a + 0.2158037573 * b;
    const double m = lightness - 0.1055613458 * a - 0.0638541728 * b;
    const double s = lightness - 0.0894841775 * a - 1.2914855480 * b;
    const double l3 = l * l * l;
    const double m3 = m * m * m;
    const double s3 = s * s * s;
    return {4.0767416621 * l3 - 3.3077115913 * m3 + 0.2309699292 * s3,
            -1.2684380046 * l3 + 2.6097574011 * m3 - 0.3413193965 * s3,
            -0.0041960863 * l3 - 0.7034186147 * m3 + 1.7076147010 * s3};
}

bool isShowable(const Triple& linear)
{
    return std::all_of(linear.begin(), linear.end(), [](double c) { return c >= 0.0 && c <= 1.0; });
}

QRgb rgbFromUnit(double r, double g, double b)
{
    const auto level = [](double c) { return static_cast<int>(std::lround(255.0 * std::clamp(c, 0.0, 1.0))); };
    return qRgb(level(r), level(g), level(b));
}

// The most colourful showable colour of a lightness and hue, at most `chroma`.
QRgb oklchColor(double lightness, double chroma, double hueDegrees)
{
    const double hue = hueDegrees * kPi / 180.0;
    const auto at = [&](double c) { return linearFromOklab(lightness, c * std::cos(hue), c * std::sin(hue)); };
    double inside = 0.0;
    double outside = chroma;
    if (isShowable(at(chroma))) {
        inside = chroma;
    }
    for (int i = 0; i < 40 && inside < chroma; ++i) {
        const double middle = 0.5 * (inside + outside);
        (isShowable(at(middle)) ? inside : outside) = middle;
    }
    const Triple c = at(inside);
    return rgbFromUnit(srgbFromLinear(c[0]), srgbFromLinear(c[1]), srgbFromLinear(c[2]));
}

// A table of evenly rising lightness in Oklab, its hue turning from violet by blue and green to yellow. Made by
// formula, so that equal steps of a value look like equal steps of brightness, in print without colour and to the
// colour-blind too.
QVector<QRgb> lumen()
{
    QVector<QRgb> colors;
    for (int i = 0; i < kColors; ++i) {
        const double t = i / (kColors - 1.0);
        const double lightness = 0.16 + 0.79 * t;
        const double hue = 310.0 - 202.0 * std::pow(t, 1.6);
        // Colourful where screens are: most in the blues, more again towards yellow. Nowhere near the border of what a
        // screen shows, where the table would have a crease.
        const double blues = (t - 0.32) / 0.15;
        const double chroma = 0.08 + 0.075 * t * t + 0.08 * std::exp(-blues * blues);
        colors.append(oklchColor(lightness, chroma, hue));
    }
    return colors;
}

struct Stop
{
    double position; // 0 to 1
    double red, green, blue;
};

// Straight lines in sRGB between stops, the first at 0 and the last at 1.
QVector<QRgb> gradient(std::initializer_list<Stop> stops)
{
    QVector<QRgb> colors;
    for (int i = 0; i < kColors; ++i) {
        const double t = i / (kColors - 1.0);
        const Stop* upper = stops.begin() + 1;
        while (upper + 1 != stops.end() && upper->position < t) {
            ++upper;
        }
        const Stop& a = *(upper - 1);
        const Stop& b = *upper;
        const double f = (t - a.position) / (b.position - a.position);
        colors.append(rgbFromUnit(a.red + f * (b.red - a.red), a.green + f * (b.green - a.green),
                                  a.blue + f * (b.blue - a.blue)));
    }
    return colors;
}

// The published tables of data/color_maps.csv, a column each behind that of the index.
QVector<ColorTable> publishedTables()
{
    QFile file(QStringLiteral(":/orvimage/color_maps.csv"));
    QVector<ColorTable> tables;
    if (!file.open(QIODevice::ReadOnly)) { // part of this library
        return tables;
    }
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        const QStringList fields = line.split(QLatin1Char(','));
        if (line.startsWith(QLatin1Char('#'))) {
            continue;
        }
        for (int i = 1; i < fields.size(); ++i) {
            if (tables.size() < i) {
                tables.append({fields[i], {}}); // of the header
            } else if (fields[0] != QLatin1String("index")) {
                tables[i - 1].colors.append(QColor(fields[i]).rgb());
            }
        }
    }
    return tables;
}

// Saved results and settings name a table by its place: new ones come at the end.
QVector<ColorTable> makeTables()
{
    const QVector<ColorTable> own = {
        {"Grays", gradient({{0, 0, 0, 0}, {1, 1, 1, 1}})},
        {"Rainbow", gradient({{0, 1, 0, 0},
                              {0.22, 1, 0.65, 0},
                              {0.38, 1, 1, 0},
                              {0.58, 0.1, 0.9, 0.1},
                              {0.76, 0, 0.8, 1},
                              {0.9, 0.1, 0.15, 1},
                              {1, 0.35, 0, 0.65}})},
        {"Fire",
         gradient({{0, 0, 0, 0}, {0.25, 0.45, 0, 0.08}, {0.5, 0.9, 0.2, 0}, {0.75, 1, 0.7, 0}, {1, 1, 1, 0.9}})},
        {"Lumen", lumen()},
        {"Ice", gradient({{0, 0, 0, 0}, {0.35, 0, 0.15, 0.55}, {0.7, 0.1, 0.65, 0.95}, {1, 0.95, 1, 1}})},
        {"Copper", gradient({{0, 0, 0, 0}, {0.8, 1, 0.62, 0.4}, {1, 1, 0.8, 0.5}})},
        {"Red", gradient({{0, 0, 0, 0}, {1, 1, 0, 0}})},
        {"Green", gradient({{0, 0, 0, 0}, {1, 0, 1, 0}})},
        {"Blue", gradient({{0, 0, 0, 0}, {1, 0, 0, 1}})},
        {"Cyan", gradient({{0, 0, 0, 0}, {1, 0, 1, 1}})},
        {"Magenta", gradient({{0, 0, 0, 0}, {1, 1, 0, 1}})},
        {"Yellow", gradient({{0, 0, 0, 0}, {1, 1, 1, 0}})},
        {"Cold to hot", gradient({{0, 0.1, 0.25, 0.75}, {0.5, 0.95, 0.95, 0.95}, {1, 0.75, 0.1, 0.1}})},
    };
    return own + publishedTables();
}

} // namespace

const QVector<ColorTable>& colorTables()
{
    static const QVector<ColorTable> tables = makeTables();
    return tables;
}

double oklabLightness(QRgb color)
{
    const double r = linearFromSrgb(qRed(color) / 255.0);
    const double g = linearFromSrgb(qGreen(color) / 255.0);
    const double b = linearFromSrgb(qBlue(color) / 255.0);
    const double l = std::cbrt(0.4122214708 * r + 0.5363325363 * g + 0.0514459929 * b);
    const double m = std::cbrt(0.2119034982 * r + 0.6806995451 * g + 0.1073969566 * b);
    const double s = std::cbrt(0.0883024619 * r + 0.2817188376 * g + 0.6299787005 * b);
    return 0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s;
}

} // namespace orvimage

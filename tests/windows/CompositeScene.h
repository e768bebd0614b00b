// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "windows/compositePicture.h"

#include <gtest/gtest.h>

#include <QColor>

#include <ostream>
#include <vector>

inline CompositeChannel channelOf(const QString& strColor, double dMinFraction = 0.0, double dMaxFraction = 1.0,
                                  double dBrightness = 1.0)
{
    CompositeChannel channel;
    channel.minFraction = dMinFraction;
    channel.maxFraction = dMaxFraction;
    channel.brightness = dBrightness;
    channel.color = QColor(strColor);
    channel.label = strColor;
    return channel;
}

// What a composite is made of, with layers that start over the range of their data.
struct CompositeScene
{
    XTNT::Matrix<double> data;
    std::vector<int> pixelIndices;
    int width = 0;
    int height = 0;
    int spots = 1;
    QList<CompositeLayer> layers;
    CILImage background;

    // One row of values a component; the background is off.
    CompositeScene(int nWidth, int nHeight, const std::vector<std::vector<double>>& rows,
                   const std::vector<int>& indices = {}, int nSpots = 1)
        : data(static_cast<long long>(rows.size()), static_cast<long long>(rows.front().size())), pixelIndices(indices),
          width(nWidth), height(nHeight), spots(nSpots)
    {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            for (std::size_t j = 0; j < rows[i].size(); ++j) {
                data[static_cast<long long>(i)][j] = rows[i][j];
            }
        }
    }

    CompositeMaps maps() const { return {data, pixelIndices, width, height, spots}; }

    // The channels' own brightness stays.
    void start(const QList<CompositeChannel>& channels, const CILImage& photo = CILImage())
    {
        background = photo;
        layers = compositeStartLayers(maps(), channels, photo);
        for (int i = 0; i < channels.size(); ++i) {
            layers[i].channel.brightness = channels[i].brightness;
        }
        layers.last().checked = photo.isEmpty() ? Qt::Unchecked : Qt::Checked;
    }

    QImage mapPicture(int nSpot = 0) const { return compositeOfMaps(maps(), nSpot, layers); }
    QImage picture(int nSpot = 0) const { return compositePicture(maps(), nSpot, layers, background); }
};

// The colours of a picture, row by row, without alpha.
inline std::vector<unsigned> colorsOf(const QImage& picture)
{
    std::vector<unsigned> colors;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            EXPECT_EQ(qAlpha(picture.pixel(x, y)), 255);
            colors.push_back(picture.pixel(x, y) & 0xffffffU);
        }
    }
    return colors;
}

inline unsigned rgb(int nRed, int nGreen, int nBlue)
{
    return qRgb(nRed, nGreen, nBlue) & 0xffffffU;
}

inline unsigned colorAt(const QImage& picture, int x, int y)
{
    return picture.pixel(x, y) & 0xffffffU;
}

inline CILImage constantImage(long lWidth, long lHeight, double dValue)
{
    CILImage image;
    EXPECT_EQ(image.InitWithType(ORVTYPE_DOUBLE, lWidth, lHeight), EIL_SUCCESS);
    image.setConstData(dValue);
    image.RefreshImageStats();
    return image;
}

// A background of 480 x 480 pixels: 0, then 40 in the first row, then 100 everywhere.
inline CILImage stepBackground()
{
    CILImage image = constantImage(480, 480, 100.0);
    image.setValue(0, 0.0);
    image.setValue(1, 40.0);
    image.RefreshImageStats();
    return image;
}

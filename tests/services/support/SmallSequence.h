// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CPLClickInfo.h"
#include "host/orv_types.h"

#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class CORVSequenceDataset;

// One image of a small sequence. With calibration figures of 1 throughout, radiance is counts / binning^2, and every
// unit above it has the same numbers as radiance.
struct SmallImage
{
    QString excitation = QStringLiteral("640nm");
    QString emission;
    QString kyvoTime; // with both, an image of a temporal sequence
    QString kyvoInterval;
    int width = 4;
    int height = 4;
    int binning = 1;
    std::function<float(int)> value = [](int) { return 1.0F; };
    // Up to which unit the click info has calibration figures.
    int calibratedUnit = DISPLAYUNIT_RADIANT_EFFICIENCY;
    bool nativeEfficiency = false; // the pixels are efficiencies
    QString isotope;
    QString probe; // counts only beside a subject
    QString subject;
    QString started; // time of day, HH:mm:ss.zzz, at which a dated exposure began
};

// Sequences of a few pixels.
struct SmallSequence
{
    QString id = QStringLiteral("SMALL");
    bool temporal = false;
    bool fluorescence = true;
    bool transillumination = false;
    bool photograph = true;
    QString truthFolder; // named in the info file when not empty
    QList<SmallImage> images;

    QString click(int n) const { return QStringLiteral("%1-%2").arg(id).arg(n, 3, 10, QLatin1Char('0')); }
    // Appends images at excitation 640 nm and emissions from 700 nm on in steps of 20 nm; image j is values[j].
    void addBands(const std::vector<std::function<float(int)>>& values);

    CPLClickInfo clickInfo(int n) const;
    // On disk, at `folder`; a failure fails the test.
    void writeTo(const QString& folder) const;
    // In memory, registered with the host as long as it lives.
    std::unique_ptr<CORVSequenceDataset> inMemory() const;
};

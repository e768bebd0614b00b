// SPDX-License-Identifier: GPL-3.0-or-later
// Reader of spectrum libraries: whatever the bytes, a list of spectra that all have the same points, within the limit.
#include "require.h"
#include "spectra/SpumKyvoDatabase.h"

#include <QBuffer>
#include <QTextStream>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly | QIODevice::Text);
    QTextStream stream(&buffer);
    stream.setCodec("UTF-8");
    QList<SpectrumPlotParams*> spectra{new SpectrumPlotParams};
    QString note;
    SpumKyvoDatabase::readLibrary(stream, spectra, note);
    require(!spectra.isEmpty() && spectra.size() <= SpumKyvoDatabase::maxSpectra);
    for (const SpectrumPlotParams* spectrum : spectra) {
        require(spectrum->points.size() == spectra.first()->points.size());
    }
    qDeleteAll(spectra);
    return 0;
}

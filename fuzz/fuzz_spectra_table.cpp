// SPDX-License-Identifier: GPL-3.0-or-later
// Reader of plain tables of spectra: whatever the bytes, a reason or a table whose spectra have a name and a value
// each.
#include "require.h"
#include "services/basis/Failure.h"
#include "services/session/SpectraTableReader.h"
#include "services/session/pairTable.h"
#include "spectra/SpectrumPlotParams.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace {

// The tables of results, by the same bytes.
void readPairs(const QByteArray& bytes)
{
    if (!isPairTable(bytes)) {
        return;
    }
    try {
        const QList<SpectrumPlotParams*> spectra = readPairTable(bytes, QStringLiteral("f.csv"));
        for (const SpectrumPlotParams* pSpectrum : spectra) {
            require(pSpectrum->points.size() == spectra.first()->points.size());
        }
        qDeleteAll(spectra);
    } catch (const Failure& failure) {
        require(failure.text().startsWith(QLatin1String("f.csv:")));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    readPairs(bytes);
    SpectraTable table;
    QString error;
    if (!SpectraTableReader::parse(bytes, QStringLiteral("f.csv"), &table, &error)) {
        require(error.startsWith(QLatin1String("f.csv:")) && table.names().isEmpty());
        return 0;
    }
    require(!table.names().isEmpty() && !table.rows().isEmpty());
    for (int k = 0; k < table.names().size(); ++k) {
        const QVector<double>& values = table.values(k);
        require(values.size() == table.rows().size() && !table.names().at(k).isEmpty());
        require(!table.names().at(k).contains(QLatin1Char(',')));
        require(std::any_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); }));
    }
    return 0;
}

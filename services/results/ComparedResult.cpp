// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ComparedResult.h"

#include "services/basis/Failure.h"
#include "services/basis/TruthFiles.h"
#include "services/results/UnmixFolder.h"
#include "spectra/SpectrumPlotParams.h"

#include <QFileInfo>
#include <QImage>

namespace {

// The first spot's file is the one that a summary names.
QString mapOfSpot(const QString& strFirst, int nSpot)
{
    const QString end = QStringLiteral("_spot%1.tif");
    const QString first = end.arg(1);
    return strFirst.endsWith(first) ? strFirst.left(strFirst.size() - first.size()) + end.arg(nSpot + 1) : strFirst;
}

} // namespace

void ComparedResult::readResult(const QString& strFolder)
{
    const UnmixFolder folder(strFolder);
    if (folder.components().isEmpty()) {
        throw Failure(QStringLiteral("%1 names no components").arg(folder.summaryPath()));
    }
    m_strLabel = folder.label();
    m_strUnit = folder.unit();
    m_bDecayCorrected = folder.isDecayCorrected();
    m_library.load(folder.path() + QStringLiteral("spectra.csv"));
    for (const UnmixFolder::Component& component : folder.components()) {
        m_names.append(component.name);
        const QString map = folder.path() + component.map;
        readSpots([&map](int spot) { return mapOfSpot(map, spot); });
    }
    if (m_library.all().size() != m_names.size()) {
        throw Failure(QStringLiteral("%1spectra.csv does not hold one spectrum a component").arg(folder.path()));
    }
    readMask(folder);
}

void ComparedResult::readTruth(const QString& strFolder, bool bDecayCorrected)
{
    m_bTruth = true;
    m_bDecayCorrected = bDecayCorrected;
    m_strLabel = bDecayCorrected ? QStringLiteral("truth corrected for decay") : QStringLiteral("truth");
    m_library.load(strFolder + QStringLiteral("spectra.csv"));
    for (const auto* spectrum : m_library.all()) {
        m_names.append(spectrum->settings.name);
        const QString name = spectrum->settings.name;
        const bool scan = QFileInfo::exists(strFolder + truthMapFile(name, 0));
        readSpots([&](int spot) { return strFolder + (scan ? truthMapFile(name, spot) : truthMapFile(name)); });
    }
}

void ComparedResult::readSpots(const std::function<QString(int)>& fileOfSpot)
{
    const bool first = m_maps.empty();
    readMap(fileOfSpot(0));
    int spots = 1;
    while (fileOfSpot(spots) != fileOfSpot(0) && QFileInfo(fileOfSpot(spots)).isFile()) {
        readMap(fileOfSpot(spots++));
    }
    if (first) {
        m_nSpots = spots;
    }
    if (spots != m_nSpots) {
        throw Failure(QStringLiteral("%1: there are maps of %2 spots, where the first component has %3")
                          .arg(fileOfSpot(0), QString::number(spots), QString::number(m_nSpots)));
    }
}

void ComparedResult::readMap(const QString& strFile)
{
    CILImage map = UnmixFolder::readMap(strFile);
    if (!m_maps.empty() && (map.m_lWidth != m_maps.front().m_lWidth || map.m_lHeight != m_maps.front().m_lHeight)) {
        throw Failure(QStringLiteral("%1: the map is of another size than the others").arg(strFile));
    }
    m_maps.push_back(std::move(map));
}

void ComparedResult::readMask(const UnmixFolder& folder)
{
    const QImage mask = folder.readMask(m_maps.front().m_lWidth, m_maps.front().m_lHeight);
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x) {
            if (mask.constScanLine(y)[x] > 0) {
                m_pixels.push_back(y * mask.width() + x);
            }
        }
    }
}

QList<KeyPair> ComparedResult::pairs() const
{
    QList<KeyPair> pairs;
    for (const auto& point : m_library.all().first()->points) {
        KeyPair pair;
        pair.first = point.first;
        pair.second = point.second;
        pairs.append(pair);
    }
    return pairs;
}

bool ComparedResult::hasPair(const KeyPair& pair) const
{
    for (const auto* spectrum : m_library.all()) {
        if (!spectrum->coversPairs({pair})) {
            return false;
        }
    }
    return true;
}

std::vector<double> ComparedResult::spectrum(int n, const QList<KeyPair>& pairs) const
{
    const auto values = m_library.all().at(n)->valuesAt(pairs);
    std::vector<double> list;
    for (long long j = 0; j < values.n_; ++j) {
        list.push_back(values[j]);
    }
    return list;
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/SpectrumSources.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "host/CORVSequenceDataset.h"
#include "services/basis/Failure.h"
#include "services/basis/ImageExtent.h"
#include "services/basis/UnitNames.h"
#include "services/session/LibrarySpectra.h"
#include "services/session/OpenedSequence.h"
#include "services/session/PairSelection.h"
#include "services/session/SourceCurve.h"
#include "spectra/DefaultColors.h"
#include "spectra/SpectrumPlotParams.h"

#include <cmath>

namespace {

// The image's amount of the source at each pair, not normalised.
XTNT::Vector<double> valuesOf(const QString& strName, const QList<KeyPair>& pairs)
{
    const XTNT::Vector<double> values = SourceCurve::valuesAt(strName, pairs);
    if (values.empty()) {
        throw Failure(QStringLiteral("the database has no source \"%1\" (sources carry no suffix here)").arg(strName));
    }
    if (!SourceCurve::coversExcitations(strName, pairs)) {
        throw Failure(
            QStringLiteral("the database has no excitation curve of \"%1\", and the images have several excitations")
                .arg(strName));
    }
    return values;
}

void normalise(XTNT::Vector<double>& values, const QString& strName)
{
    for (long long j = 0; j < values.n_; ++j) {
        if (!std::isfinite(values[j])) {
            throw Failure(QStringLiteral("\"%1\" has values that are not finite at these images").arg(strName));
        }
    }
    const double maximum = values.Max();
    if (!(maximum > 0.0)) {
        throw Failure(QStringLiteral("\"%1\" gives no light at these images").arg(strName));
    }
    for (long long j = 0; j < values.n_; ++j) {
        values[j] /= maximum;
    }
}

struct Region
{
    QString name;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

Region parseRegion(const QString& strText)
{
    const int equals = strText.indexOf(QLatin1Char('='));
    const QStringList numbers = strText.mid(equals + 1).split(QLatin1Char(','));
    Region region;
    bool ok[4] = {false, false, false, false};
    if (equals > 0 && numbers.size() == 4) {
        region.name = strText.left(equals).trimmed();
        region.x = numbers[0].toInt(&ok[0]);
        region.y = numbers[1].toInt(&ok[1]);
        region.width = numbers[2].toInt(&ok[2]);
        region.height = numbers[3].toInt(&ok[3]);
    }
    if (!ok[0] || !ok[1] || !ok[2] || !ok[3] || region.name.isEmpty() || region.width < 1 || region.height < 1) {
        throw Failure(QStringLiteral("--region: \"%1\" is not of the form NAME=X,Y,W,H").arg(strText),
                      Failure::Kind::BadRequest);
    }
    return region;
}

std::vector<int> pixelsOf(const Region& region, const CORVSpumKyvo& engine)
{
    const QSize extent = analysedExtent(engine);
    if (region.x < 0 || region.y < 0 || region.x > extent.width() - region.width ||
        region.y > extent.height() - region.height) {
        throw Failure(QStringLiteral("the region \"%1\" leaves the image of %2 x %3 pixels")
                          .arg(region.name)
                          .arg(extent.width())
                          .arg(extent.height()));
    }
    std::vector<int> pixels;
    for (int y = region.y; y < region.y + region.height; ++y) {
        for (int x = region.x; x < region.x + region.width; ++x) {
            pixels.push_back(y * engine.m_nWidth + x);
        }
    }
    return pixels;
}

// Opens the sequence for its pairs; throws when it cannot be analysed.
void requireAnalysable(const OpenedSequence& opened, const QString& strSequence)
{
    if (!opened.canBeAnalysed()) {
        throw Failure(QStringLiteral("%1 cannot be analysed: %2").arg(strSequence, opened.reasonAgainst()));
    }
}

} // namespace

SpectrumSources::SpectrumSources() = default;
SpectrumSources::~SpectrumSources() = default;

QList<SpectrumPlotParams*> SpectrumSources::spectra() const
{
    QList<SpectrumPlotParams*> list;
    for (const auto& spectrum : m_spectra) {
        list.append(spectrum.get());
    }
    return list;
}

SpectrumPlotParams& SpectrumSources::append(const QString& strName, const QString& strOrigin)
{
    const int index = static_cast<int>(m_spectra.size());
    m_spectra.push_back(std::make_unique<SpectrumPlotParams>());
    SpectrumPlotParams& spectrum = *m_spectra.back();
    spectrum.settings.index = index;
    spectrum.settings.name = strName;
    spectrum.settings.color = defaultSpectrumColor(index);
    spectrum.origin = strOrigin;
    return spectrum;
}

void SpectrumSources::fromLibrary(const QString& strFileOrName)
{
    LibrarySpectra library;
    library.load(strFileOrName);
    m_strNote = library.note();
    for (const auto* spectrum : library.all()) {
        m_spectra.push_back(std::make_unique<SpectrumPlotParams>(*spectrum));
    }
}

void SpectrumSources::fromDatabase(const QString& strNames, const QString& strSequence)
{
    OpenedSequence opened(strSequence);
    requireAnalysable(opened, strSequence);
    if (opened.engine().m_eSeqKind == SEQKIND_TEMPORAL) {
        throw Failure(QStringLiteral("the database holds spectra; %1 is a temporal sequence").arg(strSequence));
    }
    const QList<KeyPair> pairs = opened.engine().getSelectedKeyPairs();
    for (const auto& part : strNames.split(QLatin1Char(','))) {
        const QString name = part.trimmed();
        auto values = valuesOf(name, pairs);
        normalise(values, name);
        SpectrumPlotParams& spectrum = append(name, QStringLiteral("database"));
        spectrum.setPairs(pairs);
        spectrum.setValues(values);
    }
    m_strNote = QStringLiteral("sources of the database without the influence of tissue");
}

void SpectrumSources::fromRegions(const QStringList& regions, const QString& strSequence)
{
    OpenedSequence opened(strSequence);
    requireAnalysable(opened, strSequence);
    auto& engine = opened.engine();
    engine.resetAnalysis(RUNMODE_MANUAL);
    if (!engine.buildImageCube()) {
        throw Failure(QStringLiteral("%1: the images cannot be read").arg(strSequence),
                      QStringLiteral("--verbose tells more"));
    }
    for (const auto& text : regions) {
        const Region region = parseRegion(text);
        auto values = engine.m_cube.spectrum(pixelsOf(region, engine));
        normalise(values, region.name);
        SpectrumPlotParams& spectrum = append(region.name, opened.sequence().getSequenceName());
        spectrum.setPairs(engine.getSelectedKeyPairs());
        spectrum.setValues(values);
    }
    m_strNote = QStringLiteral("measured in %1 in %2")
                    .arg(opened.sequence().getSequenceName(), UnitNames::text(engine.m_eUnit));
}

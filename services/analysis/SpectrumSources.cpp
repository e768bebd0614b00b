// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/SpectrumSources.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "host/CORVDatabase.h"
#include "host/CORVSequenceDataset.h"
#include "services/analysis/analysedRegion.h"
#include "services/basis/Failure.h"
#include "services/basis/ImageExtent.h"
#include "services/basis/ProbeNames.h"
#include "services/basis/UnitLimit.h"
#include "services/basis/UnitNames.h"
#include "services/session/LibrarySpectra.h"
#include "services/session/OpenedSequence.h"
#include "services/session/PairSelection.h"
#include "services/session/SourceCurve.h"
#include "services/session/SpectralBands.h"
#include "spectra/DefaultColors.h"
#include "spectra/SpectrumPlotParams.h"
#include "spectra/spectrumOnPairs.h"

#include <algorithm>
#include <cmath>

namespace {

// The excitation of the most images; of several the last.
QString commonExcitation(const QList<KeyPair>& pairs)
{
    QString common;
    int most = 0;
    for (const KeyPair& pair : pairs) {
        const auto images = static_cast<int>(std::count_if(
            pairs.begin(), pairs.end(), [&pair](const KeyPair& other) { return other.first == pair.first; }));
        if (images >= most) {
            most = images;
            common = pair.first;
        }
    }
    return common;
}

// What a spectrum is called: tissue and food as components are, others as the database has them.
QString labelOf(const QString& strAsked)
{
    sProbeParameters probe;
    const bool tissue = CORVDatabase::findProbe(strAsked, &probe) && probe.kind == QLatin1String("autofluorescence");
    return tissue && !probe.aliases.isEmpty() ? probe.aliases.first() : SourceCurve::nameOf(strAsked);
}

// Throws for the names of which the database has no source; tells all of them.
void checkSources(const QStringList& names, const QList<KeyPair>& pairs)
{
    QStringList known;
    for (const auto& probe : CORVDatabase::probeList()) {
        known.append(probe.hasEmission && probe.kind != QLatin1String("radioactive") ? QStringList(probe.name)
                                                                                     : QStringList());
    }
    QStringList wrong;
    for (const QString& name : names) {
        if (SourceCurve::valuesAt(name, pairs).empty()) {
            wrong.append(QStringLiteral("the database has no source \"%1\" (sources carry no suffix here)%2")
                             .arg(name, nearestProbesText(name, known)));
        }
    }
    if (!wrong.isEmpty()) {
        throw Failure(wrong.join(QStringLiteral("; ")));
    }
}

// The image's amount of a source of the database at each pair, not normalised.
XTNT::Vector<double> valuesOf(const QString& strName, const QList<KeyPair>& pairs)
{
    if (!SourceCurve::coversExcitations(strName, pairs)) {
        throw Failure(
            QStringLiteral("the database has no excitation curve of \"%1\", and the images have several excitations")
                .arg(strName),
            QStringLiteral("--select \"%1/*\" takes those of one, here and in \"spum unmix\"; at all of them it is "
                           "measured by --region, or taken by --from out of the spectra.csv of an automatic run")
                .arg(commonExcitation(pairs)));
    }
    return SourceCurve::valuesAt(strName, pairs);
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

// "X,Y,W,H" in whole pixels of the analysis, or what analysedRegion() takes.
struct Region
{
    QString name;
    QString shape;
    bool isRectangle = false; // of whole pixels
};

bool isWholeRectangle(const QString& strShape)
{
    const QStringList numbers = strShape.split(QLatin1Char(','));
    bool whole = numbers.size() == 4;
    for (int i = 0; whole && i < 4; ++i) {
        const int number = numbers.at(i).toInt(&whole);
        whole = whole && (i < 2 || number > 0);
    }
    return whole;
}

Region parseRegion(const QString& strText)
{
    const int equals = strText.indexOf(QLatin1Char('='));
    const Region region{strText.left(equals).trimmed(), strText.mid(equals + 1).trimmed(),
                        isWholeRectangle(strText.mid(equals + 1))};
    const bool named = equals > 0 && !region.name.isEmpty();
    if (named && region.shape.contains(QLatin1Char(':'))) {
        const QString reason = reasonAgainstRegionText(region.shape);
        if (!reason.isEmpty()) {
            throw Failure(QStringLiteral("--region: \"%1\": %2").arg(strText, reason), Failure::Kind::BadRequest);
        }
    } else if (!named || !region.isRectangle) {
        throw Failure(QStringLiteral("--region: \"%1\" is not of the form NAME=X,Y,W,H").arg(strText),
                      Failure::Kind::BadRequest);
    }
    return region;
}

std::vector<int> pixelsOf(const Region& region, const CORVSpumKyvo& engine)
{
    if (!region.isRectangle) {
        const QString option = QStringLiteral("--region %1").arg(region.name);
        return pixelsOfRegion(option, analysedRegion(option, region.shape, engine), engine);
    }
    const QStringList numbers = region.shape.split(QLatin1Char(','));
    const int left = numbers[0].toInt();
    const int top = numbers[1].toInt();
    const int width = numbers[2].toInt();
    const int height = numbers[3].toInt();
    const QSize extent = analysedExtent(engine);
    if (left < 0 || top < 0 || left > extent.width() - width || top > extent.height() - height) {
        throw Failure(QStringLiteral("the region \"%1\" leaves the image of %2 x %3 pixels")
                          .arg(region.name, QString::number(extent.width()), QString::number(extent.height())));
    }
    std::vector<int> pixels;
    for (int y = top; y < top + height; ++y) {
        for (int x = left; x < left + width; ++x) {
            pixels.push_back(y * engine.m_nWidth + x);
        }
    }
    return pixels;
}

// A library has no way to write a comma.
QString withoutCommas(QString strText)
{
    return strText.replace(QLatin1Char(','), QLatin1Char(';'));
}

std::vector<std::unique_ptr<SpectrumPlotParams>> owned(const QList<SpectrumPlotParams*>& spectra)
{
    return std::vector<std::unique_ptr<SpectrumPlotParams>>(spectra.begin(), spectra.end());
}

QList<KeyPair> pairsOf(const SpectrumPlotParams& spectrum)
{
    QList<KeyPair> pairs;
    for (const auto& point : spectrum.points) {
        pairs.append({point.first, point.second});
    }
    return pairs;
}

// Where one excitation is combined with several emissions the emission tells images apart.
int axisOf(const QList<KeyPair>& pairs)
{
    const bool oneEmission = std::all_of(pairs.begin(), pairs.end(),
                                         [&pairs](const KeyPair& pair) { return pair.second == pairs.first().second; });
    return oneEmission ? SPECTRUMAXIS_EXCITATION : SPECTRUMAXIS_EMISSION;
}

} // namespace

SpectrumSources::SpectrumSources() = default;
SpectrumSources::~SpectrumSources() = default;

void SpectrumSources::checkRegion(const QString& strText)
{
    parseRegion(strText);
}

void SpectrumSources::setImages(const QString& strSelect, int nUnit)
{
    m_strSelect = strSelect;
    m_nUnit = nUnit;
}

QList<SpectrumPlotParams*> SpectrumSources::spectra() const
{
    QList<SpectrumPlotParams*> list;
    for (const auto& spectrum : m_spectra) {
        list.append(spectrum.get());
    }
    return list;
}

QString SpectrumSources::note() const
{
    return m_notes.join(QStringLiteral("; "));
}

void SpectrumSources::beginSource(const QString& strNote)
{
    const QString note = withoutCommas(strNote);
    if (!note.isEmpty() && !m_notes.contains(note)) {
        m_notes.append(note);
    }
    for (const auto& spectrum : m_spectra) {
        m_names.insert(spectrum->settings.name);
    }
}

SpectrumPlotParams& SpectrumSources::append(const QString& strName, const QString& strOrigin)
{
    auto spectrum = std::make_unique<SpectrumPlotParams>();
    spectrum->settings.name = strName;
    spectrum->settings.color = defaultSpectrumColor(static_cast<int>(m_spectra.size()));
    spectrum->origin = strOrigin;
    take(std::move(spectrum));
    return *m_spectra.back();
}

void SpectrumSources::take(std::unique_ptr<SpectrumPlotParams> pSpectrum)
{
    const QString name = pSpectrum->settings.name;
    if (name.contains(QLatin1Char(','))) {
        throw Failure(QStringLiteral("\"%1\": the name of a spectrum in a library has no comma").arg(name));
    }
    if (m_names.contains(name)) {
        throw Failure(QStringLiteral("two spectra would have the name \"%1\"").arg(name),
                      QStringLiteral("\"spum library rename NAME --spectrum OLD=NEW\" gives one of a library another"));
    }
    pSpectrum->settings.index = static_cast<int>(m_spectra.size());
    pSpectrum->origin = withoutCommas(pSpectrum->origin);
    m_spectra.push_back(std::move(pSpectrum));
}

// To the images of the first spectrum, in their order.
void SpectrumSources::bringToImages(SpectrumPlotParams& spectrum) const
{
    const SpectrumPlotParams& first = *m_spectra.front();
    if (&spectrum == &first) {
        return;
    }
    const QList<KeyPair> pairs = pairsOf(first);
    QList<KeyPair> missing;
    QList<KeyPair> besides;
    for (const KeyPair& pair : pairs) {
        if (!spectrum.coversPairs({pair})) {
            missing.append(pair);
        }
    }
    for (const KeyPair& pair : pairsOf(spectrum)) {
        if (!first.coversPairs({pair})) {
            besides.append(pair);
        }
    }
    if (!missing.isEmpty() || !besides.isEmpty()) {
        const bool lacks = !missing.isEmpty();
        throw Failure(
            QStringLiteral("\"%1\" has no value for %2, and \"%3\" has: spectra of one library are of the same "
                           "images")
                .arg(lacks ? spectrum.settings.name : first.settings.name, pairsText(lacks ? missing : besides),
                     lacks ? first.settings.name : spectrum.settings.name),
            QStringLiteral("--select takes those that all have"));
    }
    spectrum = spectrumOnPairs(spectrum, pairs, spectrum.axis);
}

std::unique_ptr<OpenedSequence> SpectrumSources::open(const QString& strSequence) const
{
    auto opened = std::make_unique<OpenedSequence>(strSequence);
    if (!opened->canBeAnalysed()) {
        throw Failure(QStringLiteral("%1 cannot be analysed: %2").arg(strSequence, opened->reasonAgainst()));
    }
    CORVSpumKyvo& engine = opened->engine();
    if (!m_strSelect.isEmpty()) {
        QList<KeyPair> selection = selectPairs(m_strSelect, engine.getAllKeyPairs());
        QList<KeyPair> trial = selection;
        int axis = 0;
        if (engine.validateSelection(trial, &axis, false) == 0) {
            throw Failure(QStringLiteral("%1: the selection %2 cannot be unmixed, it takes two wavelengths at least")
                              .arg(strSequence, pairsText(selection)));
        }
        engine.applySelection(selection);
    }
    return opened;
}

void SpectrumSources::takeUnit(int nUnit, const QString& strSequence)
{
    if (m_nUnit >= 0 && nUnit != m_nUnit) {
        throw Failure(QStringLiteral("%1: the unit %2 cannot be reached; the images end in %3")
                          .arg(strSequence, UnitNames::text(m_nUnit), UnitNames::text(nUnit)));
    }
    if (m_nMeasuredUnit >= 0 && nUnit != m_nMeasuredUnit) {
        throw Failure(QStringLiteral("%1 is measured in %2 and %3 in %4, and their spectra do not go together")
                          .arg(m_strMeasured, UnitNames::text(m_nMeasuredUnit), strSequence, UnitNames::text(nUnit)),
                      QStringLiteral("--unit takes one that both have"));
    }
    m_nMeasuredUnit = nUnit;
    m_strMeasured = m_strMeasured.isEmpty() ? strSequence : m_strMeasured;
}

void SpectrumSources::fromLibrary(const QString& strFileOrName)
{
    LibrarySpectra library;
    library.loadWithTables(strFileOrName);
    beginSource(library.note());
    if (!library.isTable()) {
        for (const auto* spectrum : library.all()) {
            take(std::make_unique<SpectrumPlotParams>(*spectrum));
            bringToImages(*m_spectra.back());
        }
        return;
    }
    if (m_spectra.empty()) {
        throw Failure(QStringLiteral("%1 is a table over wavelength, and a library has values at images: --sequence is "
                                     "missing, the images that the spectra are for")
                          .arg(strFileOrName),
                      Failure::Kind::BadRequest);
    }
    const QList<KeyPair> pairs = pairsOf(*m_spectra.front());
    for (auto& spectrum : owned(library.fitTo(pairs, axisOf(pairs)))) {
        take(std::move(spectrum));
    }
}

void SpectrumSources::fromLibrary(const QString& strFileOrName, const QString& strSequence)
{
    LibrarySpectra library;
    library.loadWithTables(strFileOrName);
    const auto opened = open(strSequence);
    const QList<KeyPair> pairs = opened->engine().getSelectedKeyPairs();
    library.selectAll();
    auto fitted = owned(library.fitTo(bandsOf(opened->sequence(), pairs), opened->engine().m_eAxis));
    beginSource(library.note());
    for (auto& spectrum : fitted) {
        take(std::move(spectrum));
        bringToImages(*m_spectra.back());
    }
}

void SpectrumSources::fromDatabase(const QString& strNames, const QString& strSequence)
{
    const auto opened = open(strSequence);
    if (opened->engine().m_eSeqKind == SEQKIND_TEMPORAL) {
        throw Failure(QStringLiteral("the database holds spectra; %1 is a temporal sequence").arg(strSequence));
    }
    const QList<KeyPair> pairs = opened->engine().getSelectedKeyPairs();
    QStringList names;
    for (const auto& part : strNames.split(QLatin1Char(','))) {
        names.append(labelOf(part.trimmed()));
    }
    checkSources(names, pairs);
    beginSource(QStringLiteral("sources of the database without the influence of tissue"));
    for (const QString& name : qAsConst(names)) {
        auto values = valuesOf(name, pairs);
        normalise(values, name);
        SpectrumPlotParams& spectrum = append(name, QStringLiteral("database"));
        spectrum.setPairs(pairs);
        spectrum.setValues(values);
        bringToImages(spectrum);
    }
}

void SpectrumSources::fromRegions(const QStringList& regions, const QString& strSequence)
{
    QList<Region> asked;
    for (const auto& text : regions) {
        asked.append(parseRegion(text));
    }
    const auto opened = open(strSequence);
    auto& engine = opened->engine();
    engine.resetAnalysis(RUNMODE_MANUAL);
    UnitLimit limit;
    limit.set(m_nUnit);
    if (!engine.buildImageCube()) {
        throw Failure(QStringLiteral("%1: the images cannot be read").arg(strSequence),
                      QStringLiteral("--verbose tells more"));
    }
    takeUnit(engine.m_eUnit, strSequence);
    const QString name = opened->sequence().getSequenceName();
    beginSource(QStringLiteral("measured in %1 in %2").arg(name, UnitNames::text(engine.m_eUnit)));
    for (const Region& region : asked) {
        auto values = engine.m_cube.spectrum(pixelsOf(region, engine));
        normalise(values, region.name);
        SpectrumPlotParams& spectrum = append(region.name, name);
        spectrum.setPairs(engine.getSelectedKeyPairs());
        spectrum.setValues(values);
        bringToImages(spectrum);
    }
}

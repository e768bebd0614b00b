// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/KnownSpectra.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "engine/suggestedConstraints.h"
#include "services/session/SourceCurve.h"
#include "spectra/SpectrumPlotParams.h"

#include <algorithm>
#include <cmath>

namespace {

const QString tissue = QStringLiteral("TissueAF");
const QString food = QStringLiteral("Food");
constexpr double notKnown = std::numeric_limits<double>::quiet_NaN();

std::vector<double> valuesOf(const XTNT::Vector<double>& vector)
{
    return std::vector<double>(vector.data, vector.data + vector.n_);
}

// The images' other wavelength, numbered.
std::vector<int> groupsOf(const CORVSpumKyvo& engine)
{
    QStringList seen;
    std::vector<int> groups;
    for (const KeyPair& pair : engine.getSelectedKeyPairs()) {
        const QString& other = engine.m_eAxis == SPECTRUMAXIS_EXCITATION ? pair.second : pair.first;
        if (!seen.contains(other)) {
            seen.append(other);
        }
        groups.push_back(seen.indexOf(other));
    }
    return groups;
}

// A source's spectrum as it is and behind tissue; empty when the database has none.
std::vector<std::vector<double>> knownSpectra(const CORVSpumKyvo& engine, const QString& strName)
{
    const QString source = sourceOfLabel(strName);
    const QList<KeyPair>& pairs = engine.getSelectedKeyPairs();
    const XTNT::Vector<double> plain = SourceCurve::valuesAt(source, pairs);
    if (plain.empty()) {
        return {};
    }
    std::vector<std::vector<double>> spectra = {valuesOf(plain)};
    if (isAutofluorescence(source)) {
        return spectra;
    }
    QStringList keys;
    for (const KeyPair& pair : pairs) {
        keys.append(engine.m_eAxis == SPECTRUMAXIS_EXCITATION ? pair.first : pair.second);
    }
    const XTNT::Vector<double> crossing = engine.tissueAttenuation(QString(), keys);
    std::vector<double> behind = spectra.front();
    for (std::size_t j = 0; j < behind.size(); ++j) {
        behind[j] *= crossing[static_cast<long long>(j)];
    }
    spectra.push_back(behind);
    return spectra;
}

} // namespace

double cosineByGroups(const std::vector<double>& spectrum, const std::vector<double>& known,
                      const std::vector<int>& groups)
{
    double squares = 0.0;
    double explained = 0.0;
    const int count = groups.empty() ? 0 : 1 + *std::max_element(groups.begin(), groups.end());
    for (int group = 0; group < count; ++group) {
        double product = 0.0;
        double knownSquares = 0.0;
        for (std::size_t j = 0; j < spectrum.size(); ++j) {
            if (groups[j] == group) {
                product += spectrum[j] * known[j];
                knownSquares += known[j] * known[j];
                squares += spectrum[j] * spectrum[j];
            }
        }
        if (knownSquares > 0.0 && product > 0.0) {
            explained += product * product / knownSquares;
        }
    }
    return squares > 0.0 ? std::sqrt(explained / squares) : notKnown;
}

QString backgroundLike(const CORVSpumKyvo& engine, const std::vector<double>& spectrum)
{
    constexpr double enough = 0.9;
    if (engine.m_eSeqKind == SEQKIND_TEMPORAL || engine.m_eSeqKind == SEQKIND_LUMINESCENT) {
        return QString();
    }
    QString nearest;
    double best = enough;
    const std::vector<int> groups = groupsOf(engine);
    for (const QString& name : {tissue, food}) {
        for (const auto& known : knownSpectra(engine, name)) {
            const double cosine = cosineByGroups(spectrum, known, groups);
            if (cosine > best) {
                best = cosine;
                nearest = name;
            }
        }
    }
    return nearest;
}

QList<KnownLikeness> likenessToNames(const CORVSpumKyvo& engine)
{
    const int count = engine.m_spectrumPlots.size();
    QList<KnownLikeness> all;
    QStringList names = {tissue, food};
    for (int k = 0; k < count; ++k) {
        all.append(KnownLikeness());
        const QString name = engine.m_spectrumPlots[k]->settings.name;
        if (!names.contains(name)) {
            names.append(name);
        }
    }
    if (engine.m_eSeqKind == SEQKIND_TEMPORAL) {
        return all;
    }
    const std::vector<int> groups = groupsOf(engine);
    for (const QString& name : qAsConst(names)) {
        const auto candidates = knownSpectra(engine, name);
        for (int k = 0; k < count; ++k) {
            const QString own = engine.m_spectrumPlots[k]->settings.name;
            double best = notKnown;
            for (const auto& known : candidates) {
                best = std::fmax(best, cosineByGroups(valuesOf(engine.m_spectra.row(k)), known, groups));
            }
            if (sourceOfLabel(own) == sourceOfLabel(name)) {
                all[k].own = best;
            } else if (best > all[k].other || (std::isnan(all[k].other) && best > 0.0)) {
                all[k].other = best;
                all[k].nearest = name;
            }
        }
    }
    return all;
}

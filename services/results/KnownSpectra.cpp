// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/KnownSpectra.h"

#include "XTNT/nnls_row_fit.h"
#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "engine/suggestedConstraints.h"
#include "services/session/SourceCurve.h"
#include "spectra/SpectrumPlotParams.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

const QString tissue = QStringLiteral("TissueAF");
const QString food = QStringLiteral("Food");
constexpr double notKnown = std::numeric_limits<double>::quiet_NaN();

std::vector<double> valuesOf(const XTNT::Vector<double>& vector)
{
    return std::vector<double>(vector.data, vector.data + vector.n_);
}

double product(const std::vector<double>& a, const std::vector<double>& b)
{
    return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
}

// What is left of a vector beside those of an orthonormal basis.
std::vector<double> beside(const std::vector<std::vector<double>>& basis, std::vector<double> vector)
{
    // Twice, as once leaves rounding of the size of what was taken off.
    for (int pass = 0; pass < 2; ++pass) {
        for (const std::vector<double>& direction : basis) {
            const double amount = product(direction, vector);
            for (std::size_t j = 0; j < vector.size(); ++j) {
                vector[j] -= amount * direction[j];
            }
        }
    }
    return vector;
}

// Of the space of the rows.
std::vector<std::vector<double>> orthonormalRows(const XTNT::Matrix<double>& matrix)
{
    constexpr double dependent = 1e-9;
    std::vector<std::vector<double>> basis;
    for (long long k = 0; k < matrix.num_rows(); ++k) {
        const std::vector<double> row(matrix[k], matrix[k] + matrix.num_cols());
        std::vector<double> direction = beside(basis, row);
        const double length = std::sqrt(product(direction, direction));
        if (length > dependent * std::sqrt(product(row, row))) {
            for (double& value : direction) {
                value /= length;
            }
            basis.push_back(direction);
        }
    }
    return basis;
}

} // namespace

std::vector<int> groupsOfImages(const CORVSpumKyvo& engine)
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

std::vector<std::vector<double>> sourceSpectra(const CORVSpumKyvo& engine, const QString& strName)
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

double likenessOfRest(const std::vector<double>& rest, const std::vector<double>& known, const std::vector<int>& groups,
                      const XTNT::Matrix<double>& spectra)
{
    constexpr int leastImages = 3;
    const int count = groups.empty() ? 0 : 1 + *std::max_element(groups.begin(), groups.end());
    const auto images = static_cast<long long>(rest.size());
    if (images - spectra.num_rows() - count < leastImages) {
        return 0.0;
    }
    const std::vector<std::vector<double>> basis = orthonormalRows(spectra);
    std::vector<double> left = beside(basis, rest);
    XTNT::Matrix<double> design(count, images);
    for (int group = 0; group < count; ++group) {
        std::vector<double> part(rest.size(), 0.0);
        for (std::size_t j = 0; j < part.size(); ++j) {
            part[j] = groups[j] == group ? known[j] : 0.0;
        }
        part = beside(basis, part);
        std::copy(part.begin(), part.end(), design[group]);
    }
    std::vector<double> factors(static_cast<std::size_t>(count), 0.0);
    XTNT::NnlsRowFit(design).fit(left.data(), factors.data());
    const double squares = product(left, left);
    for (int group = 0; group < count; ++group) {
        for (std::size_t j = 0; j < left.size(); ++j) {
            left[j] -= factors[static_cast<std::size_t>(group)] * design[group][static_cast<long long>(j)];
        }
    }
    return squares > 0.0 ? std::sqrt(std::max(0.0, 1.0 - product(left, left) / squares)) : 0.0;
}

QString sourceLikeRest(const CORVSpumKyvo& engine, const std::vector<double>& rest)
{
    constexpr double enough = 0.9;
    if (engine.m_eSeqKind == SEQKIND_TEMPORAL || engine.m_eSeqKind == SEQKIND_LUMINESCENT) {
        return QString();
    }
    QStringList names = QStringList{tissue, food} + engine.m_probes;
    for (const SpectrumPlotParams* pPlot : engine.m_spectrumPlots) {
        names.removeAll(pPlot->settings.name);
    }
    QString nearest;
    double best = enough;
    const std::vector<int> groups = groupsOfImages(engine);
    for (const QString& name : qAsConst(names)) {
        for (const auto& known : sourceSpectra(engine, name)) {
            const double cosine = likenessOfRest(rest, known, groups, engine.m_spectra);
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
    const std::vector<int> groups = groupsOfImages(engine);
    for (const QString& name : qAsConst(names)) {
        const auto candidates = sourceSpectra(engine, name);
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

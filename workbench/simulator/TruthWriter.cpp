// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/TruthWriter.h"

#include "XTNT/xtnt_parallel.h"
#include "files/AtomicFile.h"
#include "platform/orvimage/TiffIo.h"
#include "services/basis/TruthFiles.h"
#include "spectra/DefaultColors.h"
#include "workbench/simulator/CameraModel.h"
#include "workbench/simulator/SceneModel.h"
#include "workbench/simulator/SimulationOptions.h"

#include <QDir>

#include <algorithm>

namespace {

using Spectra = std::vector<std::vector<double>>;

void appendHeader(QString& text, const QString& strKey, const QStringList& fields)
{
    text += QStringLiteral("$,%1,%2\n").arg(strKey, fields.join(QLatin1Char(',')));
}

QByteArray libraryText(const QStringList& names, const Spectra& spectra, const QList<Band>& bands,
                       const QString& strNote)
{
    QStringList colors;
    QStringList origins;
    QStringList selected;
    for (int i = 0; i < names.size(); ++i) {
        colors.append(defaultSpectrumColor(i));
        origins.append(QStringLiteral("simulation"));
        selected.append(QStringLiteral("1"));
    }
    QString text;
    appendHeader(text, QStringLiteral("Note"), {strNote});
    appendHeader(text, QStringLiteral("NumSpec"), {QString::number(names.size())});
    appendHeader(text, QStringLiteral("Color"), colors);
    appendHeader(text, QStringLiteral("Origin"), origins);
    appendHeader(text, QStringLiteral("Select"), selected);
    text += QStringLiteral("Excitation,Emission,") + names.join(QLatin1Char(',')) + QLatin1Char('\n');
    for (int j = 0; j < bands.size(); ++j) {
        text += bands.at(j).firstKey + QLatin1Char(',') + bands.at(j).secondKey;
        for (const std::vector<double>& spectrum : spectra) {
            text += QLatin1Char(',') + exactText(spectrum[static_cast<std::size_t>(j)]);
        }
        text += QLatin1Char('\n');
    }
    return text.toUtf8();
}

// What is the same for all units.
struct Truth
{
    const SceneModel& model;
    const SimulationOptions& options;
    QList<Band> bands; // of one spot
    QString folder;
};

// What a count of each band is in the unit; empty when the sequence does not have it.
std::vector<double> unitsOf(const Truth& truth, tag_edisplayunit eUnit)
{
    std::vector<double> units;
    for (const Band& band : truth.bands) {
        units.push_back(unitOfCount(truth.options, band, eUnit));
        if (!(units.back() > 0.0)) {
            return {};
        }
    }
    return units;
}

bool writeMap(const Truth& truth, std::vector<double> map, const QString& strPath, QString* pError)
{
    XTNT::cancellationPoint();
    CILImage image = exactImage(map, truth.model.size);
    image.m_fBinning = static_cast<float>(truth.options.binning);
    if (!image.isEmpty()) {
        return writeTiff(strPath, image, TiffWriteOptions(), pError);
    }
    *pError = QStringLiteral("There is not enough memory for the true maps.");
    return false;
}

// The maps of a component's spots, times a factor.
bool writeMaps(const Truth& truth, std::size_t component, double factor, bool bOverReference, const QString& strFolder,
               QString* pError)
{
    const SceneModel& model = truth.model;
    const QString name = model.names.at(static_cast<int>(component));
    const std::size_t pixels = model.pixelsPerSpot();
    for (int spot = 0; spot < model.spots; ++spot) {
        const std::size_t first = static_cast<std::size_t>(spot) * pixels;
        std::vector<double> map(pixels);
        for (std::size_t i = 0; i < pixels; ++i) {
            map[i] = model.maps[component][first + i] * factor;
            if (bOverReference) {
                map[i] /= model.reference[first + i];
            }
        }
        const QString file = model.spots == 1 ? truthMapFile(name) : truthMapFile(name, spot);
        if (!writeMap(truth, map, strFolder + QLatin1Char('/') + file, pError)) {
            return false;
        }
    }
    return true;
}

bool writeUnit(const Truth& truth, const QString& strUnit, const std::vector<double>& units, bool bOverReference,
               QString* pError)
{
    const QString folder = truth.folder + strUnit;
    if (!QDir().mkpath(folder)) {
        *pError = QStringLiteral("%1: the folder cannot be made.").arg(folder);
        return false;
    }
    Spectra spectra = truth.model.spectra;
    for (std::size_t k = 0; k < spectra.size(); ++k) {
        for (std::size_t j = 0; j < units.size(); ++j) {
            spectra[k][j] *= units[j];
        }
        const double top = *std::max_element(spectra[k].begin(), spectra[k].end());
        for (double& value : spectra[k]) {
            value /= top;
        }
        if (!writeMaps(truth, k, top, bOverReference, folder, pError)) {
            return false;
        }
    }
    const QString note = QStringLiteral("true spectra of a simulation in %1").arg(strUnit);
    return orv::writeFileAtomically(folder + QStringLiteral("/spectra.csv"),
                                    libraryText(truth.model.names, spectra, truth.bands, note), pError);
}

} // namespace

bool writeTruth(const QString& strFolder, const SceneModel& model, const SimulationOptions& options,
                const QList<Band>& bands, QString* pError)
{
    const Truth truth{model, options, bands.mid(0, bands.size() / model.spots), strFolder};
    for (const tag_edisplayunit unit :
         {DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANCE, DISPLAYUNIT_RADIANT_EFFICIENCY, DISPLAYUNIT_EFFICIENCY}) {
        std::vector<double> units = unitsOf(truth, unit);
        if (units.empty()) {
            continue;
        }
        const bool overReference = unit == DISPLAYUNIT_EFFICIENCY && !model.reference.empty();
        if (!writeUnit(truth, truthUnitFolder(unit), units, overReference, pError)) {
            return false;
        }
        if (options.kind != SimulationKind::Cherenkov) {
            continue;
        }
        for (std::size_t j = 0; j < units.size(); ++j) {
            units[j] *= truth.bands.at(static_cast<int>(j)).decayCorrection;
        }
        if (!writeUnit(truth, truthDecayFolder(unit), units, false, pError)) {
            return false;
        }
    }
    return true;
}

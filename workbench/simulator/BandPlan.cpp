// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/BandPlan.h"

#include "host/CORVDatabase.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/DecayCorrection.h"
#include "platform/orvapi/ImageCalibration.h"
#include "workbench/simulator/Kinetics.h"
#include "workbench/simulator/MouseShape.h"
#include "workbench/simulator/SimulationOptions.h"
#include "workbench/simulator/SpectralCurve.h"

#include <QLocale>

#include <algorithm>
#include <optional>

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kJoulesPerPhotonTimesNm = 1.98644586e-16; // h c, with the wavelength in nm
constexpr int kReadOutMilliseconds = 5000;
constexpr int kMixedBands = 2;
constexpr double kTransmittedShare = 2e-3; // of a white diffuser's light that crosses the animal where it is brightest
constexpr const char* kBlock = "Block";    // the excitation filter that lets nothing through

// Lambert: a white diffuser sends back all photons, over pi sr.
double whiteRadiance(double irradiance, double nm)
{
    return irradiance * 1e-6 / (kJoulesPerPhotonTimesNm / nm) / kPi;
}

QString filterText(int nm)
{
    return nm > 0 ? QString::number(nm) + QStringLiteral("nm") : QString::fromLatin1(kBlock);
}

qint64 milliseconds(double seconds)
{
    return qRound64(1000.0 * seconds);
}

// What the image's light and filters come to, and how it is known.
void light(const SimulationOptions& options, const FilterPair& pair, Band& band)
{
    band.filters = pair;
    band.photonsPerCount =
        options.gain / (CameraFigures::quantumEfficiency(pair.emission) * CameraFigures::kTransmission);
    band.firstKey = pair.excitation > 0 ? QString::number(pair.excitation) : QString::fromLatin1(kBlock);
    band.secondKey = QString::number(pair.emission);
    if (pair.excitation <= 0) {
        return;
    }
    band.irradiance = CameraFigures::irradiance(pair.excitation);
    band.referenceRadiance = whiteRadiance(band.irradiance, pair.excitation);
    if (options.kind == SimulationKind::Transillumination) {
        band.referenceRadiance *= kTransmittedShare;
    }
}

// Keys of an image of a temporal sequence: as its click info tells them, or as images without times are numbered.
void setTime(const SimulationOptions& options, int index, Band& band)
{
    const double seconds = timesOf(options).at(index);
    const int interval = options.timesSeconds.isEmpty() ? Kinetics::standardInterval(seconds) : 1;
    if (options.timeKeys) {
        band.kyvoTime = exactText(seconds);
        band.kyvoInterval = QString::number(interval);
    }
    band.firstKey = QStringLiteral("Int%1").arg(options.timeKeys ? interval : 1);
    band.secondKey = QString::number(options.timeKeys ? static_cast<int>(seconds) : index);
}

// Band::timeSeconds of image `index`, which follows `before`.
double startOf(const SimulationOptions& options, int index, const QList<Band>& before)
{
    if (options.kind == SimulationKind::Temporal) {
        return timesOf(options).at(index);
    }
    if (options.kind == SimulationKind::Cherenkov) {
        return index * bandStepSeconds(options);
    }
    if (before.isEmpty()) {
        return 0.0;
    }
    return before.last().timeSeconds +
           static_cast<double>(kReadOutMilliseconds + milliseconds(before.last().exposureSeconds)) / 1000.0;
}

void setDecay(const SimulationOptions& options, QList<Band>& bands)
{
    QVector<Exposure> exposures;
    for (const Band& band : bands) {
        exposures.append({static_cast<double>(band.start.toMSecsSinceEpoch()) / 1000.0, band.exposureSeconds});
    }
    QVector<double> factors;
    if (decayCorrectionFactors(exposures, CORVDatabase::getCherenkovRADHalflife(options.isotope), factors)) {
        for (int i = 0; i < bands.size(); ++i) {
            bands[i].decayCorrection = factors.at(i);
        }
    }
}

void set(CPLSection& section, const char* pKey, const QString& strValue)
{
    section.setValue(QString::fromLatin1(pKey), strValue);
}

void set(CPLSection& section, const char* pKey, double value)
{
    set(section, pKey, exactText(value));
}

CPLSection luminescentSection(const SimulationOptions& options, const Band& band, int binning, const QString& strProbes)
{
    using namespace ClickKeys;
    CPLSection section(QString::fromLatin1(kLuminescentImage));
    set(section, kExcitationFilter, filterText(band.filters.excitation));
    set(section, kEmissionFilter, filterText(band.filters.emission));
    set(section, kExposureTime, band.exposureSeconds);
    set(section, kBinning, QString::number(binning));
    set(section, kFNumber, CameraFigures::kFNumber);
    set(section, kReadBiasLevel, options.noise ? options.offset : 0.0);
    set(section, kAcquisitionDate, QLocale::c().toString(band.start, QStringLiteral("yyyy-MM-dd")));
    set(section, kAcquisitionTime, QLocale::c().toString(band.start, QStringLiteral("HH:mm:ss.zzz")));
    set(section, kProbe, strProbes);
    set(section, kSubjectType, options.subject);
    if (isFluorescent(options.kind)) {
        set(section, kExcitationIrradiance, band.irradiance);
    }
    if (options.kind == SimulationKind::Epi || options.kind == SimulationKind::Temporal) {
        set(section, kReferenceRadiance, band.referenceRadiance);
    }
    if (options.kind == SimulationKind::Transillumination) {
        set(section, kFLXSpot, band.spotX);
        set(section, kFLYSpot, band.spotY);
    }
    if (options.kind == SimulationKind::Cherenkov) {
        QString isotope;
        CORVDatabase::isCherenkovIsotope(options.isotope, &isotope);
        set(section, kIsotope, isotope);
    }
    return section;
}

} // namespace

double CameraFigures::quantumEfficiency(double nm)
{
    static const SpectralCurve curve({400, 450, 500, 550, 600, 650, 700, 750, 800, 850, 900, 950, 1000},
                                     {0.60, 0.78, 0.88, 0.93, 0.94, 0.93, 0.90, 0.83, 0.73, 0.58, 0.40, 0.24, 0.10},
                                     SpectralCurve::Beyond::Hold);
    return curve.at(nm);
}

double CameraFigures::irradiance(double nm)
{
    static const SpectralCurve curve({400, 450, 500, 550, 600, 650, 700, 750, 800}, {8, 15, 25, 34, 40, 42, 40, 36, 30},
                                     SpectralCurve::Beyond::Hold);
    return curve.at(nm);
}

QString exactText(double value)
{
    return QString::number(value, 'g', 17);
}

QList<Band> planBands(const SimulationOptions& options, const QList<FilterPair>& pairs, const QString& strPrefix,
                      const QList<ScanSpot>& spots)
{
    const QDateTime begin(QDate(2024, 3, 5), QTime(9, 30), Qt::UTC); // fixed: the same options give the same bytes
    const bool temporal = options.kind == SimulationKind::Temporal;
    const int each = temporal ? timesOf(options).size() : pairs.size();
    QList<Band> bands;
    for (int i = 0; i < each * std::max(1, spots.size()); ++i) {
        Band band;
        light(options, pairs.at(temporal ? 0 : i % each), band);
        band.exposureSeconds = bandExposureSeconds(options, i % each);
        band.binning = options.mixedBinning && i < kMixedBands ? 2 * options.binning : options.binning;
        band.clickNumber = strPrefix + QStringLiteral("_%1").arg(i + 1, 3, 10, QLatin1Char('0'));
        band.timeSeconds = startOf(options, i, bands);
        band.start = begin.addMSecs(milliseconds(band.timeSeconds));
        if (temporal) {
            setTime(options, i, band);
        }
        if (!spots.isEmpty()) {
            band.spotX = spots.at(i / each).xText();
            band.spotY = spots.at(i / each).yText();
        }
        bands.append(band);
    }
    if (options.kind == SimulationKind::Cherenkov) {
        setDecay(options, bands);
    }
    return bands;
}

CPLClickInfo describeBand(const SimulationOptions& options, const Band& band, int binning, const QString& strProbes)
{
    CPLClickInfo info;
    CPLSection click(QString::fromLatin1(ClickKeys::kClickNumber));
    set(click, ClickKeys::kClickNumber, band.clickNumber);
    if (!band.kyvoTime.isEmpty()) {
        set(click, ClickKeys::kKyVoTime, band.kyvoTime);
        set(click, ClickKeys::kKyVoInterval, band.kyvoInterval);
    }
    info.addSection(&click);
    const CPLSection luminescent = luminescentSection(options, band, binning, strProbes);
    info.addSection(&luminescent);
    CPLSection camera(QString::fromLatin1(ClickKeys::kCameraSystemInfo));
    set(camera, ClickKeys::kPhotonsPerCount, band.photonsPerCount);
    if (options.noise) {
        set(camera, ClickKeys::kElectronsPerCount, options.gain);
        set(camera, ClickKeys::kReadNoise, options.readNoise);
    }
    set(camera, ClickKeys::kPixelSize, MouseShape::kFieldOfView / options.size / options.binning);
    set(camera, ClickKeys::kLensSolidAngle, CameraFigures::kLensSolidAngle);
    info.addSection(&camera);
    return info;
}

double unitOfCount(const SimulationOptions& options, const Band& band, tag_edisplayunit eUnit)
{
    if (eUnit == DISPLAYUNIT_COUNTS) {
        return 1.0;
    }
    if (eUnit != DISPLAYUNIT_RADIANCE && !isFluorescent(options.kind)) {
        return 0.0;
    }
    double factor = 0.0;
    const CPLClickInfo info = describeBand(options, band, options.binning, QString());
    if (!radianceOfCount(info, IMAGETYPE_MAIN_DATA, std::nullopt, &factor, nullptr)) {
        return 0.0;
    }
    if (eUnit == DISPLAYUNIT_RADIANT_EFFICIENCY) {
        factor /= band.irradiance;
    }
    if (eUnit == DISPLAYUNIT_EFFICIENCY) {
        factor /= band.referenceRadiance;
    }
    return factor;
}

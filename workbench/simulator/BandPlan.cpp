// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/BandPlan.h"

#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ImageCalibration.h"
#include "workbench/simulator/MouseShape.h"
#include "workbench/simulator/SimulationOptions.h"
#include "workbench/simulator/SpectralCurve.h"

#include <optional>

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kJoulesPerPhotonTimesNm = 1.98644586e-16; // h c, with the wavelength in nm
constexpr int kReadOutMilliseconds = 5000;
constexpr int kMixedBands = 2;

// Lambert: a white diffuser sends back all photons, over pi sr.
double whiteRadiance(double irradiance, double nm)
{
    return irradiance * 1e-6 / (kJoulesPerPhotonTimesNm / nm) / kPi;
}

QString filterText(int nm)
{
    return QString::number(nm) + QStringLiteral("nm");
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
    set(section, kAcquisitionDate, band.start.toString(QStringLiteral("yyyy-MM-dd")));
    set(section, kAcquisitionTime, band.start.toString(QStringLiteral("HH:mm:ss.zzz")));
    set(section, kProbe, strProbes);
    set(section, kSubjectType, options.subject);
    set(section, kExcitationIrradiance, band.irradiance);
    set(section, kReferenceRadiance, band.referenceRadiance);
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

QList<Band> planBands(const SimulationOptions& options, const QList<FilterPair>& pairs, const QString& strPrefix)
{
    QList<Band> bands;
    QDateTime start(QDate(2024, 3, 5), QTime(9, 30), Qt::UTC); // fixed, so that the same options give the same bytes
    for (int i = 0; i < pairs.size(); ++i) {
        Band band;
        band.filters = pairs.at(i);
        band.exposureSeconds = bandExposureSeconds(options, i);
        band.irradiance = CameraFigures::irradiance(band.filters.excitation);
        band.referenceRadiance = whiteRadiance(band.irradiance, band.filters.excitation);
        band.photonsPerCount =
            options.gain / (CameraFigures::quantumEfficiency(band.filters.emission) * CameraFigures::kTransmission);
        band.binning = options.mixedBinning && i < kMixedBands ? 2 * options.binning : options.binning;
        band.clickNumber = QStringLiteral("%1_%2").arg(strPrefix).arg(i + 1, 3, 10, QLatin1Char('0'));
        band.start = start;
        bands.append(band);
        start = start.addMSecs(kReadOutMilliseconds + qRound64(1000.0 * band.exposureSeconds));
    }
    return bands;
}

CPLClickInfo describeBand(const SimulationOptions& options, const Band& band, int binning, const QString& strProbes)
{
    CPLClickInfo info;
    CPLSection click(QString::fromLatin1(ClickKeys::kClickNumber));
    set(click, ClickKeys::kClickNumber, band.clickNumber);
    info.addSection(&click);
    const CPLSection luminescent = luminescentSection(options, band, binning, strProbes);
    info.addSection(&luminescent);
    CPLSection camera(QString::fromLatin1(ClickKeys::kCameraSystemInfo));
    set(camera, ClickKeys::kPhotonsPerCount, band.photonsPerCount);
    set(camera, ClickKeys::kPixelSize, MouseShape::kFieldOfView / options.size / options.binning);
    set(camera, ClickKeys::kLensSolidAngle, CameraFigures::kLensSolidAngle);
    info.addSection(&camera);
    return info;
}

double unitOfCount(const SimulationOptions& options, const Band& band, tag_edisplayunit eUnit)
{
    if (eUnit == DISPLAYUNIT_COUNTS)
        return 1.0;
    double factor = 0.0;
    const CPLClickInfo info = describeBand(options, band, options.binning, QString());
    if (!radianceOfCount(info, IMAGETYPE_MAIN_DATA, std::nullopt, &factor, nullptr))
        return 0.0;
    if (eUnit == DISPLAYUNIT_RADIANT_EFFICIENCY)
        factor /= band.irradiance;
    if (eUnit == DISPLAYUNIT_EFFICIENCY)
        factor /= band.referenceRadiance;
    return factor;
}

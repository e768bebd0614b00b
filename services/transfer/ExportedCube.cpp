// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/transfer/ExportedCube.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/keySelection.h"
#include "host/CILImage.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ChannelInfo.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvapi/imagePadding.h"
#include "services/basis/Failure.h"
#include "services/basis/JobMonitor.h"
#include "services/basis/UnitNames.h"
#include "services/session/PairSelection.h"
#include "services/session/UnitForecast.h"

#include <QDateTime>
#include <QHash>
#include <QLocale>
#include <QRegularExpression>
#include <QSize>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr double micrometresPerCentimetre = 1e4;

// As the engine reads a filter's text.
std::optional<double> wavelengthOf(QString strFilter)
{
    return wavelengthDigits(strFilter) ? std::optional<double>(strFilter.toDouble()) : std::nullopt;
}

// The names with numbers behind those that come again, so that no two are the same.
void numberRepeated(QStringList& names)
{
    QHash<QString, int> seen;
    for (QString& name : names) {
        const int number = ++seen[name];
        if (number > 1) {
            name += QStringLiteral("_no%1").arg(number);
        }
    }
}

// Without an exponent, which a name could not be read with.
QString plainNumber(double dValue)
{
    return QString::number(dValue, 'f', QLocale::FloatingPointShortest);
}

std::optional<double> clickFigure(const CORVDataset& dataset, const char* pSection, const char* pKey)
{
    return clickNumberValue(dataset.clickInfo, {QString::fromLatin1(pSection)}, pKey);
}

QString temporalName(const CORVDataset& dataset, double dTime)
{
    static const QRegularExpression digits(QStringLiteral(R"(\d+)"));
    const QString text = clickText(dataset.clickInfo, ClickKeys::kClickNumber, ClickKeys::kKyVoInterval);
    const int interval = digits.match(text).captured().toInt();
    // A dash alone could stand between two parts of the name.
    const QString time =
        QStringLiteral("t%1%2s").arg(dTime < 0.0 ? QStringLiteral("=") : QString(), plainNumber(dTime));
    return interval > 1 ? QStringLiteral("int%1_%2").arg(interval).arg(time) : time;
}

QStringList wavelengthNames(const ExportedCube::Image& image)
{
    QStringList parts;
    if (image.excitation) {
        parts.append(QStringLiteral("ex") + plainNumber(*image.excitation));
    }
    if (image.emission) {
        parts.append(QStringLiteral("em") + plainNumber(*image.emission));
    }
    return parts;
}

QString spectralName(const CORVDataset& dataset, const ExportedCube::Image& image)
{
    if (image.numbered) {
        return ChannelInfo::of(dataset.clickInfo)->label(ChannelInfo::numberOf(dataset.getEmissionFilter()));
    }
    QStringList parts = wavelengthNames(image);
    if (parts.isEmpty()) {
        return image.click.simplified();
    }
    const QString x = dataset.getFLXspot().simplified();
    const QString y = dataset.getFLYspot().simplified();
    if (!x.isEmpty() && !y.isEmpty()) {
        parts.append(QStringLiteral("spot x%1 y%2").arg(x, y));
    }
    return parts.join(QLatin1Char('_'));
}

} // namespace

ExportedCube::ExportedCube(const QString& strSequence, const QString& strSelect, int nUnit, JobMonitor& monitor)
    : m_monitor(monitor), m_opened(strSequence)
{
    m_monitor.warnAll(m_opened.warnings());
    m_bTemporal = m_opened.sequence().isKyvoSequence();
    for (auto* dataset : selected(strSelect)) {
        describe(*dataset);
    }
    if (m_images.isEmpty()) {
        throw Failure(QStringLiteral("%1 holds no image").arg(strSequence));
    }
    settleTimes();
    checkSizes();
    cropToExtent();
    chooseUnit(nUnit);
}

QString ExportedCube::name()
{
    return m_opened.sequence().getSequenceName();
}

bool ExportedCube::isNumbered() const
{
    return std::all_of(m_images.cbegin(), m_images.cend(), [](const Image& image) { return image.numbered; });
}

QList<CORVDataset*> ExportedCube::selected(const QString& strSelect)
{
    QList<CORVDataset*> datasets;
    for (auto* dataset : m_opened.sequence().getDatasets()) {
        if (dataset->hasLuminescentImage) {
            datasets.append(dataset);
        }
    }
    if (strSelect.isEmpty()) {
        return datasets;
    }
    if (!m_opened.canBeAnalysed()) {
        throw Failure(
            QStringLiteral("--select: the images have no keys to select by: %1").arg(m_opened.reasonAgainst()));
    }
    const auto& engine = m_opened.engine();
    QList<CORVDataset*> chosen;
    for (const auto& pair : selectPairs(strSelect, engine.getAllKeyPairs())) {
        for (auto* dataset : datasets) {
            const ImageRecord record = engine.m_imageRecords.value(dataset->getClickNumber());
            const KeyPair own =
                m_bTemporal ? KeyPair{record.interval, record.time} : KeyPair{record.excitation, record.emission};
            if (own == pair) {
                chosen.append(dataset);
            }
        }
    }
    return chosen;
}

void ExportedCube::describe(CORVDataset& dataset)
{
    Image image;
    image.click = dataset.getClickNumber();
    image.time = m_bTemporal ? clickFigure(dataset, ClickKeys::kClickNumber, ClickKeys::kKyVoTime) : std::nullopt;
    const std::optional<ChannelInfo> channel = m_bTemporal ? std::nullopt : ChannelInfo::of(dataset.clickInfo);
    if (channel) {
        image.numbered = true;
        image.wavelength = channel->wavelength;
        image.wavenumber = channel->wavenumber;
    } else {
        image.excitation = wavelengthOf(dataset.getExcitationFilter());
        image.emission = wavelengthOf(dataset.getEmissionFilter());
    }
    double seconds = 0.0;
    if (dataset.getExposureTime(&seconds)) {
        image.exposure = seconds;
    }
    if (dataset.getExposureStart(&seconds)) {
        image.start = QLocale::c().toString(QDateTime::fromMSecsSinceEpoch(std::llround(seconds * 1000.0), Qt::UTC),
                                            QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz"));
    }
    const QString isotope = clickText(dataset.clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kIsotope);
    m_strIsotope = m_images.isEmpty() || m_strIsotope == isotope ? isotope : QString();
    m_images.append(image);
}

// Names the images. Where a temporal sequence does not tell its times they follow from the starts of the exposures;
// without those the images are numbered.
void ExportedCube::settleTimes()
{
    const auto all = [this](auto&& test) { return std::all_of(m_images.cbegin(), m_images.cend(), test); };
    const bool timed = all([](const Image& image) { return image.time.has_value(); });
    const bool started = all([](const Image& image) { return !image.start.isEmpty(); });
    const auto instant = [](const Image& image) {
        return QDateTime::fromString(image.start + QLatin1Char('Z'), Qt::ISODateWithMs).toMSecsSinceEpoch();
    };
    qint64 first = std::numeric_limits<qint64>::max();
    for (const Image& image : m_images) {
        first = std::min(first, started ? instant(image) : first);
    }
    const bool filtered = all([this](const Image& image) {
        return image.excitation == m_images.first().excitation && image.emission == m_images.first().emission;
    });
    for (int i = 0; i < m_images.size(); ++i) {
        Image& image = m_images[i];
        if (m_bTemporal && !filtered) {
            image.excitation.reset();
            image.emission.reset();
        }
        const CORVDataset& dataset = *m_opened.sequence().getDataset(image.click);
        if (m_bTemporal && !timed) {
            image.time =
                started ? std::optional<double>(static_cast<double>(instant(image) - first) / 1000.0) : std::nullopt;
        }
        const QString instantName = image.time ? temporalName(dataset, *image.time) : QStringLiteral("frame%1").arg(i);
        image.fullName =
            m_bTemporal ? (wavelengthNames(image) << instantName).join(QLatin1Char('_')) : spectralName(dataset, image);
        image.name = m_bTemporal && m_images.size() == 1 ? instantName : image.fullName;
    }
    QStringList names;
    QStringList fullNames;
    for (const Image& image : m_images) {
        names.append(image.name);
        fullNames.append(image.fullName);
    }
    numberRepeated(names);
    numberRepeated(fullNames);
    for (int i = 0; i < m_images.size(); ++i) {
        m_images[i].name = names[i];
        m_images[i].fullName = fullNames[i];
    }
    if (m_bTemporal && !timed) {
        m_monitor.warn(started ? QStringLiteral("the images do not tell their times; the starts of their exposures do")
                               : QStringLiteral("the images do not tell their times and are numbered"));
    }
}

// Where an import made squares of all images alike.
void ExportedCube::cropToExtent()
{
    const auto extent = extentBeforePadding(*m_opened.sequence().getDataset(m_images.first().click));
    m_lStoredWidth = m_lWidth;
    m_lStoredHeight = m_lHeight;
    for (const Image& image : m_images) {
        if (!extent || extentBeforePadding(*m_opened.sequence().getDataset(image.click)) != extent) {
            return;
        }
    }
    if (extent->width() < 1 || extent->height() < 1 || extent->width() > m_lWidth || extent->height() > m_lHeight) {
        return;
    }
    m_lWidth = extent->width();
    m_lHeight = extent->height();
}

void ExportedCube::checkSizes()
{
    float binning = 0.0F;
    bool sameSize = true;
    for (const auto& image : m_images) {
        CORVDataset& dataset = *m_opened.sequence().getDataset(image.click);
        long width = 0;
        long height = 0;
        if (!dataset.getImageSize(IMAGETYPE_MAIN_DATA, &width, &height)) {
            throw Failure(QStringLiteral("image %1: its size cannot be read").arg(image.click));
        }
        const float own = dataset.getBinningForImage(IMAGETYPE_MAIN_DATA);
        const auto size = clickFigure(dataset, ClickKeys::kCameraSystemInfo, ClickKeys::kPixelSize);
        const auto micrometres =
            size && *size > 0.0 ? std::optional<double>(*size * micrometresPerCentimetre * static_cast<double>(own))
                                : std::nullopt;
        if (m_lWidth == 0) {
            m_lWidth = width;
            m_lHeight = height;
            binning = own;
            m_pixelSize = micrometres;
        }
        sameSize = sameSize && micrometres == m_pixelSize;
        if (width != m_lWidth || height != m_lHeight || own < binning || own > binning) {
            throw Failure(QStringLiteral("image %1 has %2 x %3 pixels at binning %4 where %5 has %6 x %7 at binning "
                                         "%8; --select images of one size")
                              .arg(image.name, QString::number(width), QString::number(height),
                                   QString::number(static_cast<double>(own)), m_images.first().name,
                                   QString::number(m_lWidth), QString::number(m_lHeight),
                                   QString::number(static_cast<double>(binning))));
        }
    }
    if (!sameSize) {
        m_pixelSize.reset();
    }
}

void ExportedCube::chooseUnit(int nUnit)
{
    m_unitLimit.set(nUnit);
    QStringList clicks;
    for (const auto& image : m_images) {
        clicks.append(image.click);
    }
    const UnitForecast forecast = forecastUnit(m_opened.sequence(), clicks);
    const QString why = forecast.refusals.join(QStringLiteral("; "));
    if (forecast.unit < 0) {
        throw Failure(QStringLiteral("the images can be had in no unit: %1").arg(why));
    }
    if (nUnit >= 0 && forecast.unit != nUnit) {
        throw Failure(QStringLiteral("the unit %1 cannot be reached; the images would be in %2%3")
                          .arg(UnitNames::options()[nUnit], UnitNames::options()[forecast.unit],
                               why.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(why)));
    }
    m_nUnit = forecast.unit;
}

void ExportedCube::read(int i, CILImage& out)
{
    m_monitor.stopIfRequested();
    const Image& image = m_images.at(i);
    m_monitor.showProgress(QStringLiteral("Exporting %1").arg(image.name), static_cast<double>(i) / count());
    CORVDataset* dataset = m_opened.sequence().getDataset(image.click);
    if (dataset->getCalibratedLuminImage(static_cast<tag_edisplayunit>(m_nUnit), &out, QStringLiteral("spum export")) !=
        ESTATUS_SUCCESS) {
        throw Failure(QStringLiteral("image %1 (%2) cannot be read").arg(image.name, image.click));
    }
    if (out.m_lWidth != m_lStoredWidth || out.m_lHeight != m_lStoredHeight || out.dataType() != ORVTYPE_FLOAT) {
        throw Failure(QStringLiteral("image %1 (%2) has changed while it was read").arg(image.name, image.click));
    }
    if (m_lWidth != m_lStoredWidth || m_lHeight != m_lStoredHeight) {
        out = croppedImage(out, m_lWidth, m_lHeight);
    }
}

void ExportedCube::showWriting(double dFraction)
{
    m_monitor.stopIfRequested();
    m_monitor.showProgress(QStringLiteral("Writing"), dFraction);
}

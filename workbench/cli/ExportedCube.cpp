// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/cli/ExportedCube.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CILImage.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "workbench/cli/CliFailure.h"
#include "workbench/cli/CliProgress.h"
#include "workbench/cli/CliSession.h"
#include "workbench/cli/PairSelection.h"
#include "workbench/cli/UnitForecast.h"
#include "workbench/cli/UnitNames.h"

#include <QLocale>
#include <QRegularExpression>

namespace {

constexpr double micrometresPerCentimetre = 1e4;

// The three digits that a filter's text names, as the engine reads it.
std::optional<double> wavelengthOf(const QString& strFilter)
{
    static const QRegularExpression digits(QStringLiteral(R"((?<!\d)[1-9]\d\d(?!\d))"));
    const auto match = digits.match(strFilter);
    return match.hasMatch() ? std::optional<double>(match.captured().toDouble()) : std::nullopt;
}

QString shortest(double dValue)
{
    return QString::number(dValue, 'g', QLocale::FloatingPointShortest);
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
    const QString time = QStringLiteral("t%1s").arg(shortest(dTime));
    return interval > 1 ? QStringLiteral("int%1_%2").arg(interval).arg(time) : time;
}

QString spectralName(const CORVDataset& dataset, const ExportedCube::Image& image)
{
    QStringList parts;
    if (image.excitation)
        parts.append(QStringLiteral("ex") + shortest(*image.excitation));
    if (image.emission)
        parts.append(QStringLiteral("em") + shortest(*image.emission));
    if (parts.isEmpty())
        return image.click.simplified();
    const QString x = dataset.getFLXspot().simplified();
    const QString y = dataset.getFLYspot().simplified();
    if (!x.isEmpty() && !y.isEmpty())
        parts.append(QStringLiteral("spot x%1 y%2").arg(x, y));
    return parts.join(QLatin1Char('_'));
}

} // namespace

ExportedCube::ExportedCube(const QString& strSequence, const QString& strSelect, int nUnit, CliSession& session)
    : m_session(session), m_opened(strSequence)
{
    m_session.warnAll(m_opened.warnings());
    m_bTemporal = m_opened.sequence().isKyvoSequence();
    for (auto* dataset : selected(strSelect))
        describe(*dataset);
    if (m_images.isEmpty())
        throw CliFailure(QStringLiteral("%1 holds no image").arg(strSequence));
    checkSizes();
    chooseUnit(nUnit);
}

ExportedCube::~ExportedCube()
{
    CORVDataset::setUnitLimit(DISPLAYUNIT_EFFICIENCY);
}

QString ExportedCube::name()
{
    return m_opened.sequence().getSequenceName();
}

QList<CORVDataset*> ExportedCube::selected(const QString& strSelect)
{
    QList<CORVDataset*> datasets;
    for (auto* dataset : m_opened.sequence().getDatasets())
        if (dataset->hasLuminescentImage)
            datasets.append(dataset);
    if (strSelect.isEmpty())
        return datasets;
    if (!m_opened.canBeAnalysed())
        throw CliFailure(
            QStringLiteral("--select: the images have no keys to select by: %1").arg(m_opened.reasonAgainst()));
    const auto& engine = m_opened.engine();
    QList<CORVDataset*> chosen;
    for (const auto& pair : selectPairs(strSelect, engine.getAllKeyPairs()))
        for (auto* dataset : datasets) {
            const ImageRecord record = engine.m_imageRecords.value(dataset->getClickNumber());
            const KeyPair own =
                m_bTemporal ? KeyPair{record.interval, record.time} : KeyPair{record.excitation, record.emission};
            if (own == pair)
                chosen.append(dataset);
        }
    return chosen;
}

void ExportedCube::describe(CORVDataset& dataset)
{
    Image image;
    image.click = dataset.getClickNumber();
    image.time = m_bTemporal ? clickFigure(dataset, ClickKeys::kClickNumber, ClickKeys::kKyVoTime) : std::nullopt;
    if (!m_bTemporal) {
        image.excitation = wavelengthOf(dataset.getExcitationFilter());
        image.emission = wavelengthOf(dataset.getEmissionFilter());
    }
    double seconds = 0.0;
    if (dataset.getExposureTime(&seconds))
        image.exposure = seconds;
    image.name = image.time ? temporalName(dataset, *image.time) : spectralName(dataset, image);
    m_images.append(image);
}

void ExportedCube::checkSizes()
{
    float binning = 0.0F;
    bool sameSize = true;
    for (const auto& image : m_images) {
        CORVDataset& dataset = *m_opened.sequence().getDataset(image.click);
        long width = 0;
        long height = 0;
        if (!dataset.getImageSize(IMAGETYPE_MAIN_DATA, &width, &height))
            throw CliFailure(QStringLiteral("image %1: its size cannot be read").arg(image.click));
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
        if (width != m_lWidth || height != m_lHeight || own < binning || own > binning)
            throw CliFailure(QStringLiteral("image %1 has %2 x %3 pixels at binning %4 where %5 has %6 x %7 at binning "
                                            "%8; --select images of one size")
                                 .arg(image.name)
                                 .arg(width)
                                 .arg(height)
                                 .arg(static_cast<double>(own))
                                 .arg(m_images.first().name)
                                 .arg(m_lWidth)
                                 .arg(m_lHeight)
                                 .arg(static_cast<double>(binning)));
    }
    if (!sameSize)
        m_pixelSize.reset();
}

void ExportedCube::chooseUnit(int nUnit)
{
    if (nUnit >= 0)
        CORVDataset::setUnitLimit(static_cast<tag_edisplayunit>(nUnit));
    QStringList clicks;
    for (const auto& image : m_images)
        clicks.append(image.click);
    const UnitForecast forecast = forecastUnit(m_opened.sequence(), clicks);
    const QString why = forecast.refusals.join(QStringLiteral("; "));
    if (forecast.unit < 0)
        throw CliFailure(QStringLiteral("the images can be had in no unit: %1").arg(why));
    if (nUnit >= 0 && forecast.unit != nUnit)
        throw CliFailure(QStringLiteral("the unit %1 cannot be reached; the images would be in %2%3")
                             .arg(UnitNames::options()[nUnit], UnitNames::options()[forecast.unit],
                                  why.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(why)));
    m_nUnit = forecast.unit;
}

void ExportedCube::read(int i, CILImage& out)
{
    CliSession::stopIfInterrupted();
    const Image& image = m_images.at(i);
    m_session.progress().show(QStringLiteral("Exporting %1").arg(image.name), static_cast<double>(i) / count());
    CORVDataset* dataset = m_opened.sequence().getDataset(image.click);
    if (dataset->getCalibratedLuminImage(static_cast<tag_edisplayunit>(m_nUnit), &out, QStringLiteral("spum export")) !=
        ESTATUS_SUCCESS)
        throw CliFailure(QStringLiteral("image %1 (%2) cannot be read").arg(image.name, image.click));
    if (out.m_lWidth != m_lWidth || out.m_lHeight != m_lHeight || out.dataType() != ORVTYPE_FLOAT)
        throw CliFailure(QStringLiteral("image %1 (%2) has changed while it was read").arg(image.name, image.click));
}

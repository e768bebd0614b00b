// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/ImageKeys.h"

#include "platform/orvapi/ChannelInfo.h"
#include "platform/orvutils/NumberText.h"

#include <QHash>

#include <cmath>

namespace {

// Filter texts hold wavelengths of three digits.
constexpr double minWavelength = 100;
constexpr double maxWavelength = 999;
// Whole seconds beyond this are not told apart in single precision, in which times are read.
constexpr double maxTime = 16777216;

bool filterText(const char* what, double wavelength, QString& text, QString* pReason)
{
    *pReason = reasonAgainstWavelength(QLatin1String(what), wavelength);
    if (!pReason->isEmpty()) {
        return false;
    }
    text = QStringLiteral("%1nm").arg(static_cast<int>(std::round(wavelength)));
    return true;
}

} // namespace

QString reasonAgainstWavelength(const QString& strWhat, double dNanometres)
{
    const double rounded = std::round(dNanometres);
    return rounded >= minWavelength && rounded <= maxWavelength
               ? QString()
               : QStringLiteral("the %1 %2 nm is not within 100 to 999 nm")
                     .arg(strWhat, orv::shortestText(dNanometres));
}

QString reasonAgainstTime(double dSeconds)
{
    return std::abs(dSeconds) < maxTime
               ? QString()
               : QStringLiteral("the time %1 s is not within 16777216 s").arg(orv::shortestText(dSeconds));
}

int wholeSecond(const QString& strTime)
{
    return static_cast<int>(strTime.toFloat());
}

bool ImageKeys::make(const ImagesTable& table, const ImageStack& stack, QString* pError)
{
    *this = ImageKeys();
    bool bEmissions = false;
    for (const ImageRow& row : table.rows()) {
        bEmissions = bEmissions || row.emission.has_value();
        temporal = temporal || row.time.has_value();
        fluorescence = fluorescence || row.excitation.has_value();
        transillumination = transillumination || !row.spotX.isEmpty() || !row.spotY.isEmpty();
    }
    numbered = table.hasChannels() && !bEmissions && !temporal && !fluorescence && !transillumination;
    if (numbered) {
        return number(table, pError);
    }
    for (int i = 0; i < table.rows().size(); ++i) {
        const ImageRow& row = table.rows().at(i);
        QString reason;
        const std::optional<double> emission = row.emission ? row.emission : stack.wavelength(i);
        if (transillumination && !checkSpot(row, &reason)) {
            *pError = QStringLiteral("%1: %2: %3").arg(table.place(row), stack.name(i), reason);
            return false;
        }
        if (!(temporal ? addTemporal(row, &reason) : addSpectral(row, emission, bEmissions, &reason))) {
            *pError = QStringLiteral("%1: %2: %3").arg(table.place(row), stack.name(i), reason);
            return false;
        }
    }
    return refuseDuplicates(table, stack, pError);
}

bool ImageKeys::number(const ImagesTable& table, QString* pError)
{
    if (table.rows().size() > ChannelInfo::kMost) {
        *pError =
            QStringLiteral("%1: %2 channels are more than the %3 that can be numbered; leave rows out of the table")
                .arg(table.place(table.rows().at(ChannelInfo::kMost)), QString::number(table.rows().size()),
                     QString::number(ChannelInfo::kMost));
        return false;
    }
    for (int i = 0; i < table.rows().size(); ++i) {
        ImageKey key;
        key.excitation = QStringLiteral("Block");
        key.emission = ChannelInfo::filterText(i + 1);
        images.append(key);
    }
    return true;
}

bool ImageKeys::checkSpot(const ImageRow& row, QString* pReason) const
{
    if (temporal || !fluorescence) {
        *pReason = QStringLiteral("a scan spot is given without an excitation");
    } else if (row.spotX.isEmpty() || row.spotY.isEmpty()) {
        *pReason = QStringLiteral("the scan spot is missing, which other rows have");
    }
    return pReason->isEmpty();
}

bool ImageKeys::addTemporal(const ImageRow& row, QString* pReason)
{
    if (!row.time) {
        *pReason = QStringLiteral("the time is missing, which other rows have");
        return false;
    }
    *pReason = reasonAgainstTime(*row.time);
    if (!pReason->isEmpty()) {
        return false;
    }
    ImageKey key;
    key.interval = QString::number(row.interval.value_or(1));
    key.time = orv::shortestText(*row.time);
    if ((row.excitation && !filterText("excitation", *row.excitation, key.excitation, pReason)) ||
        (row.emission && !filterText("emission", *row.emission, key.emission, pReason))) {
        return false;
    }
    if (!images.isEmpty() && (key.excitation != images.first().excitation || key.emission != images.first().emission)) {
        *pReason =
            QStringLiteral("the wavelengths are not those of the first row, and a sequence is either spectral or "
                           "temporal");
        return false;
    }
    images.append(key);
    return true;
}

bool ImageKeys::addSpectral(const ImageRow& row, std::optional<double> emission, bool bEmissions, QString* pReason)
{
    if (row.interval) {
        *pReason = QStringLiteral("an interval is given without a time");
        return false;
    }
    if (fluorescence && !row.excitation) {
        *pReason = QStringLiteral("the excitation is missing, which other rows have");
        return false;
    }
    if (!row.excitation && !emission) {
        *pReason = QStringLiteral("neither excitation nor emission is given");
        return false;
    }
    if (bEmissions && !emission) {
        *pReason = QStringLiteral("the emission is missing, which other rows have");
        return false;
    }
    ImageKey key;
    key.excitation = QStringLiteral("Block");
    key.emission = QStringLiteral("Open");
    key.spotX = row.spotX;
    key.spotY = row.spotY;
    if ((row.excitation && !filterText("excitation", *row.excitation, key.excitation, pReason)) ||
        (emission && !filterText("emission", *emission, key.emission, pReason))) {
        return false;
    }
    images.append(key);
    return true;
}

bool ImageKeys::refuseDuplicates(const ImagesTable& table, const ImageStack& stack, QString* pError) const
{
    QHash<QString, int> first;
    for (int i = 0; i < images.size(); ++i) {
        const ImageKey& key = images.at(i);
        QString text = temporal ? QStringLiteral("second %1").arg(wholeSecond(key.time))
                                : QStringLiteral("excitation %1 and emission %2").arg(key.excitation, key.emission);
        text += transillumination ? QStringLiteral(" at the spot %1, %2").arg(key.spotX, key.spotY) : QString();
        if (first.contains(text)) {
            const int other = first.value(text);
            *pError = QStringLiteral("%1: %2 shares %3 with %4 (line %5)")
                          .arg(table.place(table.rows().at(i)), stack.name(i), text, stack.name(other),
                               QString::number(table.rows().at(other).line));
            return false;
        }
        first.insert(text, i);
    }
    return true;
}

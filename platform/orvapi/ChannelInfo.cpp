// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/ChannelInfo.h"

#include "host/CPLClickInfo.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvutils/NumberText.h"

#include <QRegularExpression>

namespace {

std::optional<double> positiveValue(const CPLClickInfo& info, const char* pKey)
{
    const std::optional<double> value =
        clickNumberValue(info, {QString::fromLatin1(ClickKeys::kLuminescentImage)}, pKey);
    return value && *value > 0.0 ? value : std::nullopt;
}

} // namespace

QString ChannelInfo::keyText(int nNumber)
{
    constexpr int digits = 3;
    return QStringLiteral("%1").arg(nNumber, digits, 10, QLatin1Char('0'));
}

QString ChannelInfo::filterText(int nNumber)
{
    return QStringLiteral("Channel ") + keyText(nNumber);
}

int ChannelInfo::numberOf(const QString& strFilter)
{
    static const QRegularExpression channel(QStringLiteral("^Channel ([0-9]{3})$"));
    return channel.match(strFilter.trimmed()).captured(1).toInt(); // 0 for none
}

std::optional<ChannelInfo> ChannelInfo::of(const CPLClickInfo& info)
{
    if (numberOf(clickText(info, ClickKeys::kLuminescentImage, ClickKeys::kEmissionFilter)) == 0) {
        return std::nullopt;
    }
    ChannelInfo channel;
    channel.name = clickText(info, ClickKeys::kLuminescentImage, ClickKeys::kChannelName);
    channel.wavelength = positiveValue(info, ClickKeys::kChannelWavelength);
    channel.wavenumber = positiveValue(info, ClickKeys::kChannelWavenumber);
    return channel;
}

void ChannelInfo::write(CPLSection& section) const
{
    if (!name.isEmpty()) {
        section.setValue(QString::fromLatin1(ClickKeys::kChannelName), name);
    }
    if (wavelength) {
        section.setValue(QString::fromLatin1(ClickKeys::kChannelWavelength), orv::shortestText(*wavelength));
    }
    if (wavenumber) {
        section.setValue(QString::fromLatin1(ClickKeys::kChannelWavenumber), orv::shortestText(*wavenumber));
    }
}

QString ChannelInfo::label(int nNumber) const
{
    const QString place = placeText();
    return !name.isEmpty() ? name : !place.isEmpty() ? place : QStringLiteral("channel %1").arg(nNumber);
}

QString ChannelInfo::placeText() const
{
    return wavelength   ? QStringLiteral("%1 nm").arg(orv::shortestText(*wavelength))
           : wavenumber ? QStringLiteral("%1 1/cm").arg(orv::shortestText(*wavenumber))
                        : QString();
}

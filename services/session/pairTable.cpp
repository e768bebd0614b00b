// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/pairTable.h"

#include "platform/orvapi/ChannelInfo.h"
#include "platform/orvutils/NumberText.h"
#include "services/basis/Failure.h"
#include "services/basis/TextTable.h"
#include "services/importer/CsvLine.h"
#include "services/session/spectraTableFields.h"
#include "spectra/DefaultColors.h"
#include "spectra/SpectrumPlotParams.h"

#include <QStringList>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

const QString channelName = QStringLiteral("channel");

QStringList leadingNames(bool bTime)
{
    return bTime ? QStringList{QStringLiteral("interval"), QStringLiteral("time")}
                 : QStringList{QStringLiteral("excitation"), QStringLiteral("emission")};
}

bool isChannelColumn(const QString& strName)
{
    return strName.compare(channelName, Qt::CaseInsensitive) == 0;
}

QStringList linesOf(const QByteArray& text)
{
    return decodedTable(text).split(QLatin1Char('\n'));
}

[[noreturn]] void refuseLine(const QString& strFile, int nLine, const QString& strReason)
{
    throw Failure(QStringLiteral("%1:%2: %3").arg(strFile, QString::number(nLine + 1), strReason));
}

QStringList fieldsOf(const QStringList& lines, int nLine, QChar separator, const QString& strFile)
{
    QStringList fields;
    QString reason;
    if (!splitCsvLine(lines[nLine], separator, &fields, &reason)) {
        refuseLine(strFile, nLine, reason);
    }
    return fields;
}

// Whether the first line has those names ahead of others, in any case.
bool beginsWith(const QByteArray& text, const QStringList& names, QChar separator = QLatin1Char(','))
{
    const int end = text.indexOf('\n');
    QStringList fields;
    QString reason;
    if (!splitCsvLine(linesOf(text.left(end < 0 ? text.size() : end)).first(), separator, &fields, &reason) ||
        fields.size() <= names.size()) {
        return false;
    }
    return std::equal(names.begin(), names.end(), fields.begin(), [](const QString& name, const QString& field) {
        return field.compare(name, Qt::CaseInsensitive) == 0;
    });
}

// Of a table of numbered channels; null for another one.
QChar channelSeparator(const QByteArray& text)
{
    for (const char separator : {',', ';', '\t'}) {
        if (beginsWith(text, leadingNames(false) + QStringList{channelName}, QLatin1Char(separator))) {
            return QLatin1Char(separator);
        }
    }
    return QChar();
}

// "007" for "7", which a program for tables makes of it.
QString keyOfChannel(const QString& strField)
{
    bool good = false;
    const int number = strField.toInt(&good);
    return good && number >= 1 && number <= ChannelInfo::kMost ? ChannelInfo::keyText(number) : strField;
}

} // namespace

QByteArray pairTableText(const QList<SpectrumPlotParams*>& spectra, bool bTime, const QStringList& channels)
{
    QStringList header = leadingNames(bTime);
    // A spectrum of that name would be read as names of channels.
    const bool bColumn = !bTime && (!channels.isEmpty() || isChannelColumn(spectra.first()->settings.name));
    header += bColumn ? QStringList{channelName} : QStringList();
    for (const SpectrumPlotParams* pSpectrum : spectra) {
        header.append(pSpectrum->settings.name);
    }
    TextTable table(header);
    const auto& points = spectra.first()->points;
    for (int i = 0; i < points.size(); ++i) {
        QStringList row = {points[i].first, points[i].second};
        row += bColumn ? QStringList{channels.value(i)} : QStringList();
        for (const SpectrumPlotParams* pSpectrum : spectra) {
            row.append(orv::shortestText(pSpectrum->points[i].value));
        }
        table.addRow(row);
    }
    return table.toCsv().toUtf8();
}

bool isPairTable(const QByteArray& text)
{
    return beginsWith(text, leadingNames(false)) || isTimeTable(text) || isChannelTable(text);
}

bool isTimeTable(const QByteArray& text)
{
    return beginsWith(text, leadingNames(true));
}

bool isChannelTable(const QByteArray& text)
{
    return !channelSeparator(text).isNull();
}

QList<SpectrumPlotParams*> readPairTable(const QByteArray& text, const QString& strFile)
{
    const QStringList lines = linesOf(text);
    const bool channels = isChannelTable(text);
    const QChar separator = channels ? channelSeparator(text) : QLatin1Char(',');
    const QStringList names = fieldsOf(lines, 0, separator, strFile);
    const int leadingColumns = channels ? 3 : 2;
    std::vector<std::unique_ptr<SpectrumPlotParams>> spectra;
    for (int i = leadingColumns; i < names.size(); ++i) {
        spectra.push_back(std::make_unique<SpectrumPlotParams>());
        spectra.back()->settings.name = names[i];
        spectra.back()->settings.index = i - leadingColumns;
        spectra.back()->settings.color = defaultSpectrumColor(i - leadingColumns);
    }
    for (int line = 1; line < lines.size(); ++line) {
        if (lines[line].trimmed().isEmpty()) {
            continue;
        }
        const QStringList fields = fieldsOf(lines, line, separator, strFile);
        if (areEmpty(fields)) {
            continue;
        }
        if (fields.size() != names.size()) {
            refuseLine(strFile, line,
                       QStringLiteral("%1 fields where the first line has %2").arg(fields.size()).arg(names.size()));
        }
        for (int i = leadingColumns; i < fields.size(); ++i) {
            if (fields[i].isEmpty()) {
                refuseLine(strFile, line, QStringLiteral("the value of \"%1\" is missing").arg(names[i]));
            }
            bool good = false;
            QString number = fields[i];
            if (separator != QLatin1Char(',')) {
                number.replace(QLatin1Char(','), QLatin1Char('.'));
            }
            const double value = number.toDouble(&good);
            if (!good) {
                refuseLine(strFile, line, QStringLiteral("\"%1\" is no number").arg(fields[i]));
            }
            spectra[static_cast<std::size_t>(i - leadingColumns)]->points.append(
                {fields[0], channels ? keyOfChannel(fields[1]) : fields[1], value});
        }
    }
    QList<SpectrumPlotParams*> list;
    for (auto& pSpectrum : spectra) {
        list.append(pSpectrum.release());
    }
    return list;
}

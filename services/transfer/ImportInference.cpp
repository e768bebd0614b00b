// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/transfer/ImportInference.h"

#include "platform/orvapi/ChannelInfo.h"
#include "platform/orvutils/NumberText.h"
#include "services/basis/Failure.h"
#include "services/basis/JobMonitor.h"
#include "services/basis/TextTable.h"

#include <QJsonObject>

#include <algorithm>

namespace {

// Rows shown whole; of more, so many at either end.
constexpr int maxShownRows = 40;
constexpr int firstShownRows = 20;
constexpr int lastShownRows = 5;
constexpr int maxShownDoubts = 5;

QString figure(const std::optional<double>& value)
{
    return value ? orv::shortestText(*value) : QStringLiteral("-");
}

// The name, with the wavelength behind it where both are known.
QString channelText(const InferredTable::Row& row, int nNumber)
{
    const ChannelInfo channel{row.channel, row.wavelength, row.wavenumber};
    const QString place = channel.placeText();
    return row.channel.isEmpty() || place.isEmpty() ? channel.label(nNumber)
                                                    : QStringLiteral("%1 (%2)").arg(row.channel, place);
}

} // namespace

InferredTable inferImagesTable(const QString& strSource, std::optional<double> interval, bool bFollow,
                               const PlaneChoice& planes, JobMonitor& monitor)
{
    monitor.startProgress(QStringLiteral("Looking at the images"));
    ImageFinder finder;
    QString error;
    const auto progress = [&monitor](int done, int steps, const QString& what) {
        monitor.showProgress(what, steps > 0 ? static_cast<double>(done) / steps : -1.0);
        return !monitor.isStopRequested();
    };
    const bool found = finder.find(strSource, progress, &error, bFollow, planes);
    monitor.endProgress();
    if (!found) {
        throw Failure(error, finder.aborted() ? Failure::Kind::Aborted : Failure::Kind::Failed);
    }
    monitor.warnAll(finder.warnings());
    return InferredTable(finder.images(), finder.doubts(), interval, planes.each);
}

QString inferredTableText(const InferredTable& table)
{
    const bool temporal = table.isTemporal();
    QStringList header{QStringLiteral("image")};
    header += temporal             ? QStringList{QStringLiteral("time")}
              : table.isNumbered() ? QStringList{QStringLiteral("number"), QStringLiteral("channel")}
                                   : QStringList{QStringLiteral("excitation"), QStringLiteral("emission")};
    const bool scan = std::any_of(table.rows().cbegin(), table.rows().cend(),
                                  [](const InferredTable::Row& row) { return !row.spotX.isEmpty(); });
    if (scan) {
        header.append(QStringLiteral("spot"));
    }
    TextTable text(header + QStringList{QStringLiteral("from")});
    const int count = table.rows().size();
    for (int i = 0; i < count; ++i) {
        const auto& row = table.rows().at(i);
        if (count > maxShownRows && i == firstShownRows) {
            text.addRow({QStringLiteral("... %1 more").arg(count - firstShownRows - lastShownRows)});
            i = count - lastShownRows - 1;
            continue;
        }
        QStringList cells{row.name};
        cells += temporal             ? QStringList{figure(row.time)}
                 : table.isNumbered() ? QStringList{QString::number(i + 1), channelText(row, i + 1)}
                                      : QStringList{figure(row.excitation), figure(row.emission)};
        if (scan) {
            cells.append(QStringLiteral("%1, %2").arg(row.spotX, row.spotY));
        }
        text.addRow(cells + QStringList{row.origin});
    }
    QString answer = text.toText();
    for (const auto& note : table.notes()) {
        answer += note + QLatin1Char('\n');
    }
    return answer;
}

QJsonArray inferredTableJson(const InferredTable& table)
{
    QJsonArray rows;
    for (const auto& row : table.rows()) {
        QJsonObject object{{"image", row.name}, {"origin", row.origin}};
        const auto insert = [&object](const char* pKey, const std::optional<double>& value) {
            if (value) {
                object.insert(QLatin1String(pKey), *value);
            }
        };
        if (table.isNumbered()) {
            object.insert(QStringLiteral("channel"), row.channel);
            insert("wavelength", row.wavelength);
            insert("wavenumber", row.wavenumber);
        } else if (table.isTemporal()) {
            insert("time", row.time);
        } else {
            insert("excitation", row.excitation);
            insert("emission", row.emission);
        }
        if (!row.spotX.isEmpty()) {
            object.insert(QStringLiteral("spot"), QStringLiteral("%1, %2").arg(row.spotX, row.spotY));
        }
        insert("exposure", row.facts.exposure);
        insert("pixelSize", row.facts.pixelSize);
        rows.append(object);
    }
    return rows;
}

QString doubtText(const InferredTable& table)
{
    QString text = table.doubts().mid(0, maxShownDoubts).join(QStringLiteral("; "));
    const int more = table.doubts().size() - maxShownDoubts;
    return more > 0 ? text + QStringLiteral("; and %1 more doubts").arg(more) : text;
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/ImagesTable.h"

#include "platform/orvutils/InputFile.h"
#include "services/importer/CsvLine.h"

#include <QFile>
#include <QTextCodec>

#include <array>
#include <cmath>

namespace {

// Ten thousand images with long names need a tenth of this.
constexpr qint64 maxTableBytes = 16 * 1024 * 1024;
constexpr int maxImages = 100000;
// In all images: a short row can name many.
constexpr int maxProjectedPages = 1000000;
constexpr int maxColumns = 1000;

enum Column
{
    ColumnFile,
    ColumnPage,
    ColumnProjection,
    ColumnBand,
    ColumnExcitation,
    ColumnEmission,
    ColumnChannel,
    ColumnWavelength,
    ColumnWavenumber,
    ColumnInterval,
    ColumnTime,
    ColumnSpotX,
    ColumnSpotY,
    ColumnExposure,
    ColumnPixelSize,
    ColumnStart,
    ColumnIsotope,
    ColumnUnit,
    ColumnCount
};
constexpr std::array<const char*, ColumnCount> columnNames{
    ImageColumns::kFile,       ImageColumns::kPage,     ImageColumns::kProjection, ImageColumns::kBand,
    ImageColumns::kExcitation, ImageColumns::kEmission, ImageColumns::kChannel,    ImageColumns::kWavelength,
    ImageColumns::kWavenumber, ImageColumns::kInterval, ImageColumns::kTime,       ImageColumns::kSpotX,
    ImageColumns::kSpotY,      ImageColumns::kExposure, ImageColumns::kPixelSize,  ImageColumns::kStart,
    ImageColumns::kIsotope,    ImageColumns::kUnit};

// Position of each column among the fields, -1 without.
using Columns = std::array<int, ColumnCount>;

bool tellChannels(const Columns& columns)
{
    return columns[ColumnChannel] >= 0 || columns[ColumnWavelength] >= 0 || columns[ColumnWavenumber] >= 0;
}

bool findColumns(const QStringList& header, Columns& columns, QStringList& warnings, QString& error)
{
    columns.fill(-1);
    for (int i = 0; i < header.size(); ++i) {
        // A spreadsheet's empty columns, and what an inferred table tells besides.
        bool bKnown = header.at(i).isEmpty() ||
                      header.at(i).compare(QLatin1String(ImageColumns::kOrigin), Qt::CaseInsensitive) == 0;
        for (std::size_t c = 0; c < ColumnCount; ++c) {
            if (header.at(i).compare(QLatin1String(columnNames[c]), Qt::CaseInsensitive) != 0) {
                continue;
            }
            bKnown = true;
            if (columns[c] >= 0) {
                error = QStringLiteral("the column \"%1\" occurs twice").arg(header.at(i));
                return false;
            }
            columns[c] = i;
        }
        if (!bKnown) {
            warnings.append(QStringLiteral("the column \"%1\" is passed over").arg(header.at(i)));
        }
    }
    if (columns[ColumnExcitation] < 0 && columns[ColumnEmission] < 0 && columns[ColumnTime] < 0 &&
        !tellChannels(columns)) {
        error = QStringLiteral("the first line names no column \"excitation\", \"emission\", \"time\" or \"channel\"");
        return false;
    }
    return true;
}

// A field as a number, its unit dropped; nothing in *pValue for an empty one.
bool readNumber(const QString& field, Column column, const char* unit, std::optional<double>& value, QString& error)
{
    if (field.isEmpty()) {
        return true;
    }
    QString text = field;
    if (text.endsWith(QLatin1String(unit), Qt::CaseInsensitive)) {
        text.chop(static_cast<int>(qstrlen(unit)));
    }
    bool bNumber = false;
    const double number = text.trimmed().toDouble(&bNumber);
    if (!bNumber || !std::isfinite(number)) {
        error = QStringLiteral("the %1 \"%2\" is not a number").arg(QLatin1String(columnNames[column]), field);
        return false;
    }
    value = number;
    return true;
}

bool readCount(const QString& field, Column column, const char* prefix, std::optional<int>& value, QString& error)
{
    if (field.isEmpty()) {
        return true;
    }
    QString text = field;
    if (text.startsWith(QLatin1String(prefix), Qt::CaseInsensitive)) {
        text.remove(0, static_cast<int>(qstrlen(prefix)));
    }
    bool bNumber = false;
    const int number = text.toInt(&bNumber);
    if (!bNumber || number < 1) {
        error = QStringLiteral("the %1 \"%2\" is not a whole number from 1 on")
                    .arg(QLatin1String(columnNames[column]), field);
        return false;
    }
    value = number;
    return true;
}

// One page, or several with what is made of them.
bool readPages(const QString& field, const QString& projection, ImageRow& row, QString& error)
{
    if (projection.isEmpty()) {
        if (field.simplified().contains(QLatin1Char(' ')) || field.contains(QLatin1String(".."))) {
            error = QStringLiteral("several pages (\"%1\") take a projection, max or mean").arg(field);
            return false;
        }
        return readCount(field, ColumnPage, "", row.page, error);
    }
    if (!PageProjection::kindOf(projection, &row.projection.kind)) {
        error = QStringLiteral("the projection \"%1\" is not max or mean").arg(projection);
        return false;
    }
    if (!PageProjection::readPages(field, &row.projection.pages, &error)) {
        return false;
    }
    if (row.projection.pages.isEmpty()) {
        error = QStringLiteral("a projection takes pages, such as 1 4 7 or 1..30");
        return false;
    }
    row.page = row.projection.pages.first();
    return true;
}

bool readPositive(const QString& field, Column column, const char* unit, std::optional<double>& value, QString& error)
{
    if (!readNumber(field, column, unit, value, error)) {
        return false;
    }
    if (value && *value <= 0.0) {
        error = QStringLiteral("the %1 \"%2\" is not above 0").arg(QLatin1String(columnNames[column]), field);
        return false;
    }
    return true;
}

// A coordinate stays as it is written, since spots are told apart by it.
bool readCoordinate(const QString& field, Column column, QString& value, QString& error)
{
    std::optional<double> number;
    value = field;
    return readNumber(field, column, "", number, error);
}

// A text that `reader` must understand.
bool readText(const QString& field, Column column, QString (*reader)(const QString&), const char* wanted,
              QString& value, QString& error)
{
    value = reader(field);
    if (value.isEmpty() && !field.isEmpty()) {
        error = QStringLiteral("the %1 \"%2\" is not %3")
                    .arg(QLatin1String(columnNames[column]), field, QLatin1String(wanted));
    }
    return error.isEmpty();
}

bool readFacts(const QStringList& fields, const Columns& columns, ImageFacts& facts, QString& error)
{
    const auto field = [&](Column column) {
        const int at = columns[static_cast<std::size_t>(column)];
        return at < 0 ? QString() : fields.value(at);
    };
    facts.isotope = field(ColumnIsotope);
    const QString unit = field(ColumnUnit);
    return readPositive(field(ColumnExposure), ColumnExposure, "s", facts.exposure, error) &&
           readPositive(field(ColumnPixelSize), ColumnPixelSize, "um", facts.pixelSize, error) &&
           readText(field(ColumnStart), ColumnStart, ImageFacts::instant, "an instant such as 2024-03-05T09:30:00",
                    facts.start, error) &&
           (unit.compare(QLatin1String("counts"), Qt::CaseInsensitive) == 0 ||
            readText(unit, ColumnUnit, ImageFacts::unitName, "Counts, Radiance, Radiant Efficiency or Efficiency",
                     facts.unit, error));
}

bool readRow(const QStringList& fields, const Columns& columns, ImageRow& row, QString& error)
{
    const auto field = [&](Column column) {
        const int at = columns[static_cast<std::size_t>(column)];
        return at < 0 ? QString() : fields.value(at);
    };
    row.file = field(ColumnFile);
    row.channel = field(ColumnChannel).simplified();
    return readPages(field(ColumnPage), field(ColumnProjection), row, error) &&
           readCount(field(ColumnBand), ColumnBand, "", row.band, error) &&
           readNumber(field(ColumnExcitation), ColumnExcitation, "nm", row.excitation, error) &&
           readNumber(field(ColumnEmission), ColumnEmission, "nm", row.emission, error) &&
           readPositive(field(ColumnWavelength), ColumnWavelength, "nm", row.wavelength, error) &&
           readPositive(field(ColumnWavenumber), ColumnWavenumber, "1/cm", row.wavenumber, error) &&
           readCount(field(ColumnInterval), ColumnInterval, "Int", row.interval, error) &&
           readNumber(field(ColumnTime), ColumnTime, "s", row.time, error) &&
           readCoordinate(field(ColumnSpotX), ColumnSpotX, row.spotX, error) &&
           readCoordinate(field(ColumnSpotY), ColumnSpotY, row.spotY, error) &&
           readFacts(fields, columns, row.facts, error);
}

// Which byte is no UTF-8 is told by its line.
int firstLineThatIsNotText(const QByteArray& text, QTextCodec* codec)
{
    int line = 0;
    for (int from = 0; from <= text.size();) {
        ++line;
        int end = text.indexOf('\n', from);
        end = end < 0 ? text.size() : end;
        const QByteArray bytes = QByteArray::fromRawData(text.constData() + from, end - from);
        QTextCodec::ConverterState state;
        codec->toUnicode(bytes.constData(), bytes.size(), &state);
        if (state.invalidChars > 0 || state.remainingChars > 0 || bytes.contains('\0')) {
            return line;
        }
        from = end + 1;
    }
    return 0;
}

} // namespace

bool ImagesTable::load(const QString& strPath, QString* pError)
{
    m_rows.clear();
    m_warnings.clear();
    m_strName = strPath;
    QFile file(strPath);
    QString reason;
    if (!orv::openInput(file, &reason)) {
        *pError = QStringLiteral("%1: %2").arg(strPath, reason);
        return false;
    }
    const QByteArray text = file.read(maxTableBytes + 1);
    if (file.error() != QFileDevice::NoError) {
        *pError = QStringLiteral("%1: %2").arg(strPath, file.errorString());
        return false;
    }
    if (text.size() > maxTableBytes) {
        *pError = QStringLiteral("%1: the file is too large for a table of images").arg(strPath);
        return false;
    }
    return parse(text, strPath, pError);
}

bool ImagesTable::parse(const QByteArray& text, const QString& strName, QString* pError)
{
    m_rows.clear();
    m_warnings.clear();
    m_bChannels = false;
    m_strName = strName;
    QTextCodec* codec = QTextCodec::codecForName("UTF-8");
    QByteArray unixText = text;
    unixText.replace("\r\n", "\n").replace('\r', '\n');
    if (unixText.count('\n') > maxImages) {
        *pError = QStringLiteral("%1:%2: more than %3 images")
                      .arg(strName, QString::number(maxImages + 1), QString::number(maxImages));
        return false;
    }
    if (const int line = firstLineThatIsNotText(unixText, codec)) {
        *pError = QStringLiteral("%1:%2: the text is not UTF-8").arg(strName, QString::number(line));
        return false;
    }
    QString all = QString::fromUtf8(unixText);
    if (all.startsWith(QChar(QChar::ByteOrderMark))) {
        all.remove(0, 1);
    }
    if (!parseLines(all.split(QLatin1Char('\n')), pError)) {
        m_rows.clear();
        return false;
    }
    return true;
}

bool ImagesTable::parseLines(const QStringList& lines, QString* pError)
{
    Columns columns{};
    QChar separator;
    bool bHeaderSeen = false;
    int projected = 0;
    int headerFields = 0;
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines.at(i).trimmed();
        if (line.isEmpty()) {
            continue;
        }
        const auto fail = [&](const QString& reason) {
            *pError = QStringLiteral("%1:%2: %3").arg(m_strName, QString::number(i + 1), reason);
            return false;
        };
        if (!bHeaderSeen) {
            const bool bSemicolons = line.contains(QLatin1Char(';')) && !line.contains(QLatin1Char(','));
            separator = bSemicolons ? QLatin1Char(';') : QLatin1Char(',');
            if (line.count(separator) >= maxColumns) {
                return fail(QStringLiteral("more than %1 columns").arg(maxColumns));
            }
        }
        QStringList fields;
        QString reason;
        if (!splitCsvLine(line, separator, &fields, &reason)) {
            return fail(reason);
        }
        if (!bHeaderSeen) {
            if (!findColumns(fields, columns, m_warnings, reason)) {
                return fail(reason);
            }
            bHeaderSeen = true;
            m_bChannels = tellChannels(columns);
            headerFields = fields.size();
            continue;
        }
        while (fields.size() > headerFields && fields.last().isEmpty()) {
            fields.removeLast();
        }
        if (fields.join(QString()).isEmpty()) {
            continue; // a spreadsheet's empty row
        }
        if (fields.size() > headerFields) {
            return fail(
                QStringLiteral("%1 fields where the first line names %2 columns").arg(fields.size()).arg(headerFields));
        }
        ImageRow row;
        row.line = i + 1;
        if (!readRow(fields, columns, row, reason)) {
            return fail(reason);
        }
        projected += row.projection.pages.size();
        if (projected > maxProjectedPages) {
            return fail(QStringLiteral("more than %1 pages are projected").arg(maxProjectedPages));
        }
        m_rows.append(row);
    }
    if (m_rows.isEmpty()) {
        *pError = QStringLiteral("%1: the table names no image").arg(m_strName);
        return false;
    }
    return true;
}

QString ImagesTable::place(const ImageRow& row) const
{
    return QStringLiteral("%1:%2").arg(m_strName, QString::number(row.line));
}

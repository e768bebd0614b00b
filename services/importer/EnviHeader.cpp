// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/EnviHeader.h"

#include "services/importer/bareWavelengths.h"

#include <QHash>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// Sides and bands beyond this are garbage; their products stay within 64 bits.
constexpr long long maxSize = 1 << 24;
constexpr long long maxBands = 1 << 16; // each is an image with a name
constexpr int maxLines = 100000;
constexpr qint64 maxCubeBytes = Q_INT64_C(1) << 62;

struct Entry
{
    QString value;
    int line = 0;
};
using Entries = QHash<QString, Entry>;

bool fail(QString* pError, int line, const QString& reason)
{
    *pError = QStringLiteral("line %1: %2").arg(QString::number(line), reason);
    return false;
}

// The entries by key, in lower case with single blanks.
bool readEntries(const QByteArray& text, Entries& entries, QString* pError)
{
    QByteArray unixText = text;
    unixText.replace("\r\n", "\n").replace('\r', '\n');
    if (unixText.count('\n') > maxLines) {
        return fail(pError, maxLines + 1, QStringLiteral("more than %1 lines").arg(maxLines));
    }
    const QStringList lines = QString::fromUtf8(unixText).split(QLatin1Char('\n'));
    QString magic = lines.first().trimmed();
    if (magic.startsWith(QChar(QChar::ByteOrderMark))) {
        magic.remove(0, 1);
    }
    if (magic != QLatin1String("ENVI")) {
        return fail(pError, 1, QStringLiteral("the first line is not \"ENVI\""));
    }
    for (int i = 1; i < lines.size(); ++i) {
        const QString line = lines.at(i).trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char(';'))) {
            continue;
        }
        const int at = line.indexOf(QLatin1Char('='));
        if (at < 0) {
            return fail(pError, i + 1, QStringLiteral("no \"key = value\""));
        }
        const int start = i + 1;
        const QString key = line.left(at).simplified().toLower();
        QString value = line.mid(at + 1).trimmed();
        if (value.startsWith(QLatin1Char('{'))) {
            QStringList parts{value};
            while (!parts.last().contains(QLatin1Char('}'))) {
                if (++i >= lines.size()) {
                    return fail(pError, start, QStringLiteral("the brace of \"%1\" is not closed").arg(key));
                }
                parts.append(lines.at(i).trimmed());
            }
            value = parts.join(QLatin1Char(' '));
            value = value.mid(1, value.indexOf(QLatin1Char('}')) - 1).trimmed();
        }
        if (entries.contains(key)) {
            return fail(pError, start, QStringLiteral("\"%1\" occurs twice").arg(key));
        }
        entries.insert(key, {value, start});
    }
    return true;
}

// An entry that must be a whole number from `least` to `most`; `*pValue` stays when it is absent and may be.
bool readInteger(const Entries& entries, const char* key, bool bRequired, long long least, long long most,
                 long long* pValue, QString* pError)
{
    const auto found = entries.constFind(QLatin1String(key));
    if (found == entries.constEnd()) {
        if (bRequired) {
            *pError = QStringLiteral("\"%1\" is missing").arg(QLatin1String(key));
        }
        return !bRequired;
    }
    bool bNumber = false;
    const long long value = found->value.toLongLong(&bNumber);
    if (!bNumber || value < least || value > most) {
        return fail(pError, found->line,
                    QStringLiteral("\"%1\" is \"%2\", not a whole number from %3 to %4")
                        .arg(QLatin1String(key), found->value, QString::number(least), QString::number(most)));
    }
    *pValue = value;
    return true;
}

bool readInterleave(const Entries& entries, EnviHeader::Interleave* pInterleave, QString* pError)
{
    const auto found = entries.constFind(QStringLiteral("interleave"));
    if (found == entries.constEnd()) {
        *pError = QStringLiteral("\"interleave\" is missing");
        return false;
    }
    const QString value = found->value.toLower();
    if (value == QLatin1String("bsq")) {
        *pInterleave = EnviHeader::Interleave::Bsq;
    } else if (value == QLatin1String("bil")) {
        *pInterleave = EnviHeader::Interleave::Bil;
    } else if (value == QLatin1String("bip")) {
        *pInterleave = EnviHeader::Interleave::Bip;
    } else {
        return fail(pError, found->line,
                    QStringLiteral("\"interleave\" is \"%1\", not bsq, bil or bip").arg(found->value));
    }
    return true;
}

bool isNoUnit(const QString& units)
{
    return units.isEmpty() || units == QLatin1String("unknown");
}

// Nanometres a unit of length, as texts of "wavelength units" begin or are; 0 for other units.
double nanometresOf(const QString& units)
{
    struct Unit
    {
        const char* start;
        const char* symbol;
        double nanometres;
    };
    static const Unit known[] = {{"nano", "nm", 1.0},  {"micro", "um", 1e3}, {"milli", "mm", 1e6},
                                 {"centi", "cm", 1e7}, {"meter", "m", 1e9},  {"angstrom", "a", 0.1}};
    for (const Unit& unit : known) {
        if (units.startsWith(QLatin1String(unit.start)) || units == QLatin1String(unit.symbol)) {
            return unit.nanometres;
        }
    }
    return isNoUnit(units) ? 1.0 : 0.0;
}

// Whether numbers that no unit stands behind are micrometres: in their range, and not the numbers of the bands.
bool areMicrometres(const QVector<double>& values)
{
    const auto isWhole = [](double value) { return value == std::floor(value); };
    return std::all_of(values.begin(), values.end(),
                       [](double value) {
                           return value >= BareWavelengths::smallestMicrometres &&
                                  value <= BareWavelengths::largestMicrometres;
                       }) &&
           !std::all_of(values.begin(), values.end(), isWhole);
}

// Hertz a unit; 0 for other units.
double hertzOf(const QString& units)
{
    return units == QLatin1String("ghz") ? 1e9 : units == QLatin1String("mhz") ? 1e6 : 0.0;
}

bool readWavelengths(const Entries& entries, EnviHeader& header, QString* pError)
{
    const int bands = header.bands;
    const auto found = entries.constFind(QStringLiteral("wavelength"));
    if (found == entries.constEnd()) {
        return true;
    }
    const QString units = entries.value(QStringLiteral("wavelength units")).value.toLower();
    const bool bWavenumbers = units.startsWith(QLatin1String("wavenumber")) ||
                              units.startsWith(QLatin1String("wave number")) || units == QLatin1String("cm-1") ||
                              units == QLatin1String("1/cm");
    const double nanometres = nanometresOf(units);
    const double hertz = hertzOf(units);
    if (!(nanometres > 0.0) && !(hertz > 0.0) && !bWavenumbers) {
        return true; // indices and the like are no wavelengths
    }
    const QStringList texts = found->value.split(QLatin1Char(','));
    if (texts.size() != bands) {
        return fail(pError, found->line, QStringLiteral("%1 wavelengths for %2 bands").arg(texts.size()).arg(bands));
    }
    QVector<double> wavelengths;
    for (const QString& text : texts) {
        bool bNumber = false;
        const double value = text.trimmed().toDouble(&bNumber);
        if (!bNumber || !std::isfinite(value)) {
            return fail(pError, found->line,
                        QStringLiteral("the wavelength \"%1\" is not a number").arg(text.trimmed()));
        }
        constexpr double lightNanometres = 299792458e9; // in a second
        wavelengths.append(bWavenumbers                 ? value
                           : hertz > 0.0 && value > 0.0 ? lightNanometres / (value * hertz)
                                                        : value * nanometres);
    }
    if (isNoUnit(units) && areMicrometres(wavelengths)) {
        constexpr double nanometresAMicrometre = 1e3;
        for (double& wavelength : wavelengths) {
            wavelength *= nanometresAMicrometre;
        }
    }
    (bWavenumbers ? header.wavenumbers : header.wavelengths) = wavelengths;
    return true;
}

QVector<bool> readBadBands(const Entries& entries, int bands)
{
    QVector<bool> bad;
    const QStringList texts = entries.value(QStringLiteral("bbl")).value.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString& text : texts) {
        bool bNumber = false;
        const double value = text.trimmed().toDouble(&bNumber);
        bad.append(bNumber && value == 0.0);
    }
    return bad.size() == bands && bad.contains(false) ? bad : QVector<bool>();
}

bool readIgnoreValue(const Entries& entries, std::optional<double>* pValue, QString* pError)
{
    const auto found = entries.constFind(QStringLiteral("data ignore value"));
    if (found == entries.constEnd() || found->value.isEmpty()) {
        return true;
    }
    bool bNumber = false;
    const double value = found->value.toLower() == QLatin1String("nan") ? std::numeric_limits<double>::quiet_NaN()
                                                                        : found->value.toDouble(&bNumber);
    if (!bNumber && !std::isnan(value)) {
        return fail(pError, found->line,
                    QStringLiteral("the data ignore value \"%1\" is not a number").arg(found->value));
    }
    *pValue = value;
    return true;
}

// Names are for people: as many as there are bands, or none.
QStringList readBandNames(const Entries& entries, int bands)
{
    QStringList names = entries.value(QStringLiteral("band names")).value.split(QLatin1Char(','));
    for (QString& name : names) {
        name = name.trimmed();
    }
    return names.size() == bands && !(bands == 1 && names.first().isEmpty()) ? names : QStringList();
}

// One text a band; an entry that is alone holds for all.
QStringList readTexts(const Entries& entries, const char* key, int bands)
{
    const QString value = entries.value(QLatin1String(key)).value;
    QStringList texts = value.isEmpty() ? QStringList() : value.split(QLatin1Char(','));
    if (texts.size() == 1) {
        texts = QVector<QString>(bands, texts.first()).toList();
    }
    return texts.size() == bands ? texts : QStringList();
}

QVector<ImageFacts> readFacts(const Entries& entries, int bands)
{
    const QStringList exposures = readTexts(entries, "orvia exposure seconds", bands);
    const QStringList starts = readTexts(entries, "orvia start", bands);
    const QString size = entries.value(QStringLiteral("orvia pixel size micrometres")).value;
    ImageFacts common;
    common.pixelSize = ImageFacts::positive(size);
    common.isotope = entries.value(QStringLiteral("orvia isotope")).value;
    common.unit = ImageFacts::unitName(entries.value(QStringLiteral("orvia unit")).value);
    common.temporal = entries.value(QStringLiteral("orvia kind")).value == QLatin1String("temporal");
    common.numbered = entries.value(QStringLiteral("orvia kind")).value == QLatin1String("channels");
    if (exposures.isEmpty() && starts.isEmpty() && !common.pixelSize && common.isotope.isEmpty() &&
        common.unit.isEmpty() && !common.temporal && !common.numbered) {
        return {};
    }
    QVector<ImageFacts> facts(bands, common);
    for (int band = 0; band < bands; ++band) {
        facts[band].exposure = ImageFacts::positive(exposures.value(band));
        facts[band].start = ImageFacts::instant(starts.value(band));
    }
    return facts;
}

// What would make the plain reading of the pixels wrong.
bool refuseUnsupported(const Entries& entries, QString* pError)
{
    const Entry compression = entries.value(QStringLiteral("file compression"));
    if (!compression.value.isEmpty() && compression.value != QLatin1String("0")) {
        return fail(pError, compression.line, QStringLiteral("compressed data are not supported"));
    }
    for (const char* key : {"major frame offsets", "minor frame offsets"}) {
        const Entry offsets = entries.value(QLatin1String(key));
        const QStringList texts = offsets.value.split(QLatin1Char(','), Qt::SkipEmptyParts);
        for (const QString& text : texts) {
            if (text.trimmed() != QLatin1String("0")) {
                return fail(pError, offsets.line, QStringLiteral("\"%1\" are not supported").arg(QLatin1String(key)));
            }
        }
    }
    return true;
}

} // namespace

int EnviHeader::bytesPerPixel() const
{
    switch (dataType) {
    case 1:
        return 1;
    case 2:
    case 12:
        return 2;
    case 3:
    case 4:
    case 13:
        return 4;
    case 5:
    case 14:
    case 15:
        return 8;
    default:
        return 0;
    }
}

ORVDataTypes EnviHeader::imageType() const
{
    switch (dataType) {
    case 1:
        return ORVTYPE_BYTE;
    case 12:
        return ORVTYPE_USHORT;
    case 2:
    case 3:
        return ORVTYPE_INT;
    case 4:
        return ORVTYPE_FLOAT;
    case 5:
    case 13:
    case 14:
    case 15:
        return ORVTYPE_DOUBLE;
    default:
        return ORVTYPE_NONE;
    }
}

qint64 EnviHeader::requiredBytes() const
{
    return headerOffset + static_cast<qint64>(width) * height * bands * bytesPerPixel();
}

bool EnviHeader::parse(const QByteArray& text, QString* pError)
{
    Entries entries;
    EnviHeader read;
    long long samples = 0;
    long long lines = 0;
    long long bandCount = 0;
    long long type = 0;
    long long order = 0;
    long long offset = 0;
    if (!readEntries(text, entries, pError) || !refuseUnsupported(entries, pError) ||
        !readInteger(entries, "samples", true, 1, maxSize, &samples, pError) ||
        !readInteger(entries, "lines", true, 1, maxSize, &lines, pError) ||
        !readInteger(entries, "bands", true, 1, maxBands, &bandCount, pError) ||
        !readInteger(entries, "data type", true, 0, std::numeric_limits<int>::max(), &type, pError) ||
        !readInteger(entries, "byte order", false, 0, 1, &order, pError) ||
        !readInteger(entries, "header offset", false, 0, maxCubeBytes, &offset, pError) ||
        !readInterleave(entries, &read.interleave, pError)) {
        return false;
    }
    read.dataType = static_cast<int>(type);
    if (read.bytesPerPixel() == 0) {
        return fail(pError, entries.value(QStringLiteral("data type")).line,
                    QStringLiteral("data type %1 is not supported (1, 2, 3, 4, 5, 12, 13, 14 and 15 are)").arg(type));
    }
    // In doubles, which do not overflow.
    const double bytes = static_cast<double>(samples) * static_cast<double>(lines) * static_cast<double>(bandCount) *
                             read.bytesPerPixel() +
                         static_cast<double>(offset);
    if (bytes >= static_cast<double>(maxCubeBytes)) {
        *pError = QStringLiteral("%1 x %2 pixels in %3 bands are too many").arg(samples).arg(lines).arg(bandCount);
        return false;
    }
    read.width = static_cast<long>(samples);
    read.height = static_cast<long>(lines);
    read.bands = static_cast<int>(bandCount);
    read.bigEndian = order == 1;
    read.headerOffset = offset;
    read.dataFile = entries.value(QStringLiteral("data file")).value;
    read.dataDigest = QByteArray::fromHex(entries.value(QStringLiteral("orvia data sha1")).value.toLatin1());
    read.bandNames = readBandNames(entries, read.bands);
    read.facts = readFacts(entries, read.bands);
    read.badBands = readBadBands(entries, read.bands);
    read.scale = ImageFacts::positive(entries.value(QStringLiteral("reflectance scale factor")).value).value_or(1.0);
    if (!readWavelengths(entries, read, pError) || !readIgnoreValue(entries, &read.ignoreValue, pError)) {
        return false;
    }
    *this = read;
    return true;
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/SpumKyvoDatabase.h"

#include "files/AtomicFile.h"
#include "host/CORVLog.h"
#include "host/orv_paths.h"
#include "spectra/logLine.h"

#include <QDir>
#include <QFile>
#include <QTextStream>

#include <algorithm>

namespace {

// Points that a spectrum makes room for when its colour is read.
constexpr int reservedPoints = 1000;
// Columns ahead of those of the spectra.
constexpr int leadingFields = 2;

void logFailure(const QString& message)
{
    logLine(message, CORVLOG_ERROR);
}

// The libraries' folder, with its separator at the end; empty when the host has no path for it.
QString libraryFolder()
{
    const QString base = getORVPath(ORV_PATH_USER_DATA, true, nullptr);
    return base.isEmpty() ? QString() : base + QStringLiteral("Spum") + QLatin1Char('/');
}

bool same(const QString& field, const char* text)
{
    return field.compare(QLatin1String(text), Qt::CaseInsensitive) == 0;
}

// Lines of "$" that have a field a spectrum.
bool isSpectrumKey(const QString& key)
{
    return same(key, "Color") || same(key, "Select") || same(key, "Origin");
}

bool isPossibleCount(int count)
{
    return count >= 1 && count <= SpumKyvoDatabase::maxSpectra;
}

bool isHeader(const QString& first, const QString& second)
{
    return same(first, "Excitation") && same(second, "Emission");
}

template <class FieldOf>
void writeFields(QTextStream& stream, const QList<SpectrumPlotParams*>& spectra, FieldOf fieldOf)
{
    for (const SpectrumPlotParams* spectrum : spectra) {
        stream << ',' << fieldOf(*spectrum);
    }
    stream << '\n';
}

void writeLibrary(QTextStream& stream, const QList<SpectrumPlotParams*>& spectra, const QString& note)
{
    using Spectrum = SpectrumPlotParams;
    stream << "$,Note," << note << '\n';
    stream << "$,NumSpec," << spectra.size() << '\n';
    stream << "$,Color";
    writeFields(stream, spectra, [](const Spectrum& s) { return s.settings.color; });
    stream << "$,Origin";
    writeFields(stream, spectra, [](const Spectrum& s) { return s.origin; });
    stream << "$,Select";
    writeFields(stream, spectra, [](const Spectrum& s) { return s.settings.selected ? 1 : 0; });
    stream << "Excitation,Emission";
    writeFields(stream, spectra, [](const Spectrum& s) { return s.settings.name; });
    const QVector<SpectrumPoint>& bands = spectra.first()->points;
    for (int i = 0; i < bands.size(); ++i) {
        stream << bands.at(i).first << ',' << bands.at(i).second;
        writeFields(stream, spectra, [i](const Spectrum& s) { return s.points.at(i).value; });
    }
}

// The state of one pass over a file.
class LibraryReader
{
public:
    LibraryReader(QList<SpectrumPlotParams*>& spectra, QString& note) : m_spectra(spectra), m_note(note) {}

    // False when the load fails at this line.
    bool readLine(const QString& line)
    {
        const QStringList fields = line.split(QLatin1Char(','), Qt::KeepEmptyParts);
        if (fields.size() < leadingFields + 1) {
            return true;
        }
        if (same(fields.at(0), "$")) {
            return readKeyLine(fields);
        }
        if (fits(fields)) {
            readTableLine(fields);
        }
        return true;
    }

private:
    // m_count is above 0 only after the list was filled with as many.
    bool fits(const QStringList& fields) const { return fields.size() == m_count + leadingFields; }

    bool readKeyLine(const QStringList& fields)
    {
        const QString& key = fields.at(1);
        if (same(key, "Note")) {
            m_note = fields.at(2);
            return true;
        }
        if (same(key, "NumSpec")) {
            return m_count > 0 || makeSpectra(fields.at(2).toInt());
        }
        if (!isSpectrumKey(key)) {
            return true;
        }
        const bool bColor = same(key, "Color");
        const bool bSelect = same(key, "Select");
        if (!fits(fields)) {
            return false;
        }
        for (int i = 0; i < m_count; ++i) {
            SpectrumPlotParams& spectrum = *m_spectra.at(i);
            const QString& field = fields.at(i + leadingFields);
            if (bColor) {
                spectrum.settings.color = field;
                spectrum.points.reserve(reservedPoints);
            } else if (bSelect) {
                spectrum.settings.selected = field.toInt() != 0;
            } else {
                spectrum.origin = field;
            }
        }
        return true;
    }

    bool makeSpectra(int count)
    {
        if (!isPossibleCount(count)) {
            return false;
        }
        qDeleteAll(m_spectra);
        m_spectra.clear();
        for (int i = 0; i < count; ++i) {
            m_spectra.append(new SpectrumPlotParams);
        }
        m_count = count;
        return true;
    }

    void readTableLine(const QStringList& fields)
    {
        if (!m_bHeaderSeen) {
            m_bHeaderSeen = isHeader(fields.at(0), fields.at(1));
            for (int i = 0; m_bHeaderSeen && i < m_count; ++i) {
                m_spectra.at(i)->settings.name = fields.at(i + leadingFields);
            }
            return;
        }
        for (int i = 0; i < m_count; ++i) {
            m_spectra.at(i)->points.append({fields.at(0), fields.at(1), fields.at(i + leadingFields).toDouble()});
        }
    }

    QList<SpectrumPlotParams*>& m_spectra;
    QString& m_note;
    int m_count = 0;
    bool m_bHeaderSeen = false;
};

template <class Reader>
bool readLines(QTextStream& stream, Reader& reader)
{
    QString line;
    while (stream.readLineInto(&line)) {
        if (!reader.readLine(line)) {
            return false;
        }
    }
    return true;
}

// The same pass for the two band columns alone: of a line no more than three fields are looked at.
class BandReader
{
public:
    BandReader(QStringList& excitations, QStringList& emissions) : m_excitations(excitations), m_emissions(emissions) {}

    // False when a load fails at this line.
    bool readLine(const QString& line)
    {
        const int fields = line.count(QLatin1Char(',')) + 1;
        if (fields < leadingFields + 1) {
            return true;
        }
        const QString first = fieldOf(line, 0);
        const QString second = fieldOf(line, 1);
        if (same(first, "$")) {
            return readKeyLine(second, line, fields);
        }
        if (fields != m_count + leadingFields) {
            return true;
        }
        if (m_bHeaderSeen) {
            m_excitations.append(first);
            m_emissions.append(second);
        }
        m_bHeaderSeen = m_bHeaderSeen || isHeader(first, second);
        return true;
    }

private:
    static QString fieldOf(const QString& line, int field)
    {
        int start = 0;
        for (; field > 0; --field) {
            start = line.indexOf(QLatin1Char(','), start) + 1;
        }
        const int end = line.indexOf(QLatin1Char(','), start);
        return line.mid(start, end < 0 ? -1 : end - start);
    }

    bool readKeyLine(const QString& key, const QString& line, int fields)
    {
        if (same(key, "NumSpec") && m_count == 0) {
            m_count = fieldOf(line, 2).toInt();
            return isPossibleCount(m_count);
        }
        return !isSpectrumKey(key) || fields == m_count + leadingFields;
    }

    QStringList& m_excitations;
    QStringList& m_emissions;
    int m_count = 0;
    bool m_bHeaderSeen = false;
};

// False when the library ends the pass, or, with a log line, cannot be opened.
template <class Reader>
bool readFile(const QString& path, Reader reader)
{
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        logFailure(QStringLiteral("SpumKyvo: Unable to open the spectrum library file."));
        return false;
    }
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    return readLines(stream, reader);
}

bool canBeSaved(const QList<SpectrumPlotParams*>& spectra)
{
    return !spectra.isEmpty() && std::all_of(spectra.cbegin(), spectra.cend(), [&spectra](const auto* s) {
        return s->points.size() >= spectra.first()->points.size();
    });
}

QByteArray libraryText(const QList<SpectrumPlotParams*>& spectra, const QString& note)
{
    QByteArray bytes;
    QTextStream stream(&bytes, QIODevice::WriteOnly);
    stream.setCodec("UTF-8");
    writeLibrary(stream, spectra, note);
    stream.flush();
    return bytes;
}

bool failToSave(const QString& reason)
{
    logFailure(reason);
    logFailure(QStringLiteral("SpumKyvo: Unable to open the spum database file to save."));
    return false;
}

} // namespace

SpumKyvoDatabase::SpumKyvoDatabase() : m_strFileName(QStringLiteral("Spum.orz")) {}

QStringList SpumKyvoDatabase::listLibraries() const
{
    const QString folder = libraryFolder();
    if (folder.isEmpty()) {
        logFailure(QStringLiteral("SpumKyvo: cannot find the database folder path"));
        return {};
    }
    const QDir dir(folder);
    if (!dir.exists()) {
        return {};
    }
    // By case, so that every name that is listed can be loaded.
    QStringList names =
        dir.entryList({QStringLiteral("*.csv")}, QDir::Files | QDir::CaseSensitive, QDir::Name | QDir::IgnoreCase);
    for (QString& name : names) {
        name.remove(QStringLiteral(".csv"));
    }
    return names;
}

bool SpumKyvoDatabase::saveLibrary(const QString& path, QList<SpectrumPlotParams*>& spectra, const QString& note) const
{
    if (!canBeSaved(spectra)) {
        return false;
    }
    QString error;
    return orv::writeFileAtomically(path, libraryText(spectra, note), &error) || failToSave(error);
}

bool SpumKyvoDatabase::saveNewLibrary(const QString& path, QList<SpectrumPlotParams*>& spectra, const QString& note,
                                      bool* pExisted) const
{
    *pExisted = false;
    if (!canBeSaved(spectra)) {
        return false;
    }
    QString error;
    return orv::writeNewFileAtomically(path, libraryText(spectra, note), pExisted, &error) ||
           (!*pExisted && failToSave(error));
}

QString SpumKyvoDatabase::fileOfLibrary(const QString& name)
{
    const QString folder = libraryFolder();
    return folder.isEmpty() ? QString() : folder + name + QStringLiteral(".csv");
}

bool SpumKyvoDatabase::loadLibrary(const QString& name, QList<SpectrumPlotParams*>& spectra, QString& note) const
{
    return !name.isEmpty() && loadLibraryFile(fileOfLibrary(name), spectra, note);
}

void SpumKyvoDatabase::loadBands(const QString& name, QStringList& excitations, QStringList& emissions) const
{
    excitations.clear();
    emissions.clear();
    if (!name.isEmpty()) {
        readFile(fileOfLibrary(name), BandReader(excitations, emissions));
    }
}

bool SpumKyvoDatabase::loadLibraryFile(const QString& path, QList<SpectrumPlotParams*>& spectra, QString& note) const
{
    return readFile(path, LibraryReader(spectra, note));
}

bool SpumKyvoDatabase::readLibrary(QTextStream& stream, QList<SpectrumPlotParams*>& spectra, QString& note)
{
    LibraryReader reader(spectra, note);
    return readLines(stream, reader);
}

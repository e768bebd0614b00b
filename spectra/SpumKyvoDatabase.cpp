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
        const bool bColor = same(key, "Color");
        const bool bSelect = same(key, "Select");
        if (!bColor && !bSelect && !same(key, "Origin")) {
            return true;
        }
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
        if (count < 1 || count > SpumKyvoDatabase::maxSpectra) {
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
            m_bHeaderSeen = same(fields.at(0), "Excitation") && same(fields.at(1), "Emission");
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

bool SpumKyvoDatabase::loadLibrary(const QString& name, QList<SpectrumPlotParams*>& spectra, QString& note) const
{
    if (name.isEmpty()) {
        return false;
    }
    const QString folder = libraryFolder();
    return loadLibraryFile(folder.isEmpty() ? QString() : folder + name + QStringLiteral(".csv"), spectra, note);
}

bool SpumKyvoDatabase::loadLibraryFile(const QString& path, QList<SpectrumPlotParams*>& spectra, QString& note) const
{
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        logFailure(QStringLiteral("SpumKyvo: Unable to open the spectrum library file."));
        return false;
    }
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    return readLibrary(stream, spectra, note);
}

bool SpumKyvoDatabase::readLibrary(QTextStream& stream, QList<SpectrumPlotParams*>& spectra, QString& note)
{
    LibraryReader reader(spectra, note);
    QString line;
    while (stream.readLineInto(&line)) {
        if (!reader.readLine(line)) {
            return false;
        }
    }
    return true;
}

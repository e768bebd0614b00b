// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/LibrarySpectra.h"

#include "engine/EngineEnums.h"
#include "host/CORVDatabase.h"
#include "platform/orvutils/InputFile.h"
#include "services/basis/Failure.h"
#include "services/session/PairSelection.h"
#include "services/session/SpectraTableReader.h"
#include "services/session/pairTable.h"
#include "services/session/tableOnBands.h"
#include "spectra/DefaultColors.h"
#include "spectra/SpectrumPlotParams.h"
#include "spectra/SpumKyvoDatabase.h"
#include "spectra/spectrumOnPairs.h"

#include <QFileInfo>

#include <cmath>
#include <memory>

namespace {

QString missingPairs(const SpectrumPlotParams& spectrum, const QList<KeyPair>& pairs)
{
    QList<KeyPair> missing;
    for (const auto& pair : pairs) {
        if (!spectrum.coversPairs({pair})) {
            missing.append(pair);
        }
    }
    return pairsText(missing);
}

void checkValues(const QString& strSource, const SpectrumPlotParams& spectrum, const XTNT::Vector<double>& values)
{
    for (long long i = 0; i < values.n_; ++i) {
        if (!std::isfinite(values[i])) {
            throw Failure(QStringLiteral("%1: the spectrum \"%2\" holds a value that is not a number")
                              .arg(strSource, spectrum.settings.name));
        }
    }
    if (!(values.Max() > 0.0)) {
        throw Failure(QStringLiteral("%1: the spectrum \"%2\" has no value above 0 at the selected images")
                          .arg(strSource, spectrum.settings.name));
    }
}

// The bytes of a file that is no larger than a library can be, before its spectra take memory.
QByteArray checkedBytes(const QString& strFile)
{
    constexpr int maxMebibytes = 16;
    constexpr int maxLines = 100000;
    QByteArray text;
    QString error;
    if (!orv::readInput(strFile, maxMebibytes, QStringLiteral("library"), &text, &error)) {
        throw Failure(error);
    }
    if (text.count('\n') > maxLines) {
        throw Failure(
            QStringLiteral("%1: more than %2 lines, no library is that long").arg(strFile, QString::number(maxLines)));
    }
    return text;
}

// Where a source of the database, or a folder of results, was taken for a library.
QString adviceAgainst(const QString& strText)
{
    if (QFileInfo(strText).isDir()) {
        return QStringLiteral("of a folder it takes the file, such as the spectra.csv of a result");
    }
    for (const QString& name : strText.split(QLatin1Char(','))) {
        sProbeParameters probe;
        if (!CORVDatabase::findProbe(name.trimmed(), &probe)) {
            return QString();
        }
    }
    return QStringLiteral("\"spum library save NAME --sequence SEQ --probes %1\" makes one of the database's spectra")
        .arg(strText.contains(QLatin1Char(' ')) ? QStringLiteral("'%1'").arg(strText) : strText);
}

} // namespace

LibrarySpectra::~LibrarySpectra()
{
    qDeleteAll(m_spectra);
}

void LibrarySpectra::load(const QString& strFileOrName)
{
    load(strFileOrName, false);
}

void LibrarySpectra::loadWithTables(const QString& strFileOrName)
{
    load(strFileOrName, true);
}

// What is no library, told by its lines that begin with "$,", can only be a table. An empty file is neither.
void LibrarySpectra::readTable(const QByteArray& bytes)
{
    if (bytes.startsWith("$;") || bytes.startsWith("$\t") || bytes.startsWith("\xEF\xBB\xBF$;")) {
        throw Failure(
            QStringLiteral("%1: this is a spectrum library with other separators than commas").arg(m_strSource),
            QStringLiteral("save it as CSV with commas"));
    }
    QString reason;
    if (!SpectraTableReader::parse(bytes, m_strSource, &m_table, &reason)) {
        throw Failure(reason, QStringLiteral("this is neither a spectrum library (lines that begin with \"$,\") nor a "
                                             "table of spectra (\"wavelength,name,...\")"));
    }
    m_bTable = true;
}

void LibrarySpectra::load(const QString& strFileOrName, bool bTables)
{
    m_strSource = strFileOrName;
    SpumKyvoDatabase database;
    const bool isFile = QFileInfo(strFileOrName).isFile();
    if (!isFile && !database.listLibraries().contains(strFileOrName)) {
        const QStringList known = database.listLibraries();
        throw Failure(QStringLiteral("%1 is neither a file nor a saved library; %2")
                          .arg(strFileOrName, known.isEmpty()
                                                  ? QStringLiteral("no library is saved")
                                                  : QStringLiteral("saved are ") + known.join(QStringLiteral(", "))),
                      adviceAgainst(strFileOrName));
    }
    const QByteArray bytes = isFile ? checkedBytes(strFileOrName) : QByteArray();
    // Tables over wavelength take care of bands; those of pairs as results have them are exact.
    const bool ours = isPairTable(bytes) && (!bTables || isTimeTable(bytes) || isChannelTable(bytes));
    if (bTables && !ours && !SpectraTable::isLibrary(bytes) && !bytes.trimmed().isEmpty()) {
        readTable(bytes);
        return;
    }
    if (ours) {
        m_spectra = readPairTable(bytes, strFileOrName);
    } else if (!(isFile ? database.loadLibraryFile(strFileOrName, m_spectra, m_strNote)
                        : database.loadLibrary(strFileOrName, m_spectra, m_strNote))) {
        throw Failure(QStringLiteral("%1: this is no spectrum library (lines \"$,NumSpec,n\", \"$,Color,...\", "
                                     "\"Excitation,Emission,names...\", then one line a pair)")
                          .arg(strFileOrName));
    }
    if (m_spectra.isEmpty()) {
        throw Failure(QStringLiteral("%1: the library holds no spectrum").arg(strFileOrName));
    }
    // Every line with values gives one to each spectrum.
    if (m_spectra.first()->points.isEmpty()) {
        throw Failure(QStringLiteral("%1: the library holds no value; it takes a line \"Excitation,Emission,names...\" "
                                     "and behind it one line a pair")
                          .arg(m_strSource));
    }
}

void LibrarySpectra::selectAll()
{
    for (auto* spectrum : m_spectra) {
        spectrum->settings.selected = true;
    }
}

QString LibrarySpectra::fileOf(const QString& strFileOrName)
{
    const QFileInfo file(strFileOrName);
    return file.isFile() ? file.absoluteFilePath() : SpumKyvoDatabase::fileOfLibrary(strFileOrName);
}

QList<SpectrumPlotParams*> LibrarySpectra::fitTo(const QList<KeyPair>& pairs, int nAxis) const
{
    return fitTo(bandsOf(pairs), nAxis);
}

QList<SpectrumPlotParams*> LibrarySpectra::fitTo(const QList<SpectralBand>& bands, int nAxis) const
{
    if (m_bTable && nAxis == SPECTRUMAXIS_TIME) {
        throw Failure(
            QStringLiteral("%1: this is a table over wavelength, and the sequence is a temporal one").arg(m_strSource));
    }
    QList<KeyPair> pairs;
    for (const SpectralBand& band : bands) {
        pairs.append(band.pair);
    }
    std::vector<std::unique_ptr<SpectrumPlotParams>> fitted;
    const auto add = [&](std::unique_ptr<SpectrumPlotParams> pSpectrum) {
        checkValues(m_strSource, *pSpectrum, pSpectrum->values());
        pSpectrum->settings.index = static_cast<int>(fitted.size());
        fitted.push_back(std::move(pSpectrum));
    };
    for (int k = 0; k < m_table.names().size(); ++k) {
        add(spectrumOfTable(k, bands, pairs, nAxis));
    }
    for (const auto* spectrum : m_spectra) {
        if (!spectrum->settings.selected) {
            continue;
        }
        if (!spectrum->coversPairs(pairs)) {
            throw Failure(QStringLiteral("%1: the spectrum \"%2\" has no value for %3")
                              .arg(m_strSource, spectrum->settings.name, missingPairs(*spectrum, pairs)));
        }
        add(std::make_unique<SpectrumPlotParams>(spectrumOnPairs(*spectrum, pairs, nAxis)));
    }
    if (fitted.empty()) {
        throw Failure(QStringLiteral("%1: no spectrum of the library is selected").arg(m_strSource));
    }
    QList<SpectrumPlotParams*> list;
    for (auto& spectrum : fitted) {
        list.append(spectrum.release());
    }
    return list;
}

std::unique_ptr<SpectrumPlotParams> LibrarySpectra::spectrumOfTable(int k, const QList<SpectralBand>& bands,
                                                                    const QList<KeyPair>& pairs, int nAxis) const
{
    auto pSpectrum = std::make_unique<SpectrumPlotParams>();
    pSpectrum->axis = nAxis;
    pSpectrum->settings.name = m_table.names().at(k);
    pSpectrum->settings.color = defaultSpectrumColor(k);
    pSpectrum->origin = QFileInfo(m_strSource).fileName().replace(QLatin1Char(','), QLatin1Char(';'));
    pSpectrum->setPairs(pairs);
    pSpectrum->setValues(tableOnBands(m_table, k, bands, nAxis, m_strSource));
    return pSpectrum;
}

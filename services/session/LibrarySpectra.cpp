// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/LibrarySpectra.h"

#include "platform/orvutils/InputFile.h"
#include "services/basis/Failure.h"
#include "services/session/PairSelection.h"
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

// Refuses a file beyond what a library can be, before its spectra take memory.
void checkSize(const QString& strFile)
{
    constexpr int maxMebibytes = 16;
    constexpr int maxLines = 100000;
    QByteArray text;
    QString error;
    if (!orv::readInput(strFile, maxMebibytes, QStringLiteral("library"), &text, &error)) {
        throw Failure(error);
    }
    if (text.count('\n') > maxLines) {
        throw Failure(QStringLiteral("%1: more than %2 lines, no library is that long").arg(strFile).arg(maxLines));
    }
}

} // namespace

LibrarySpectra::~LibrarySpectra()
{
    qDeleteAll(m_spectra);
}

void LibrarySpectra::load(const QString& strFileOrName)
{
    m_strSource = strFileOrName;
    SpumKyvoDatabase database;
    const bool isFile = QFileInfo(strFileOrName).isFile();
    if (!isFile && !database.listLibraries().contains(strFileOrName)) {
        const QStringList known = database.listLibraries();
        throw Failure(QStringLiteral("%1 is neither a file nor a saved library; %2")
                          .arg(strFileOrName, known.isEmpty()
                                                  ? QStringLiteral("no library is saved")
                                                  : QStringLiteral("saved are ") + known.join(QStringLiteral(", "))));
    }
    if (isFile) {
        checkSize(strFileOrName);
    }
    const bool loaded = isFile ? database.loadLibraryFile(strFileOrName, m_spectra, m_strNote)
                               : database.loadLibrary(strFileOrName, m_spectra, m_strNote);
    if (!loaded) {
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

QString LibrarySpectra::fileOf(const QString& strFileOrName)
{
    const QFileInfo file(strFileOrName);
    return file.isFile() ? file.absoluteFilePath() : SpumKyvoDatabase::fileOfLibrary(strFileOrName);
}

QList<SpectrumPlotParams*> LibrarySpectra::fitTo(const QList<KeyPair>& pairs, int nAxis) const
{
    std::vector<std::unique_ptr<SpectrumPlotParams>> fitted;
    for (const auto* spectrum : m_spectra) {
        if (!spectrum->settings.selected) {
            continue;
        }
        if (!spectrum->coversPairs(pairs)) {
            throw Failure(QStringLiteral("%1: the spectrum \"%2\" has no value for %3")
                              .arg(m_strSource, spectrum->settings.name, missingPairs(*spectrum, pairs)));
        }
        auto copy = std::make_unique<SpectrumPlotParams>(spectrumOnPairs(*spectrum, pairs, nAxis));
        checkValues(m_strSource, *copy, copy->values());
        copy->settings.index = static_cast<int>(fitted.size());
        fitted.push_back(std::move(copy));
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

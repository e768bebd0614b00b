// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/cli/LibrarySpectra.h"

#include "spectra/SpectrumPlotParams.h"
#include "spectra/SpumKyvoDatabase.h"
#include "workbench/cli/CliFailure.h"
#include "workbench/cli/PairSelection.h"

#include <QFileInfo>

#include <cmath>
#include <memory>

namespace {

QString missingPairs(const SpectrumPlotParams& spectrum, const QList<KeyPair>& pairs)
{
    QList<KeyPair> missing;
    for (const auto& pair : pairs)
        if (!spectrum.coversPairs({pair}))
            missing.append(pair);
    return pairsText(missing);
}

void checkValues(const SpectrumPlotParams& spectrum, const XTNT::Vector<double>& values)
{
    for (long long i = 0; i < values.n_; ++i)
        if (!std::isfinite(values[i]))
            throw CliFailure(
                QStringLiteral("the spectrum \"%1\" holds a value that is not a number").arg(spectrum.settings.name));
    if (!(values.Max() > 0.0))
        throw CliFailure(QStringLiteral("the spectrum \"%1\" has no value above 0 at the selected images")
                             .arg(spectrum.settings.name));
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
        throw CliFailure(
            QStringLiteral("%1 is neither a file nor a saved library; %2")
                .arg(strFileOrName, known.isEmpty() ? QStringLiteral("no library is saved")
                                                    : QStringLiteral("saved are ") + known.join(QStringLiteral(", "))));
    }
    const bool loaded = isFile ? database.loadLibraryFile(strFileOrName, m_spectra, m_strNote)
                               : database.loadLibrary(strFileOrName, m_spectra, m_strNote);
    if (!loaded)
        throw CliFailure(QStringLiteral("%1: this is no spectrum library (lines \"$,NumSpec,n\", \"$,Color,...\", "
                                        "\"Excitation,Emission,names...\", then one line a pair)")
                             .arg(strFileOrName));
    if (m_spectra.isEmpty())
        throw CliFailure(QStringLiteral("%1: the library holds no spectrum").arg(strFileOrName));
}

QList<SpectrumPlotParams*> LibrarySpectra::fitTo(const QList<KeyPair>& pairs, int nAxis) const
{
    std::vector<std::unique_ptr<SpectrumPlotParams>> fitted;
    for (const auto* spectrum : m_spectra) {
        if (!spectrum->settings.selected)
            continue;
        if (!spectrum->coversPairs(pairs))
            throw CliFailure(QStringLiteral("%1: the spectrum \"%2\" has no value for %3")
                                 .arg(m_strSource, spectrum->settings.name, missingPairs(*spectrum, pairs)));
        const auto values = spectrum->valuesAt(pairs);
        checkValues(*spectrum, values);
        auto copy = std::make_unique<SpectrumPlotParams>(*spectrum);
        copy->axis = nAxis;
        copy->settings.index = static_cast<int>(fitted.size());
        copy->setPairs(pairs);
        copy->setValues(values);
        fitted.push_back(std::move(copy));
    }
    if (fitted.empty())
        throw CliFailure(QStringLiteral("%1: no spectrum of the library is selected").arg(m_strSource));
    QList<SpectrumPlotParams*> list;
    for (auto& spectrum : fitted)
        list.append(spectrum.release());
    return list;
}

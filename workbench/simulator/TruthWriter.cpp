// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/TruthWriter.h"

#include "platform/orvimage/TiffIo.h"
#include "platform/orvutils/AtomicFile.h"
#include "spectra/DefaultColors.h"
#include "workbench/simulator/CameraModel.h"
#include "workbench/simulator/SceneModel.h"
#include "workbench/simulator/SimulationOptions.h"

#include <QDir>

#include <algorithm>

namespace {

using Spectra = std::vector<std::vector<double>>;

void appendHeader(QString& text, const QString& strKey, const QStringList& fields)
{
    text += QStringLiteral("$,%1,%2\n").arg(strKey, fields.join(QLatin1Char(',')));
}

QByteArray libraryText(const QStringList& names, const Spectra& spectra, const QList<Band>& bands,
                       const QString& strNote)
{
    QStringList colors;
    QStringList origins;
    QStringList selected;
    for (int i = 0; i < names.size(); ++i) {
        colors.append(defaultSpectrumColor(i));
        origins.append(QStringLiteral("simulation"));
        selected.append(QStringLiteral("1"));
    }
    QString text;
    appendHeader(text, QStringLiteral("Note"), {strNote});
    appendHeader(text, QStringLiteral("NumSpec"), {QString::number(names.size())});
    appendHeader(text, QStringLiteral("Color"), colors);
    appendHeader(text, QStringLiteral("Origin"), origins);
    appendHeader(text, QStringLiteral("Select"), selected);
    text += QStringLiteral("Excitation,Emission,") + names.join(QLatin1Char(',')) + QLatin1Char('\n');
    for (int j = 0; j < bands.size(); ++j) {
        text += QStringLiteral("%1,%2").arg(bands.at(j).filters.excitation).arg(bands.at(j).filters.emission);
        for (const std::vector<double>& spectrum : spectra)
            text += QLatin1Char(',') + exactText(spectrum[static_cast<std::size_t>(j)]);
        text += QLatin1Char('\n');
    }
    return text.toUtf8();
}

bool writeUnit(const QString& strFolder, tag_edisplayunit eUnit, const SceneModel& model,
               const SimulationOptions& options, const QList<Band>& bands, QString* pError)
{
    std::vector<double> units;
    for (const Band& band : bands)
        units.push_back(unitOfCount(options, band, eUnit));
    if (!QDir().mkpath(strFolder)) {
        *pError = QStringLiteral("%1: the folder cannot be made.").arg(strFolder);
        return false;
    }
    Spectra spectra = model.spectra;
    for (std::size_t k = 0; k < spectra.size(); ++k) {
        for (std::size_t j = 0; j < units.size(); ++j)
            spectra[k][j] *= units[j];
        const double top = *std::max_element(spectra[k].begin(), spectra[k].end());
        for (double& value : spectra[k])
            value /= top;
        std::vector<double> map = model.maps[k];
        for (double& value : map)
            value *= top;
        CILImage image = exactImage(map, model.size);
        image.m_fBinning = static_cast<float>(options.binning);
        const QString path = strFolder + QLatin1Char('/') + truthMapFile(model.names.at(static_cast<int>(k)));
        if (image.isEmpty() || !writeTiff(path, image, TiffWriteOptions(), pError)) {
            if (image.isEmpty())
                *pError = QStringLiteral("There is not enough memory for the true maps.");
            return false;
        }
    }
    const QString note = QStringLiteral("true spectra of a simulation in %1").arg(truthUnitFolder(eUnit));
    return orv::writeFileAtomically(strFolder + QStringLiteral("/spectra.csv"),
                                    libraryText(model.names, spectra, bands, note), pError);
}

} // namespace

QString truthUnitFolder(tag_edisplayunit eUnit)
{
    switch (eUnit) {
    case DISPLAYUNIT_COUNTS:
        return QStringLiteral("counts");
    case DISPLAYUNIT_RADIANCE:
        return QStringLiteral("radiance");
    case DISPLAYUNIT_RADIANT_EFFICIENCY:
        return QStringLiteral("radiant-efficiency");
    case DISPLAYUNIT_EFFICIENCY:
        return QStringLiteral("efficiency");
    }
    return QString();
}

QString truthMapFile(const QString& strComponent)
{
    QString name = strComponent;
    for (QChar& c : name)
        if (!c.isLetterOrNumber() && !QStringLiteral(" ._+-()").contains(c))
            c = QLatin1Char('_');
    return name + QStringLiteral(".tif");
}

bool writeTruth(const QString& strFolder, const SceneModel& model, const SimulationOptions& options,
                const QList<Band>& bands, QString* pError)
{
    for (const tag_edisplayunit unit :
         {DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANCE, DISPLAYUNIT_RADIANT_EFFICIENCY, DISPLAYUNIT_EFFICIENCY})
        if (!writeUnit(strFolder + truthUnitFolder(unit), unit, model, options, bands, pError))
            return false;
    return true;
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/SourcesCommand.h"

#include "host/CORVDatabase.h"
#include "services/basis/Failure.h"
#include "services/basis/ProbeNames.h"
#include "services/basis/TextTable.h"
#include "services/session/SourceCurve.h"
#include "windows/probeOffer.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Options.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>

namespace {

// Those of the list of probes, and behind them curves that a user's table has added without naming a probe.
QList<sProbeParameters> allSources()
{
    QList<sProbeParameters> sources = CORVDatabase::probeList();
    QStringList known;
    for (const auto& source : qAsConst(sources)) {
        known.append(source.name);
    }
    for (const QString& name : namesWithoutFilter(CORVDatabase::getLIBSourceList()) + CORVDatabase::getSourceList() +
                                   CORVDatabase::getRADSourceList()) {
        // An isotope that the user states has no light of its own.
        if (!known.contains(name) && name != QLatin1String("Undefined")) {
            known.append(name);
            sProbeParameters source;
            source.name = name;
            source.kind = QStringLiteral("other");
            sources.append(source);
        }
    }
    return sources;
}

bool isMeant(const sProbeParameters& source, const QString& strText)
{
    return strText.isEmpty() || source.name.contains(strText, Qt::CaseInsensitive) ||
           source.kind.compare(strText, Qt::CaseInsensitive) == 0 ||
           std::any_of(source.aliases.begin(), source.aliases.end(),
                       [&](const QString& alias) { return alias.contains(strText, Qt::CaseInsensitive); });
}

QString wavelengthText(double dWavelength)
{
    return std::isfinite(dWavelength) ? QString::number(dWavelength) : QString();
}

QJsonValue wavelengthJson(double dWavelength)
{
    return std::isfinite(dWavelength) ? QJsonValue(dWavelength) : QJsonValue(QJsonValue::Null);
}

} // namespace

void SourcesCommand::declare(CommandParser& parser) const
{
    parser.addPositionalArgument(
        QStringLiteral("TEXT"),
        QStringLiteral("Only those with that text in their name or another name in use, or of that "
                       "kind (fluorophore, luciferase, autofluorescence, radioactive)."),
        QStringLiteral("[TEXT]"));
}

QList<CommandManual::Example> SourcesCommand::examples() const
{
    return {{QStringLiteral("spum sources fluorophore"),
             QStringLiteral("The dyes, with their peaks and other names in use.")},
            {QStringLiteral("spum sources AF7"), QStringLiteral("Those with that text in a name.")}};
}

void SourcesCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    if (parser.positionalArguments().size() > 1) {
        refuseUsage("sources", QStringLiteral("sources takes one text at most."));
    }
    const QString text = parser.positionalArguments().value(0);
    TextTable table({QStringLiteral("name"), QStringLiteral("kind"), QStringLiteral("emission"),
                     QStringLiteral("excitation"), QStringLiteral("other names")});
    QJsonArray sources;
    QStringList names;
    for (const sProbeParameters& source : allSources()) {
        names.append(source.name);
        if (!isMeant(source, text)) {
            continue;
        }
        const double emission = SourceCurve::peakOf(source.name + QStringLiteral("Em"));
        const double excitation = SourceCurve::peakOf(source.name + QStringLiteral("Ex"));
        table.addRow({source.name, source.kind, wavelengthText(emission), wavelengthText(excitation),
                      source.aliases.join(QStringLiteral("; "))});
        sources.append(QJsonObject{{"name", source.name},
                                   {"kind", source.kind},
                                   {"aliases", QJsonArray::fromStringList(source.aliases)},
                                   {"emissionPeak", wavelengthJson(emission)},
                                   {"excitationPeak", wavelengthJson(excitation)}});
    }
    if (sources.isEmpty()) {
        throw Failure(QStringLiteral("the database has no source \"%1\"%2").arg(text, nearestProbesText(text, names)));
    }
    session.answer(QStringLiteral("Peaks in nm.\n\n") + table.toText());
    session.answerJson(QJsonObject{{"sources", sources}});
}

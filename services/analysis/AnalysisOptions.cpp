// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/AnalysisOptions.h"

#include "services/basis/CliFailure.h"
#include "services/basis/UnitNames.h"

#include <QCommandLineParser>

namespace {

int unitOf(const QString& strText)
{
    const int unit = UnitNames::fromText(strText);
    if (unit < 0) {
        throw CliFailure(QStringLiteral("--unit takes %1, not \"%2\".")
                             .arg(UnitNames::options().join(QStringLiteral(", ")), strText),
                         CliFailure::Usage);
    }
    return unit;
}

int binningOf(const QString& strText)
{
    bool ok = false;
    const int binning = strText.toInt(&ok);
    if (!ok || binning < 1 || binning > 64) {
        throw CliFailure(QStringLiteral("--binning takes a whole number from 1 to 64, not \"%1\".").arg(strText),
                         CliFailure::Usage);
    }
    return binning;
}

} // namespace

void declareAnalysisOptions(QCommandLineParser& parser, const QString& strMaskDefault, const QString& strOutDefault)
{
    parser.addPositionalArgument(QStringLiteral("SEQ"), QStringLiteral("Folder of the sequence."));
    const auto option = [&parser](const char* pName, const QString& strText, const char* pValue) {
        parser.addOption({QLatin1String(pName), strText, QLatin1String(pValue)});
    };
    option("select",
           QStringLiteral("Images to use: EX/EM,EX/EM,... (INTERVAL/TIME in a temporal sequence), * for any."),
           "PAIRS");
    declareMaskOptions(parser, strMaskDefault);
    option("unit", QStringLiteral("counts, radiance, radiant-efficiency or efficiency; the best that the images have."),
           "UNIT");
    option("binning", QStringLiteral("Binning of the analysis; the images' most common one."), "N");
    option("out", QStringLiteral("Folder for the results; %1.").arg(strOutDefault), "DIR");
}

AnalysisRequest analysisRequestOf(const QCommandLineParser& parser, const QString& strCommand,
                                  MaskOption::Kind eMaskDefault)
{
    const auto value = [&parser](const char* pName) { return parser.value(QLatin1String(pName)); };
    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() != 1) {
        throw CliFailure(QStringLiteral("%1 takes one sequence. See \"spum %1 --help\".").arg(strCommand),
                         CliFailure::Usage);
    }
    AnalysisRequest request;
    request.sequence = arguments[0];
    request.select = value("select");
    if (parser.isSet(QStringLiteral("select")) && request.select.trimmed().isEmpty()) {
        throw CliFailure(QStringLiteral("--select names no image."), CliFailure::Usage);
    }
    request.mask = maskOptionOf(parser, eMaskDefault);
    if (!value("unit").isEmpty()) {
        request.unit = unitOf(value("unit"));
    }
    if (!value("binning").isEmpty()) {
        request.binning = binningOf(value("binning"));
    }
    request.out = value("out");
    request.force = parser.isSet(QStringLiteral("force"));
    return request;
}

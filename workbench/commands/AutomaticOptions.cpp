// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/AutomaticOptions.h"

#include "workbench/commands/CallErrors.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Options.h"

#include <QCommandLineParser>

#include <cmath>

namespace {

// As in the wizard's field.
constexpr double smallestHalfLife = 0.01;
constexpr double largestHalfLife = 999999999.0;
constexpr int mostComponents = 1000;

QStringList namesOf(const QString& strText)
{
    QStringList names;
    for (const QString& part : strText.split(QLatin1Char(','))) {
        names.append(part.trimmed());
        if (names.last().isEmpty()) {
            refuseUsage(
                "unmix",
                QStringLiteral("--components takes names split by commas; one in \"%1\" is empty.").arg(strText));
        }
    }
    return names;
}

int countOf(const QString& strText)
{
    bool good = false;
    const int count = strText.toInt(&good);
    if (!good || count < 1 || count > mostComponents) {
        refuseUsage("unmix", QStringLiteral("--ncomponents takes a whole number from 2 on, not \"%1\".").arg(strText));
    }
    return count;
}

double halfLifeOf(const QString& strText)
{
    if (strText == QLatin1String("auto")) {
        return 0.0;
    }
    bool good = false;
    const double minutes = strText.toDouble(&good);
    if (!good || !(minutes >= smallestHalfLife && minutes <= largestHalfLife)) {
        refuseUsage("unmix", QStringLiteral("--decay takes auto or a half life in minutes from %1 to %2, not \"%3\".")
                                 .arg(smallestHalfLife)
                                 .arg(largestHalfLife, 0, 'f', 0)
                                 .arg(strText));
    }
    return minutes;
}

} // namespace

void declareAutomaticOptions(CommandParser& parser)
{
    parser.addOption(
        {QStringLiteral("components"),
         QStringLiteral("Names of the components to resolve, split by commas: TissueAF, Food, probes of the "
                        "database (\"spum sources\"; other names in use serve, as AF750), Unknown. They tell the "
                        "method where each lies in the spectrum; with one "
                        "Unknown among them nothing is predicted. Without it: TissueAF, the probes of the "
                        "sequence, and Food where fluorescent images show it."),
         QStringLiteral("NAMES")});
    parser.addOption(
        {QStringLiteral("any-name"), QStringLiteral("--components may have names that the database does not know.")});
    parser.addOption({QStringLiteral("ncomponents"),
                      QStringLiteral("So many components of which nothing is known; they are named UMX1, UMX2, ... "
                                     "Every automatic run says how many stand above the noise."),
                      QStringLiteral("N")});
    parser.addOption(
        {QStringLiteral("beyond-six"), QStringLiteral("Take more than 6 components, up to the number of images.")});
    parser.addOption(
        {QStringLiteral("no-refinement"),
         QStringLiteral("Leave the answer by number alone as the clusters of pixels lead to it. Without it "
                        "imported images are resolved again from their purest pixels, each weighted by "
                        "its noise, and an offset of the camera that is plain to see is taken off. "
                        "--save keeps the first answer.")});
    parser.addOption({QStringLiteral("constraints"),
                      QStringLiteral("Predict from the names where each component may lie (the default).")});
    parser.addOption({QStringLiteral("no-constraints"),
                      QStringLiteral("Predict nothing; the components are then named UMX1, UMX2, ...")});
    parser.addOption(
        {QStringLiteral("decay"),
         QStringLiteral("Correct for the decay of the Cherenkov isotope in the sequence, of that half life; "
                        "auto: that of the database."),
         QStringLiteral("MINUTES|auto")});
}

QStringList givenAutomaticOptions(const QCommandLineParser& parser)
{
    QStringList given;
    for (const char* name : {"components", "any-name", "ncomponents", "beyond-six", "no-refinement", "constraints",
                             "no-constraints", "decay"}) {
        if (parser.isSet(QLatin1String(name))) {
            given.append(QStringLiteral("--") + QLatin1String(name));
        }
    }
    return given;
}

AutomaticRequest automaticRequestOf(const QCommandLineParser& parser)
{
    const auto isSet = [&parser](const char* pName) { return parser.isSet(QLatin1String(pName)); };
    const auto exclude = [&isSet](const char* pOne, const char* pOther) {
        if (isSet(pOne) && isSet(pOther)) {
            refuseUsage(
                "unmix",
                QStringLiteral("--%1 and --%2 exclude each other.").arg(QLatin1String(pOne), QLatin1String(pOther)));
        }
    };
    AutomaticRequest request;
    request.anyName = isSet("any-name");
    request.useConstraints = !isSet("no-constraints");
    request.constraintsAsked = isSet("constraints");
    request.correctDecay = isSet("decay");
    request.beyondSix = isSet("beyond-six");
    request.refine = !isSet("no-refinement");
    CallErrors errors(QStringLiteral("unmix"));
    errors.collect([&] { exclude("components", "ncomponents"); });
    errors.collect([&] { exclude("constraints", "no-constraints"); });
    errors.collect([&] {
        if (isSet("components")) {
            request.components = namesOf(parser.value(QStringLiteral("components")));
        }
    });
    errors.collect([&] {
        if (isSet("ncomponents")) {
            request.count = countOf(parser.value(QStringLiteral("ncomponents")));
        }
    });
    errors.collect([&] {
        if (request.correctDecay) {
            request.halfLifeMinutes = halfLifeOf(parser.value(QStringLiteral("decay")));
        }
    });
    errors.throwAll();
    return request;
}

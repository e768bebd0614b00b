// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/PictureOptions.h"

#include "workbench/commands/CallErrors.h"
#include "workbench/commands/CommandParser.h"

#include <QMap>
#include <QRegularExpression>

namespace {

const QMap<QString, MapScale>& scales()
{
    static const QMap<QString, MapScale> list = {{QStringLiteral("own"), MapScale::Own},
                                                 {QStringLiteral("component"), MapScale::Component},
                                                 {QStringLiteral("all"), MapScale::All}};
    return list;
}

bool isGiven(const QCommandLineParser& parser, const char* pName)
{
    return parser.optionNames().contains(QLatin1String(pName));
}

} // namespace

void declareColorsOption(CommandParser& parser)
{
    const QStringList all = colorsOnOffer();
    const QStringList others = all.mid(0, all.indexOf(QStringLiteral("viridis")));
    parser.addOption({QStringLiteral("colors"),
                      QStringLiteral("Colour table of the maps' pictures: viridis, magma, inferno, plasma and cividis "
                                     "rise evenly in lightness; %1. \":reversed\" behind it turns it round. Without it "
                                     "the sequence's own.")
                          .arg(others.join(QStringLiteral(", "))),
                      QStringLiteral("TABLE")},
                     all.filter(QRegularExpression(QStringLiteral("^\\S+$")))); // words a shell completes
}

void declarePictureOptions(CommandParser& parser)
{
    declareColorsOption(parser);
    parser.addOption(
        {QStringLiteral("scale"),
         QStringLiteral("Which pictures of maps share a scale: own (none), component (those of a component "
                        "at all spots of a scan) or all. Default: component."),
         QStringLiteral("WHICH")},
        scales().keys());
}

PictureRequest pictureRequestOf(const QCommandLineParser& parser, const char* pCommand)
{
    PictureRequest request;
    CallErrors errors((QLatin1String(pCommand)));
    if (isGiven(parser, "colors")) {
        const QString text = parser.value(QStringLiteral("colors"));
        if (!takeColors(text, &request)) {
            errors.refuse(
                QStringLiteral("--colors takes %1, not \"%2\".").arg(colorsOnOffer().join(QStringLiteral(", ")), text));
        }
    }
    if (isGiven(parser, "scale")) {
        const QString text = parser.value(QStringLiteral("scale"));
        if (!scales().contains(text)) {
            errors.refuse(QStringLiteral("--scale takes own, component or all, not \"%1\".").arg(text));
        }
        request.scale = scales().value(text);
    }
    errors.throwAll();
    return request;
}

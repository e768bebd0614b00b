// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/MaskOptions.h"

#include "services/analysis/analysedRegion.h"
#include "services/basis/Failure.h"
#include "workbench/commands/CommandParser.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

namespace {

const QString maskName = QStringLiteral("mask");
const QString thresholdName = QStringLiteral("threshold");

// X,Y,W,H behind the colon.
MaskRequest shapeOf(MaskRequest::Kind eKind, const QString& strText)
{
    MaskRequest option;
    option.kind = eKind;
    const QStringList numbers = strText.section(QLatin1Char(':'), 1).split(QLatin1Char(','));
    int* const targets[] = {&option.x, &option.y, &option.width, &option.height};
    bool good = numbers.size() == 4;
    for (int i = 0; good && i < 4; ++i) {
        *targets[i] = numbers[i].toInt(&good);
    }
    if (!good || option.width < 1 || option.height < 1) {
        throw Failure(QStringLiteral("--mask: \"%1\" is not of the form %2:X,Y,W,H in whole pixels")
                          .arg(strText, strText.section(QLatin1Char(':'), 0, 0)),
                      Failure::Kind::BadRequest);
    }
    return option;
}

bool isRegionText(const QString& strText)
{
    return strText.startsWith(QLatin1String("roi:")) || strText.startsWith(QLatin1String("polygon:")) ||
           strText.startsWith(QLatin1String("freehand:"));
}

// Of the option's text; what is none of the others is a file.
MaskRequest::Kind kindOf(const QString& strText)
{
    return strText == QLatin1String("none")                ? MaskRequest::Kind::None
           : strText == QLatin1String("auto")              ? MaskRequest::Kind::Photograph
           : strText.startsWith(QLatin1String("rect:"))    ? MaskRequest::Kind::Rectangle
           : strText.startsWith(QLatin1String("ellipse:")) ? MaskRequest::Kind::Ellipse
           : isRegionText(strText)                         ? MaskRequest::Kind::Region
                                                           : MaskRequest::Kind::File;
}

MaskRequest parseMask(const QString& strText)
{
    const bool shape = strText.contains(QRegularExpression(QStringLiteral("^[A-Za-z]+:[-0-9., ]*$")));
    if (strText.isEmpty() || (namesMaskFile(strText) && shape && !QFileInfo::exists(strText))) {
        throw Failure(QStringLiteral("--mask takes auto, none, rect:X,Y,W,H, ellipse:X,Y,W,H, "
                                     "polygon:X1,Y1,X2,Y2,..., roi:REGION or a file%1")
                          .arg(shape ? QStringLiteral(", not \"%1\"").arg(strText) : QString()),
                      Failure::Kind::BadRequest);
    }
    MaskRequest option;
    option.kind = kindOf(strText);
    if (option.kind == MaskRequest::Kind::Rectangle || option.kind == MaskRequest::Kind::Ellipse) {
        return shapeOf(option.kind, strText);
    }
    if (option.kind == MaskRequest::Kind::Region) {
        const QString reason = reasonAgainstRegionText(strText);
        if (!reason.isEmpty()) {
            throw Failure(QStringLiteral("--mask: \"%1\": %2").arg(strText, reason), Failure::Kind::BadRequest);
        }
        option.region = strText;
    }
    if (option.kind == MaskRequest::Kind::File) {
        option.file = strText;
    }
    return option;
}

double thresholdOf(const QString& strText)
{
    bool good = false;
    const double percent = strText.toDouble(&good);
    if (!good || !(percent >= 0.0 && percent <= 100.0)) {
        throw Failure(QStringLiteral("--threshold takes a number from 0 to 100 (percent of the photograph's range), "
                                     "not \"%1\"")
                          .arg(strText),
                      Failure::Kind::BadRequest);
    }
    return percent;
}

} // namespace

void declareMaskOptions(CommandParser& parser, const QString& strDefaults)
{
    parser.addOption(
        {maskName,
         QStringLiteral("Pixels to analyse. auto: where the photograph is bright; none: all; "
                        "rect:X,Y,W,H, ellipse:X,Y,W,H or polygon:X1,Y1,X2,Y2,...: pixels of the analysis, from "
                        "the left and from the top; roi:NAME: a region of interest of the sequence (\"spum roi\"); "
                        "or a TIFF or PNG image, pixels above 0, such as the mask.png of a result. %1")
             .arg(strDefaults),
         QStringLiteral("MASK")});
    parser.addOption({thresholdName,
                      QStringLiteral("Brightness above which the photograph counts for --mask auto, in percent of its "
                                     "range; found by itself."),
                      QStringLiteral("PERCENT")});
}

bool namesMaskFile(const QString& strText)
{
    return kindOf(strText) == MaskRequest::Kind::File;
}

MaskRequest maskOptionOf(const QCommandLineParser& parser, MaskRequest::Kind eDefault)
{
    MaskRequest option;
    option.kind = eDefault;
    if (parser.isSet(maskName)) {
        option = parseMask(parser.value(maskName));
        option.asked = true;
    }
    if (!parser.isSet(thresholdName)) {
        return option;
    }
    if (option.kind != MaskRequest::Kind::Photograph) {
        throw Failure(QStringLiteral("--threshold goes with --mask auto"), Failure::Kind::BadRequest);
    }
    option.threshold = thresholdOf(parser.value(thresholdName));
    option.asked = true;
    return option;
}

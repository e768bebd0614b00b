// SPDX-License-Identifier: GPL-3.0-or-later
#include "odd_inputs/OddCase.h"
#include "odd_inputs/OddTexts.h"

namespace {

const QString twoRegions = QStringLiteral("N1, 500nm, 2.5 s, 2 regions");

// A click info with this section of regions.
OddCase regions(const QByteArray& name, const std::function<QByteArray()>& entries, OddCase::Outcome outcome,
                const QString& says)
{
    return {"Regions" + name,
            OddReaders::dataset(),
            QStringLiteral("ClickInfo.txt"),
            [entries](const QString& path) {
                const QByteArray text = "\n[ROIs]\n" + entries() + "\n# end";
                OddTexts::putDataset(path, OddTexts::clickInfo("N1", "500nm").replace("\n# end", text));
            },
            outcome,
            says};
}

OddCase oneShape(const QByteArray& name, const QByteArray& shape, const QString& reason)
{
    return regions(
        name, [shape] { return "ROI 1 Name: a\nROI 1 Shape: " + shape + "\n"; }, OddCase::Warned,
        "{path}: section \"ROIs\": \"ROI 1 Shape\" is \"" + reason + "; the region is left out");
}

const QByteArray twoSound = "ROI 1 Name: a\nROI 1 Shape: rect:0,0,8,8\nROI 2 Name: b\nROI 2 Shape: ellipse:4,4,8,8\n";

} // namespace

OddCases regionCases()
{
    using C = OddCase;
    const auto section = [](const char* what) { return QStringLiteral("{path}: section \"ROIs\": ") + what; };
    return {
        regions(
            "Sound", [] { return twoSound; }, C::Silent, twoRegions),
        oneShape("OfUnknownShape", "star:1,2,3",
                 "star:1,2,3\": a shape begins with \"rect:\", \"ellipse:\", \"polygon:\" or \"freehand:\""),
        oneShape("OfNegativeWidth", "rect:0,0,-8,8", "rect:0,0,-8,8\": width and height must be above 0"),
        oneShape("WithNumbersThatAreNone", "rect:0,nan,8,8", "rect:0,nan,8,8\": a coordinate is too large"),
        oneShape("WithHugeNumbers", "rect:0,0,1e300,1e300", "rect:0,0,1e300,1e300\": a coordinate is too large"),
        oneShape("OfTwoCorners", "polygon:0,0,8,8", "polygon:0,0,8,8\": an outline takes three points at least"),
        oneShape("OfTenThousandAndOneCorners", "polygon:" + OddTexts::many("0,0", ",%,9", 10001),
                 "polygon:0,0,{...}\": an outline has 10000 points at most"),
        oneShape("OfAMillionCorners", "polygon:" + QByteArray("1,2,").repeated(1000000) + "1,2",
                 "polygon:1,2,{...}\": an outline has 10000 points at most"),
        regions(
            "WithoutShape", [] { return QByteArray("ROI 1 Name: a\n"); }, C::Warned,
            section("\"ROI 1 Shape\" is missing, the region is left out")),
        regions(
            "WithOneNameTwice", [] { return QByteArray(twoSound).replace("Name: b", "Name: a"); }, C::Warned,
            section("two regions are called \"a\", the later becomes \"a 2\"")),
        regions(
            "WithOneKeyTwice", [] { return twoSound + "ROI 1 Name: c\n"; }, C::Warned,
            section("\"ROI 1 Name\" comes twice, the first counts")),
        regions(
            "WithNegativeCountOfPixels", [] { return twoSound + "ROI 1 Pixels: -5\n"; }, C::Warned,
            section("\"ROI 1 Pixels\" is \"-5\", which is no number of pixels")),
        regions(
            "WithDecimalComma", [] { return twoSound + "ROI 1 Pixels: 5\nROI 1 Mean: 2,5\n"; }, C::Warned,
            section("\"ROI 1 Mean\" is \"2,5\", which is no number")),
        regions(
            "WithNameOf100000Letters",
            [] { return QByteArray(twoSound).replace("Name: b", "Name: " + QByteArray(100000, 'x')); }, C::Warned,
            section("\"ROI 2 Name\" is longer than 200 characters, the region is called \"ROI 2\"")),
        regions(
            "SixtyThousand", [] { return OddTexts::many("", "ROI % Name: a\nROI % Shape: rect:0,0,8,8\n", 60000); },
            C::Warned, section("{n} more messages on regions of interest")),
        regions(
            "OfOneKey190000Times", [] { return OddTexts::many(twoSound, "ROI 1 Name: c%\n", 190000); }, C::Warned,
            section("{n} more messages on regions of interest")),
    };
}

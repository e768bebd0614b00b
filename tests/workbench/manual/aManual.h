// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/manual/CommandManual.h"

// The manual of a command that has one of each kind of entry.
inline CommandManual aManual()
{
    CommandManual manual;
    manual.name = QStringLiteral("tool paint");
    manual.summary = QStringLiteral("Paint a picture.");
    manual.usage = QStringLiteral("[options] PICTURE");
    CommandManual::Entry picture;
    picture.value = QStringLiteral("PICTURE");
    picture.text = QStringLiteral("What to paint.");
    manual.arguments = {picture};
    CommandManual::Entry help;
    help.names = QStringList{QStringLiteral("h"), QStringLiteral("help")};
    help.text = QStringLiteral("Tell the options.");
    CommandManual::Entry color;
    color.names = QStringList{QStringLiteral("color")};
    color.value = QStringLiteral("COLOR");
    color.words = QStringList{QStringLiteral("red"), QStringLiteral("green")};
    color.text = QStringLiteral("A colour: red or green. It's \"as is\", with a back\\slash and 5 ~ 6.");
    CommandManual::Entry out;
    out.names = QStringList{QStringLiteral("out")};
    out.value = QStringLiteral("FILE");
    out.text = QStringLiteral(".hidden files are written, too.");
    manual.options = {{QStringLiteral("Options"), {color, out}}, {QStringLiteral("Options of all"), {help}}};
    manual.examples = {{QStringLiteral("tool paint house --color red"), QStringLiteral("A red house.")}};
    return manual;
}

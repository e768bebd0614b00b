// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/RoiCall.h"

#include "platform/orvapi/ROISection.h"
#include "platform/orvapi/ROIShape.h"
#include "workbench/commands/ActionOptions.h"
#include "workbench/commands/CallErrors.h"
#include "workbench/commands/Options.h"

#include <QCommandLineParser>

namespace {

// Arguments of each action behind the sequence and its own name.
const QMap<QString, int>& actions()
{
    static const QMap<QString, int> list = {{QStringLiteral("add"), 0},
                                            {QStringLiteral("list"), 0},
                                            {QStringLiteral("measure"), 0},
                                            {QStringLiteral("remove"), 1},
                                            {QStringLiteral("rename"), 2}};
    return list;
}

const ActionOptions& optionsOfActions()
{
    static const QStringList add(QStringLiteral("add"));
    static const QStringList measure(QStringLiteral("measure"));
    static const ActionOptions owners = {{QStringLiteral("shape"), add},        {QStringLiteral("name"), add},
                                         {QStringLiteral("image-pixels"), add}, {QStringLiteral("unit"), measure},
                                         {QStringLiteral("result"), measure},   {QStringLiteral("csv"), measure},
                                         {QStringLiteral("force"), measure},    {QStringLiteral("save"), measure}};
    return owners;
}

void takeShape(const QCommandLineParser& parser, tagROIInfo* pShape, CallErrors& errors)
{
    QString reason;
    if (!parser.isSet(QStringLiteral("shape"))) {
        errors.refuse(QStringLiteral("add takes one --shape, such as rect:x,y,width,height."));
    } else if (!ROIShape::fromText(parser.value(QStringLiteral("shape")), pShape, &reason)) {
        errors.refuse(QStringLiteral("--shape: %1.").arg(reason));
    }
}

// A name that a region may have; `pWhat` is what the user gave it by.
QString newNameOf(const QString& strText, const char* pWhat, CallErrors& errors)
{
    const QString name = strText.trimmed();
    const QString reason = ROISection::reasonAgainstName(name);
    if (!reason.isEmpty()) {
        errors.refuse(QStringLiteral("%1: the name %2.").arg(QLatin1String(pWhat), reason));
    } else if (name == QLatin1String("all")) {
        errors.refuse(QStringLiteral("%1: \"all\" stands for all regions and names none.").arg(QLatin1String(pWhat)));
    }
    return name;
}

} // namespace

RoiCall RoiCall::of(const QCommandLineParser& parser)
{
    const QStringList arguments = parser.positionalArguments();
    RoiCall call;
    call.sequence = arguments.value(0);
    call.action = arguments.value(1);
    CallErrors errors(QStringLiteral("roi"));
    if (!actions().contains(call.action) && arguments.size() > 1 && actions().contains(call.sequence)) {
        errors.refuse(QStringLiteral("the sequence comes first: \"spum roi %1 %2\".").arg(call.action, call.sequence));
    } else if (!actions().contains(call.action) || arguments.size() != actions().value(call.action) + 2) {
        errors.refuse(QStringLiteral("roi takes: SEQ add --shape SHAPE; SEQ list; SEQ measure; SEQ remove NAME; or SEQ "
                                     "rename NAME NEW."));
    }
    if (actions().contains(call.action)) {
        refuseForeignOptions(parser, optionsOfActions(), call.action, QStringLiteral("roi SEQ ") + call.action, errors);
    }
    if (call.action == QLatin1String("add")) {
        takeShape(parser, &call.shape, errors);
        call.imagePixels = parser.isSet(QStringLiteral("image-pixels"));
        if (parser.isSet(QStringLiteral("name"))) {
            call.name = newNameOf(parser.value(QStringLiteral("name")), "--name", errors);
        }
    } else {
        call.name = arguments.value(2);
    }
    if (call.action == QLatin1String("rename") && arguments.size() > 3) {
        call.newName = newNameOf(arguments.at(3), "NEW", errors);
    }
    errors.collect([&] { call.unit = unitOption(parser, "roi"); });
    errors.throwAll();
    call.results = parser.values(QStringLiteral("result"));
    call.csv = parser.value(QStringLiteral("csv"));
    call.force = parser.isSet(QStringLiteral("force"));
    call.save = parser.isSet(QStringLiteral("save"));
    return call;
}

bool RoiCall::changes() const
{
    return action == QLatin1String("measure") ? save : action != QLatin1String("list");
}

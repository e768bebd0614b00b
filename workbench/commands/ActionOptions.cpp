// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/ActionOptions.h"

#include "workbench/commands/CallErrors.h"

#include <QCommandLineParser>

void refuseForeignOptions(const QCommandLineParser& parser, const ActionOptions& owners, const QString& strAction,
                          const QString& strCall, CallErrors& errors)
{
    for (auto owner = owners.cbegin(); owner != owners.cend(); ++owner) {
        if (parser.isSet(owner.key()) && !owner.value().contains(strAction)) {
            errors.refuse(QStringLiteral("--%1 does not go with \"spum %2\", but with %3.")
                              .arg(owner.key(), strCall, owner.value().join(QStringLiteral(", "))));
        }
    }
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/warnings/strictFailure.h"

Failure::Kind strictKind(const QList<RunWarning>& warnings)
{
    return errorsAmong(warnings).isEmpty() ? Failure::Kind::OnlyWarned : Failure::Kind::Failed;
}

Failure strictFailure(const QList<RunWarning>& warnings)
{
    return Failure(QStringLiteral("the results are written, with %1: %2")
                       .arg(warnings.size() == 1 ? QStringLiteral("a warning")
                                                 : QStringLiteral("%1 warnings").arg(warnings.size()),
                            codesOf(warnings).join(QStringLiteral(", "))),
                   strictKind(warnings));
}

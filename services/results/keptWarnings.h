// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/warnings/RunWarning.h"

#include <QList>
#include <QPair>
#include <QString>

class CORVSpumKyvo;

// The warnings of a result among its properties, which a saved result holds and windows list: "Warning" or "Error", and
// "CODE: sentence". A text that is none of these is no warning.
using ResultProperty = QPair<QString, QString>;

bool isWarning(const ResultProperty& property);
QList<RunWarning> warningsAmong(const QList<ResultProperty>& properties);
QList<ResultProperty> withoutWarnings(const QList<ResultProperty>& properties);
// Puts them behind the engine's other properties, in place of those of before.
void keepWarnings(const QList<RunWarning>& warnings, CORVSpumKyvo& engine);

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

class CallErrors;
class QCommandLineParser;

// Options of a command of several actions that not all of these have: the actions that an option goes with.
using ActionOptions = QMap<QString, QStringList>;

// Keeps a refusal of each option given that does not go with the action: a slip that must not pass in silence.
// `strCall` is the action as it is called, such as "results list".
void refuseForeignOptions(const QCommandLineParser& parser, const ActionOptions& owners, const QString& strAction,
                          const QString& strCall, CallErrors& errors);

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/batch/BatchJob.h"

#include <QList>
#include <QString>
#include <QStringList>

class QCommandLineParser;

// The options of an unmixing that a parser has met, whatever others it has; files absolute, from `strFolder` or the
// working folder.
QList<BatchOption> givenUnmixOptions(const QCommandLineParser& parser, const QString& strFolder);

// The same as the command takes them again in whatever folder, without the name under which the result was to be saved.
QStringList lastingUnmixArguments(const QCommandLineParser& parser);

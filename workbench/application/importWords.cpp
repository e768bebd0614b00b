// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/importWords.h"

#include <QPair>
#include <QRegularExpression>
#include <QVector>

QString importWords(const QString& strSentence)
{
    static const QVector<QPair<QString, QString>> words{
        {QStringLiteral("--interval S tells the seconds between frames (1 when they are seconds)"),
         QStringLiteral("\"Seconds between frames\" tells which (1 when they are seconds)")},
        {QStringLiteral("--interval S"), QStringLiteral("\"Seconds between frames\"")},
        {QStringLiteral(" and is not used; --images takes such a table"),
         QStringLiteral(" and is not used; \"Load table\" takes it")},
        {QStringLiteral("--follow reads it all the same"), QStringLiteral("copy it there to have it read")},
        {QStringLiteral("--force replaces it"), QStringLiteral("tick \"Replace it\" or choose another place")},
        {QStringLiteral("--z N takes one of them, --z max or mean makes one of all, --channels all for channels"),
         QStringLiteral("\"Depth\" takes one of them or makes one of all")},
        {QStringLiteral("--t N takes the channels of one time, --t max or mean those of all, --c N the times of one "
                        "channel"),
         QStringLiteral("\"Time\" takes the channels of one time or of all, \"Channel\" the times of one channel")},
        {QStringLiteral("--sizes crop, bin or pad brings them to one size"),
         QStringLiteral("\"Different sizes\" brings them to one")},
        {QStringLiteral("--sizes crop or pad brings them to one size"),
         QStringLiteral("crop or pad brings them to one size")},
        {QStringLiteral("--skip-invalid leaves such pixels out"),
         QStringLiteral("\"Leave out invalid pixels\" does so with them")},
        {QStringLiteral("--max-memory allows more"), QStringLiteral("the command line can allow more")}};
    QString sentence = strSentence;
    for (const auto& [from, to] : words) {
        sentence.replace(from, to);
    }
    return sentence;
}

int takeTableLine(QString* pError)
{
    static const QRegularExpression place(QStringLiteral("^inferred table:(\\d+): "));
    const QRegularExpressionMatch match = place.match(*pError);
    if (!match.hasMatch()) {
        return 0;
    }
    pError->remove(0, match.capturedLength());
    static const QRegularExpression line(QStringLiteral(" \\(line \\d+\\)"));
    pError->remove(line);
    return match.captured(1).toInt();
}

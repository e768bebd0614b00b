// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/childWords.h"

#include <csignal>

namespace {

const QString head = QStringLiteral("spum: ");
const QString warningHead = QStringLiteral("warning: ");

} // namespace

ChildWords childWords(const QByteArray& err, bool bFailed)
{
    QStringList told;
    for (const QString& line : QString::fromUtf8(err).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (line.startsWith(head) || told.isEmpty()) {
            told.append(line.startsWith(head) ? line.mid(head.size()) : line);
        } else {
            told.last() += QLatin1Char(' ') + line.trimmed();
        }
    }
    ChildWords words;
    for (int i = told.size() - 1; i >= 0; --i) {
        if (told[i].startsWith(warningHead)) {
            words.warnings.prepend(told[i].mid(warningHead.size()));
        } else if (bFailed && words.message.isEmpty()) {
            words.message = told[i];
        } else {
            words.warnings.prepend(told[i]);
        }
    }
    words.warnings.removeDuplicates();
    return words;
}

QString silentEndText(int nCode, bool bSignal)
{
    if (!bSignal) {
        return QStringLiteral("the program ended with status %1 and without a word").arg(nCode);
    }
    const QString text = QStringLiteral("the program was ended by signal %1").arg(nCode);
    return nCode == SIGKILL ? text + QStringLiteral(", as the system does when memory runs out") : text;
}

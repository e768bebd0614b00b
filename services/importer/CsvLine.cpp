// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/CsvLine.h"

#include "platform/orvutils/NumberText.h"

namespace {

const QChar quote = QLatin1Char('"');

// Reads a quoted field from the quote at `at` on; `at` then stands behind the closing quote. False without one.
bool readQuoted(const QString& line, int& at, QString& field)
{
    for (++at; at < line.size(); ++at) {
        if (line.at(at) != quote) {
            field += line.at(at);
        } else if (at + 1 < line.size() && line.at(at + 1) == quote) {
            field += quote;
            ++at;
        } else {
            ++at;
            return true;
        }
    }
    return false;
}

} // namespace

bool splitCsvLine(const QString& strLine, QChar separator, QStringList* pFields, QString* pError)
{
    pFields->clear();
    int at = 0;
    for (;;) {
        while (at < strLine.size() && strLine.at(at) != separator && strLine.at(at).isSpace()) {
            ++at;
        }
        QString field;
        const bool bQuoted = at < strLine.size() && strLine.at(at) == quote;
        if (bQuoted && !readQuoted(strLine, at, field)) {
            *pError = QStringLiteral("a quote is not closed");
            return false;
        }
        int end = strLine.indexOf(separator, at);
        end = end < 0 ? strLine.size() : end;
        const QString rest = strLine.mid(at, end - at).trimmed();
        if (bQuoted && !rest.isEmpty()) {
            *pError = QStringLiteral("text follows a closing quote");
            return false;
        }
        pFields->append(bQuoted ? field : rest);
        if (end == strLine.size()) {
            return true;
        }
        at = end + 1;
    }
}

QString csvField(const QString& strText)
{
    const bool bPlain =
        strText == strText.trimmed() && !strText.contains(QLatin1Char(',')) && !strText.contains(QLatin1Char('"'));
    return bPlain ? strText
                  : QLatin1Char('"') + QString(strText).replace(QLatin1Char('"'), QLatin1String("\"\"")) +
                        QLatin1Char('"');
}

QString csvNumber(const std::optional<double>& value)
{
    return value ? orv::shortestText(*value) : QString();
}

QString csvNumber(const std::optional<int>& value)
{
    return value ? QString::number(*value) : QString();
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/optionWords.h"

namespace {

const QChar single = QLatin1Char('\'');
const QChar both = QLatin1Char('"');
const QChar backslash = QLatin1Char('\\');

// Inside double quotes a backslash keeps these two apart from their meaning; before anything else it is itself.
bool isEscapable(QChar c)
{
    return c == both || c == backslash;
}

} // namespace

bool optionWords(const QString& strLine, QStringList* pWords, QString* pError)
{
    pWords->clear();
    QString word;
    bool inWord = false;
    QChar quote;
    for (int i = 0; i < strLine.size(); ++i) {
        const QChar c = strLine.at(i);
        if (!quote.isNull()) {
            if (c == quote) {
                quote = QChar();
            } else if (quote == both && c == backslash && i + 1 < strLine.size() && isEscapable(strLine.at(i + 1))) {
                word += strLine.at(++i);
            } else {
                word += c;
            }
        } else if (c == single || c == both) {
            quote = c;
            inWord = true;
        } else if (c == backslash) {
            if (i + 1 == strLine.size()) {
                *pError = QStringLiteral("nothing follows the last backslash");
                return false;
            }
            word += strLine.at(++i);
            inWord = true;
        } else if (!c.isSpace()) {
            word += c;
            inWord = true;
        } else if (inWord) {
            pWords->append(word);
            word.clear();
            inWord = false;
        }
    }
    if (!quote.isNull()) {
        *pError = QStringLiteral("a quote is not closed");
        return false;
    }
    if (inWord) {
        pWords->append(word);
    }
    return true;
}

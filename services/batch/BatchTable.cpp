// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/BatchTable.h"

#include "platform/orvutils/InputFile.h"
#include "services/basis/Failure.h"
#include "services/batch/optionWords.h"
#include "services/importer/CsvLine.h"

#include <QDir>
#include <QFileInfo>
#include <QTextCodec>

namespace {

// Ten thousand sequences with long paths need a quarter of this.
constexpr int maxMebibytes = 16;
constexpr int maxRows = 100000;

const QString pathColumn = QStringLiteral("path");
const QString nameColumn = QStringLiteral("name");
const QString groupColumn = QStringLiteral("group");
const QString optionsColumn = QStringLiteral("options");

QString decoded(const QByteArray& bytes)
{
    QTextCodec::ConverterState state;
    const QString text = QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars > 0 ? QString() : text;
}

} // namespace

BatchTable::BatchTable(const QString& strPath, const std::function<bool(const QString& strName)>& takesValue)
    : m_strPath(strPath)
{
    QByteArray bytes;
    QString error;
    if (!orv::readInput(strPath, maxMebibytes, QStringLiteral("table of sequences"), &bytes, &error)) {
        throw Failure(error);
    }
    const QString text = decoded(bytes);
    if (text.isEmpty() && !bytes.isEmpty()) {
        throw Failure(QStringLiteral("%1: this is no text in UTF-8").arg(strPath));
    }
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines[i].trimmed();
        if (line.isEmpty()) {
            continue;
        }
        if (m_columns.isEmpty()) {
            readHeader(line, i + 1, takesValue);
        } else {
            readRow(line, i + 1);
        }
        if (m_rows.size() > maxRows) {
            refuse(i + 1, QStringLiteral("more than %1 sequences").arg(maxRows));
        }
    }
    if (m_rows.isEmpty()) {
        throw Failure(QStringLiteral("%1: the table names no sequence; it takes a line with the column \"path\" and "
                                     "behind it a line a sequence")
                          .arg(strPath));
    }
}

void BatchTable::refuse(int nLine, const QString& strReason) const
{
    throw Failure(QStringLiteral("%1:%2: %3").arg(m_strPath, QString::number(nLine), strReason));
}

void BatchTable::readHeader(const QString& strLine, int nLine,
                            const std::function<bool(const QString& strName)>& takesValue)
{
    const bool semicolons = strLine.contains(QLatin1Char(';')) && !strLine.contains(QLatin1Char(','));
    m_separator = semicolons ? QLatin1Char(';') : QLatin1Char(',');
    QStringList fields;
    QString error;
    if (!splitCsvLine(strLine, m_separator, &fields, &error)) {
        refuse(nLine, error);
    }
    const QStringList own = {pathColumn, nameColumn, groupColumn, optionsColumn};
    for (const QString& field : qAsConst(fields)) {
        const QString column = field.toLower();
        if (m_columns.contains(column) && !column.isEmpty()) {
            refuse(nLine, QStringLiteral("the column \"%1\" occurs twice").arg(field));
        }
        const bool taken = own.contains(column) || (!column.isEmpty() && takesValue(column));
        if (!taken && !column.isEmpty()) {
            m_warnings.append(QStringLiteral("%1: the column \"%2\" is passed over").arg(m_strPath, field));
        }
        m_columns.append(taken ? column : QString());
    }
    if (!m_columns.contains(pathColumn)) {
        refuse(nLine, QStringLiteral("the first line names no column \"path\""));
    }
}

void BatchTable::readRow(const QString& strLine, int nLine)
{
    QStringList fields;
    QString error;
    if (!splitCsvLine(strLine, m_separator, &fields, &error)) {
        refuse(nLine, error);
    }
    if (fields.size() > m_columns.size()) {
        refuse(nLine, QStringLiteral("%1 fields where the first line has %2").arg(fields.size()).arg(m_columns.size()));
    }
    BatchRow row;
    row.place = QStringLiteral("%1:%2").arg(m_strPath, QString::number(nLine));
    QStringList words;
    for (int i = 0; i < fields.size(); ++i) {
        const QString& column = m_columns[i];
        const QString& field = fields[i];
        if (column.isEmpty() || field.isEmpty()) {
            continue;
        }
        if (column == pathColumn) {
            row.sequence = QDir::cleanPath(QFileInfo(m_strPath).absoluteDir().absoluteFilePath(field));
        } else if (column == nameColumn) {
            row.name = field;
        } else if (column == groupColumn) {
            row.group = field;
        } else if (column == optionsColumn) {
            if (!optionWords(field, &words, &error)) {
                refuse(nLine, error);
            }
        } else {
            row.words.append(QStringLiteral("--%1=%2").arg(column, field));
        }
    }
    if (row.sequence.isEmpty()) {
        refuse(nLine, QStringLiteral("the path is missing"));
    }
    row.words += words;
    m_rows.append(row);
}

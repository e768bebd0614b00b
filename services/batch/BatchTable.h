// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

// One row of a table of sequences.
struct BatchRow
{
    QString sequence; // absolute path
    QString name;     // of the folder of results; empty where the table leaves that open
    QString group;
    QStringList words; // options, as a command line has them
    QString place;     // "table.csv:3"
};

// A table of sequences to unmix. Its first line names the columns, in any order and case: path, name, group, options
// (as a line for a shell), and the name of any option that takes a value. Other columns are passed over with a warning.
// Relative paths of sequences count from the table's folder. Fields are separated by commas, or by semicolons when the
// first line has those and no comma; text is UTF-8, empty lines are skipped.
class BatchTable
{
public:
    // Reads the file; `takesValue` tells whether there is an option of that name with a value. Throws Failure
    // ("file:line: reason").
    BatchTable(const QString& strPath, const std::function<bool(const QString& strName)>& takesValue);

    const QList<BatchRow>& rows() const { return m_rows; }
    const QStringList& warnings() const { return m_warnings; }

private:
    void readHeader(const QString& strLine, int nLine, const std::function<bool(const QString& strName)>& takesValue);
    void readRow(const QString& strLine, int nLine);
    [[noreturn]] void refuse(int nLine, const QString& strReason) const;

    QString m_strPath;
    QChar m_separator;
    QStringList m_columns; // "" for one that is passed over
    QList<BatchRow> m_rows;
    QStringList m_warnings;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// A table of texts for a terminal and for a file.
class TextTable
{
public:
    explicit TextTable(const QStringList& header) : m_header(header) {}

    // A row shorter than the header is filled with empty texts.
    void addRow(const QStringList& row);
    int rowCount() const { return m_rows.size(); }

    // Columns padded to their widest text, numbers to the right, two blanks between; a line end behind each row. Texts
    // as by oneLine().
    QString toText() const;
    // RFC 4180: fields with a comma, a quote or a line end in quotes; a line end behind each row.
    QString toCsv() const;

    // A blank for each control character and separator of lines: texts of files must not move the cursor of a terminal.
    static QString oneLine(QString strText);
    // Six significant digits in the C locale; "-" for NaN.
    static QString number(double dValue, int nDigits = 6);

private:
    QStringList m_header;
    QList<QStringList> m_rows;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/session/SpectraTable.h"

#include <QVector>

// One pass over the text of a plain table of spectra, see SpectraTable.
class SpectraTableReader
{
public:
    // Reads the text of a file, whose name serves for spectra without one. False with "file:line: reason" or "file:
    // reason" in *pError; the table is then empty.
    static bool parse(const QByteArray& bytes, const QString& strFile, SpectraTable* pTable, QString* pError);

private:
    SpectraTableReader(SpectraTable& table, const QString& strBaseName) : m_table(table), m_strBaseName(strBaseName) {}

    bool read(const QByteArray& bytes);
    struct Line
    {
        int number = 0; // in the file, from 1
        QString text;
    };
    struct Record
    {
        int number = 0;
        QString first;          // field
        QVector<double> values; // of the fields behind it, NaN for an empty one
    };

    bool fail(int nLine, const QString& strReason);
    bool collectLines(const QByteArray& bytes);
    bool findSeparator();
    bool split(const Line& line, QStringList* pFields);
    bool readHeader();
    bool number(const QString& strField, double* pValue, int nLine);
    bool wavelengths(const QStringList& fields, QVector<double>* pValues, int nLine);
    bool readRecord(const Line& line);
    bool readRecords();
    bool arrange();
    bool toNanometres(QVector<double>& wavelengths, const QString& strUnit);
    bool someToNanometres(QVector<double>& values, const QString& strUnit);
    bool takeColumns(const QVector<double>& wavelengths);
    bool takeRows(const QVector<double>& wavelengths);
    bool takePairs();
    bool takeSpectra(const QStringList& names, QVector<QVector<double>>& values);
    bool order();

    SpectraTable& m_table;
    QString m_strBaseName;
    QString m_strReason;
    int m_nLine = 0;

    QVector<Line> m_lines;
    QChar m_separator;
    bool m_bHeader = true; // the first line holds names, or the wavelengths of rows
    int m_nHeaderLine = 0;
    QStringList m_header;
    QVector<Record> m_records;
    QVector<int> m_rowLines; // of the table's rows, until they are ordered
    int m_nPointLine = 0;    // the first with a decimal point, and the first with a decimal comma
    int m_nCommaLine = 0;
};

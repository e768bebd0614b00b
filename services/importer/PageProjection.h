// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

// Several pages of a TIFF file that make one image: each pixel is the largest of their values, or the mean.
struct PageProjection
{
    enum class Kind
    {
        None, // one page, or the file as a whole
        Max,
        Mean
    };
    Kind kind = Kind::None;
    QVector<int> pages; // from 1, none twice; empty with None

    bool isNone() const { return kind == Kind::None; }

    // "max" and "mean", in any case; false for another word.
    static bool kindOf(const QString& strText, Kind* pKind);
    static QStringList kindNames();
    QString kindText() const; // empty with None

    // "1 4 7", "1..30": numbers and runs of them, apart by blanks. False with the reason in *pReason.
    static bool readPages(const QString& strText, QVector<int>* pPages, QString* pReason);
    QString pagesText() const;

    // For people, behind the name of a file: "max of the pages 1, 4, 7", "mean of 30 pages, 1 to 88".
    QString text() const;
    // "page 3", or text(); empty without a page.
    static QString placeText(const std::optional<int>& page, const PageProjection& projection);
    // What stands in the column of pages of a table.
    static QString fieldText(const std::optional<int>& page, const PageProjection& projection);
};

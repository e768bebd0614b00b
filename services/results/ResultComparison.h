// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "spectra/KeyPair.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <limits>
#include <memory>
#include <vector>

class ComparedResult;

// A component of a result, brought to what all of the compared results have in common.
struct ComparedComponent
{
    bool present = false;
    QString name;
    CILImage map;               // of a spectrum whose largest value over the common images is 1; of a scan the mean map
    std::vector<double> values; // of that map at the pixels that every result analysed, of a scan spot after spot
    std::vector<double> spectrum; // over the common images, the largest 1
    // Beside the reference's component of the same column, over the pixels that every result analysed; NaN where there
    // is none.
    double cosine = std::numeric_limits<double>::quiet_NaN();
    double correlation = std::numeric_limits<double>::quiet_NaN();
    double relativeError = std::numeric_limits<double>::quiet_NaN();
};

// Results beside each other: a row each, the first of which is the reference; a column for each of its components and
// for what others have besides. A component stands in the column of its name; where a result shares no name with the
// reference, in that of the component that it resembles. Data corrected for decay and data as they stand have different
// truths: where both are among the rows, each result has that of its own state for a reference.
class ResultComparison
{
public:
    // Two results at least, in the order of the rows, truths first. Throws Failure when their maps differ in size or
    // number of spots or their spectra have no image in common.
    explicit ResultComparison(const std::vector<std::unique_ptr<ComparedResult>>& results);

    int rowCount() const { return m_rowNames.size(); }
    int columnCount() const { return m_columnNames.size(); }
    const QStringList& rowNames() const { return m_rowNames; }
    // The row that a row is compared with; references have themselves.
    int referenceOf(int nRow) const { return m_references[static_cast<std::size_t>(nRow)]; }
    bool isReference(int nRow) const { return referenceOf(nRow) == nRow; }
    const QStringList& columnNames() const { return m_columnNames; }
    const ComparedComponent& at(int nRow, int nColumn) const;
    // The images that all have, in the order of the spectra's values.
    const QList<KeyPair>& pairs() const { return m_pairs; }
    // Number of images and pixels that all have.
    int imageCount() const { return m_pairs.size(); }
    int pixelCount() const { return static_cast<int>(m_pixels.size()); }

private:
    using Row = std::vector<ComparedComponent>;

    void findCommonPixels(const std::vector<std::unique_ptr<ComparedResult>>& results);
    void findReferences(const std::vector<std::unique_ptr<ComparedResult>>& results);
    void addRow(Row components);
    ComparedComponent componentOf(const ComparedResult& result, int n) const;
    int freeColumn(const Row& row, const QString& strName);
    void compareWithReference(ComparedComponent& component, const ComparedComponent& reference) const;

    QStringList m_rowNames;
    QStringList m_columnNames;
    std::vector<int> m_references; // a row each
    std::vector<Row> m_rows;
    std::vector<int> m_pixels;
    QList<KeyPair> m_pairs;
};

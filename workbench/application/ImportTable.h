// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/InferredTable.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include <array>
#include <bitset>
#include <optional>

class ImagesTable;

// What a user sees and corrects before images are imported: which image is what. Cells hold what is typed; what is
// wrong, missing or in doubt there is told for each.
class ImportTable
{
public:
    enum class Kind
    {
        Fluorescence, // excitations and emissions
        Luminescence, // emissions
        Scan,         // fluorescence at several spots
        Times,
        Channels // numbered
    };
    enum Column
    {
        Use,
        Image,
        Channel,    // name of a numbered channel
        Excitation, // nm
        Emission,   // nm
        Wavelength, // nm, of a numbered channel
        SpotX,
        SpotY,
        Interval,
        Time,     // s
        Exposure, // s
        Origin,
        ColumnCount
    };
    // What stands in the way of an import, of a cell.
    enum class Mark
    {
        None,
        Doubt, // could be meant in two ways; goes when the cell is edited or the table confirmed
        Wrong
    };

    ImportTable() = default;
    // What names and metadata tell.
    explicit ImportTable(const InferredTable& inferred);
    // What such a table tells, from a file of that name.
    ImportTable(const ImagesTable& table, const QString& strName);

    int count() const { return m_rows.size(); }
    int usedCount() const;
    Kind kind() const { return m_eKind; }
    void setKind(Kind eKind);
    static QStringList kindTexts(); // by number of the kind
    // Those that matter for the kind, in their order.
    QVector<Column> columns() const;
    static QString title(Column eColumn);
    static QString help(Column eColumn);

    bool isUsed(int nRow) const { return m_rows.at(nRow).used; }
    void setUsed(int nRow, bool bUsed);
    // Uses these files only; none of them is used when no row has such a file.
    void useFiles(const QStringList& names);
    // What the user has made of another table stays: which images are used, the cells that were edited, and a kind that
    // was chosen unless this table is a series of times. Rows belong together by file, page and band.
    void takeEdits(const ImportTable& before);
    // Whether its cells are numbers.
    static bool isNumber(Column eColumn) { return eColumn >= Excitation && eColumn <= Exposure; }
    bool isEditable(Column eColumn) const { return eColumn != Image && eColumn != Origin && eColumn != Use; }
    QString text(int nRow, Column eColumn) const;
    // Numbers may have a unit and the locale's decimal sign; one that can be read is kept in its shortest form.
    void setText(int nRow, Column eColumn, const QString& strText) { setTexts({{nRow, eColumn, strText}}); }
    struct CellText
    {
        int row;
        Column column;
        QString text;
    };
    void setTexts(const QVector<CellText>& texts);

    Mark mark(int nRow, Column eColumn) const { return m_marks.at(nRow).at(eColumn).mark; }
    // Why the cell is marked; empty when it is not.
    const QString& reason(int nRow, Column eColumn) const { return m_marks.at(nRow).at(eColumn).reason; }
    // What cannot be told of one row, a sentence each.
    const QStringList& questions() const { return m_questions; }
    const QStringList& notes() const { return m_notes; }

    // Cells that are wrong or in doubt, of the rows in use.
    int wrongCount() const;
    bool isInDoubt() const;
    // The user has looked at what is in doubt, and it is right.
    void setConfirmed(bool bConfirmed) { m_bConfirmed = bConfirmed; }
    bool isConfirmed() const { return m_bConfirmed; }
    bool isReady() const;
    // "12 images: fluorescence, 2 excitations, 6 emissions"
    QString summary() const;
    // What there is to do before an import; empty when nothing is.
    QString todo() const;

    // The rows in use, as ImagesTable reads them.
    QByteArray toCsv() const;
    // The row that stands in that line (from 1) of toCsv(); -1 for none.
    int rowOfLine(int nLine) const;

private:
    struct Row
    {
        bool used = true;
        QString file;
        std::optional<int> page;
        PageProjection projection; // of pages from that one on
        std::optional<int> band;
        std::optional<double> wavenumber; // 1/cm, of a numbered channel
        std::array<QString, ColumnCount> cells;
        std::bitset<ColumnCount> edited; // cells that hold what the user typed
        ImageFacts facts;
        QString doubt; // of the row as it was inferred
    };
    struct CellMark
    {
        Mark mark = Mark::None;
        QString reason;
    };
    using RowMarks = QVector<CellMark>;

    // What an InferredTable::Row and an ImageRow have in common.
    template <typename Found>
    static Row rowOf(const Found& found);
    // False when the cell holds that already.
    bool takeText(Row& row, Column eColumn, const QString& strText);
    void chooseKind(bool bTemporal, bool bNumbered);
    bool anyHas(Column eColumn) const;
    bool isNeeded(Column eColumn) const;
    void check();
    void checkCell(const Row& row, Column eColumn, CellMark& mark) const;
    void checkRepeats();
    QString keyOf(const Row& row) const;
    int differentCount(Column eColumn) const;

    QVector<Row> m_rows;
    QVector<RowMarks> m_marks;
    QStringList m_questions;
    QStringList m_notes;
    Kind m_eKind = Kind::Fluorescence;
    bool m_bKindChosen = false; // by the user
    bool m_bConfirmed = false;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/ImportTable.h"

#include "platform/orvspinbox/numberText.h"
#include "platform/orvutils/NumberText.h"
#include "services/importer/ImageKeys.h"
#include "services/importer/ImagesTable.h"
#include "workbench/application/importWords.h"

#include <QHash>
#include <QLocale>
#include <QSet>

#include <algorithm>
#include <cmath>

namespace {

QString cell(const std::optional<double>& value)
{
    return value ? orv::shortestText(*value) : QString();
}

QString cell(const std::optional<int>& value)
{
    return value ? QString::number(*value) : QString();
}

const char* unitOf(ImportTable::Column eColumn)
{
    switch (eColumn) {
    case ImportTable::Excitation:
    case ImportTable::Emission:
    case ImportTable::Wavelength:
        return "nm";
    case ImportTable::Time:
    case ImportTable::Exposure:
        return "s";
    default:
        return "";
    }
}

// The number of a cell; nothing for another text.
std::optional<double> numberOf(const QString& text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok && std::isfinite(value) ? std::optional<double>(value) : std::nullopt;
}

QString counted(int n, const char* one, const char* many)
{
    return QStringLiteral("%1 %2").arg(n).arg(QLatin1String(n == 1 ? one : many));
}

} // namespace

template <typename Found>
ImportTable::Row ImportTable::rowOf(const Found& found)
{
    Row row;
    row.file = found.file;
    row.page = found.page;
    row.projection = found.projection;
    row.band = found.band;
    row.wavenumber = found.wavenumber;
    row.cells[Channel] = found.channel;
    row.cells[Wavelength] = cell(found.wavelength);
    row.cells[Excitation] = cell(found.excitation);
    row.cells[Emission] = cell(found.emission);
    row.cells[SpotX] = found.spotX;
    row.cells[SpotY] = found.spotY;
    row.cells[Interval] = cell(found.interval);
    row.cells[Time] = cell(found.time);
    row.cells[Exposure] = cell(found.facts.exposure);
    row.facts = found.facts;
    return row;
}

ImportTable::ImportTable(const InferredTable& inferred) : m_notes(inferred.notes())
{
    for (const InferredTable::Row& found : inferred.rows()) {
        Row row = rowOf(found);
        row.cells[Image] = found.name;
        row.cells[Origin] = found.origin;
        m_rows.append(row);
    }
    for (const QString& question : inferred.questions()) {
        const auto own = std::find_if(m_rows.begin(), m_rows.end(), [&](const Row& row) {
            return question.startsWith(row.cells[Image] + QLatin1String(": "));
        });
        if (own == m_rows.end()) {
            m_questions.append(importWords(question));
        } else {
            const QString sentence = importWords(question.mid(own->cells[Image].size() + 2));
            own->doubt += own->doubt.isEmpty() ? sentence : QStringLiteral("; ") + sentence;
        }
    }
    for (QString& note : m_notes) {
        note = importWords(note);
    }
    chooseKind(inferred.isTemporal(), inferred.isNumbered());
}

ImportTable::ImportTable(const ImagesTable& table, const QString& strName)
{
    bool temporal = false;
    for (const ImageRow& found : table.rows()) {
        Row row = rowOf(found);
        row.cells[Image] = found.file;
        row.cells[Image] += QLatin1Char(' ') + PageProjection::placeText(found.page, found.projection);
        row.cells[Image] += found.band ? QStringLiteral(" band %1").arg(*found.band) : QString();
        row.cells[Image] = row.cells[Image].trimmed(); // the file of all rows need not be named
        row.cells[Origin] = strName;
        temporal = temporal || found.time.has_value();
        m_rows.append(row);
    }
    m_notes = table.warnings();
    chooseKind(temporal, table.hasChannels());
}

void ImportTable::chooseKind(bool bTemporal, bool bNumbered)
{
    m_eKind = bTemporal            ? Kind::Times
              : anyHas(SpotX)      ? Kind::Scan
              : anyHas(Excitation) ? Kind::Fluorescence
              : anyHas(Emission)   ? Kind::Luminescence
              : bNumbered          ? Kind::Channels
                                   : Kind::Fluorescence;
    check();
}

QStringList ImportTable::kindTexts()
{
    return {QStringLiteral("Fluorescence (excitation and emission)"), QStringLiteral("Luminescence (emission)"),
            QStringLiteral("Scan of spots (excitation, emission, spot)"), QStringLiteral("Series of times"),
            QStringLiteral("Numbered channels (no filters)")};
}

void ImportTable::setKind(Kind eKind)
{
    m_eKind = eKind;
    m_bKindChosen = true;
    check();
}

int ImportTable::usedCount() const
{
    return static_cast<int>(std::count_if(m_rows.cbegin(), m_rows.cend(), [](const Row& row) { return row.used; }));
}

bool ImportTable::anyHas(Column eColumn) const
{
    return std::any_of(m_rows.cbegin(), m_rows.cend(),
                       [&](const Row& row) { return row.used && !row.cells[eColumn].isEmpty(); });
}

QVector<ImportTable::Column> ImportTable::columns() const
{
    QVector<Column> columns{Use, Image};
    const bool times = m_eKind == Kind::Times;
    if (m_eKind == Kind::Channels) {
        columns.append(Channel);
        if (anyHas(Wavelength)) {
            columns.append(Wavelength);
        }
        columns << Exposure << Origin;
        return columns;
    }
    const bool excited = m_eKind == Kind::Fluorescence || m_eKind == Kind::Scan;
    if (excited || (times && anyHas(Excitation))) {
        columns.append(Excitation);
    }
    if (!times || anyHas(Emission)) {
        columns.append(Emission);
    }
    if (m_eKind == Kind::Scan) {
        columns << SpotX << SpotY;
    }
    if (times && anyHas(Interval)) {
        columns.append(Interval);
    }
    if (times) {
        columns.append(Time);
    }
    columns << Exposure << Origin;
    return columns;
}

QString ImportTable::title(Column eColumn)
{
    static const QStringList titles{QStringLiteral("Use"),           QStringLiteral("Image"),
                                    QStringLiteral("Channel"),       QStringLiteral("Excitation (nm)"),
                                    QStringLiteral("Emission (nm)"), QStringLiteral("Wavelength (nm)"),
                                    QStringLiteral("Spot x"),        QStringLiteral("Spot y"),
                                    QStringLiteral("Interval"),      QStringLiteral("Time (s)"),
                                    QStringLiteral("Exposure (s)"),  QStringLiteral("From")};
    return titles.value(eColumn);
}

QString ImportTable::help(Column eColumn)
{
    switch (eColumn) {
    case Use:
        return QStringLiteral("Whether the image becomes one of the sequence");
    case Channel:
        return QStringLiteral("Name of the channel, for plots and tables; may be empty");
    case Wavelength:
        return QStringLiteral("Wavelength in nanometres, any above 0; empty when it is not known");
    case Excitation:
    case Emission:
        return QStringLiteral("Wavelength in nanometres, 100 to 999");
    case SpotX:
    case SpotY:
        return QStringLiteral("Place of the scan spot, as the instrument tells it");
    case Interval:
        return QStringLiteral("Number of the interval of times, from 1");
    case Time:
        return QStringLiteral("Time of the image in seconds");
    case Exposure:
        return QStringLiteral("Seconds; empty when it is not known");
    case Origin:
        return QStringLiteral("Where the figures of the row were found");
    default:
        return QString();
    }
}

void ImportTable::setUsed(int nRow, bool bUsed)
{
    m_rows[nRow].used = bUsed;
    check();
}

void ImportTable::useFiles(const QStringList& names)
{
    const QSet<QString> wanted(names.cbegin(), names.cend());
    for (Row& row : m_rows) {
        row.used = wanted.contains(row.file);
    }
    check();
}

void ImportTable::takeEdits(const ImportTable& before)
{
    if (before.m_bKindChosen && m_eKind != Kind::Times) {
        m_eKind = before.m_eKind;
        m_bKindChosen = true;
    }
    const auto place = [](const Row& row) {
        return QStringLiteral("%1\n%2\n%3").arg(row.page.value_or(0)).arg(row.band.value_or(0)).arg(row.file);
    };
    QHash<QString, const Row*> earlier;
    for (const Row& row : before.m_rows) {
        earlier.insert(place(row), &row);
    }
    for (Row& row : m_rows) {
        const Row* pEarlier = earlier.value(place(row));
        if (pEarlier == nullptr) {
            continue;
        }
        row.used = pEarlier->used;
        for (int column = 0; column < ColumnCount; ++column) {
            if (pEarlier->edited.test(static_cast<std::size_t>(column))) {
                takeText(row, static_cast<Column>(column), pEarlier->cells[static_cast<std::size_t>(column)]);
            }
        }
        row.edited = pEarlier->edited;
    }
    check();
}

QString ImportTable::text(int nRow, Column eColumn) const
{
    return m_rows.at(nRow).cells[eColumn];
}

void ImportTable::setTexts(const QVector<CellText>& texts)
{
    bool changed = false;
    for (const CellText& cell : texts) {
        changed = takeText(m_rows[cell.row], cell.column, cell.text) || changed;
    }
    if (changed) {
        check();
    }
}

bool ImportTable::takeText(Row& row, Column eColumn, const QString& strText)
{
    QString text = strText.simplified();
    const QLatin1String unit(unitOf(eColumn));
    if (isNumber(eColumn)) {
        QString bare = text;
        if (unit.size() > 0 && bare.endsWith(unit, Qt::CaseInsensitive)) {
            bare = bare.chopped(unit.size()).trimmed();
        }
        const orv::TypedNumber number = orv::readTypedNumber(bare, QLocale());
        if (number.m_eState == orv::TypedNumber::Complete && std::isfinite(number.m_dValue)) {
            text = orv::shortestText(number.m_dValue);
        }
    }
    if (text == row.cells[eColumn]) {
        return false;
    }
    row.cells[eColumn] = text;
    row.edited.set(eColumn);
    row.doubt.clear(); // whoever corrects a row has looked at it
    if (eColumn != Exposure && !row.cells[Origin].contains(QLatin1String("edited"))) {
        row.cells[Origin] += row.cells[Origin].isEmpty() ? QStringLiteral("edited") : QStringLiteral("; edited");
    }
    return true;
}

bool ImportTable::isNeeded(Column eColumn) const
{
    switch (eColumn) {
    case Excitation:
        return m_eKind == Kind::Fluorescence || m_eKind == Kind::Scan || (m_eKind == Kind::Times && anyHas(Excitation));
    case Emission:
        return m_eKind == Kind::Luminescence || anyHas(Emission);
    case SpotX:
    case SpotY:
        return m_eKind == Kind::Scan;
    case Time:
        return m_eKind == Kind::Times;
    default:
        return false;
    }
}

void ImportTable::checkCell(const Row& row, Column eColumn, CellMark& mark) const
{
    const QString& text = row.cells[eColumn];
    const QString what = title(eColumn).section(QLatin1String(" ("), 0, 0).toLower();
    QString wrong;
    if (text.isEmpty()) {
        wrong = isNeeded(eColumn) ? QStringLiteral("the %1 is missing").arg(what) : QString();
    } else if (const std::optional<double> value = numberOf(text); !value) {
        wrong = QStringLiteral("the %1 \"%2\" is not a number").arg(what, text);
    } else if (eColumn == Excitation || eColumn == Emission) {
        wrong = reasonAgainstWavelength(what, *value);
    } else if (eColumn == Wavelength && *value <= 0.0) {
        wrong = QStringLiteral("the wavelength is not above 0");
    } else if (eColumn == Time) {
        wrong = reasonAgainstTime(*value);
    } else if (eColumn == Exposure && *value <= 0.0) {
        wrong = QStringLiteral("the exposure is not above 0");
    } else if (eColumn == Interval && (*value < 1.0 || *value > 1e9 || *value != std::floor(*value))) {
        wrong = QStringLiteral("the interval is not a whole number from 1 on");
    }
    if (!wrong.isEmpty()) {
        mark = {Mark::Wrong, wrong};
    }
}

void ImportTable::check()
{
    m_bConfirmed = false;
    m_marks = QVector<RowMarks>(m_rows.size(), RowMarks(ColumnCount));
    const QVector<Column> shown = columns();
    const Row* pFirst = nullptr;
    for (int i = 0; i < m_rows.size(); ++i) {
        const Row& row = m_rows.at(i);
        if (!row.used) {
            continue;
        }
        pFirst = pFirst != nullptr ? pFirst : &row;
        for (const Column column : shown) {
            CellMark& mark = m_marks[i][column];
            if (isNumber(column)) {
                checkCell(row, column, mark);
            }
            const bool wavelength = column == Excitation || column == Emission;
            if (mark.mark == Mark::None && m_eKind == Kind::Times && wavelength &&
                row.cells[column] != pFirst->cells[column]) {
                mark = {Mark::Wrong, QStringLiteral("a series of times has one wavelength in all images")};
            }
        }
        if (!row.doubt.isEmpty()) {
            m_marks[i][Image] = {Mark::Doubt, row.doubt};
        }
    }
    checkRepeats();
}

// What tells the image from the others, as it will stand in the sequence; empty where that is not known.
QString ImportTable::keyOf(const Row& row) const
{
    if (m_eKind == Kind::Channels) {
        return QString(); // their numbers do
    }
    if (m_eKind == Kind::Times) {
        return numberOf(row.cells[Time]) ? QString::number(wholeSecond(row.cells[Time])) : QString();
    }
    QStringList parts;
    for (const Column column : {Excitation, Emission}) {
        if (column == Excitation && m_eKind == Kind::Luminescence) {
            continue;
        }
        const std::optional<double> value = numberOf(row.cells[column]);
        if (!value && isNeeded(column)) {
            return QString();
        }
        parts.append(value ? QString::number(std::llround(*value)) : QString());
    }
    if (m_eKind == Kind::Scan) {
        parts << row.cells[SpotX] << row.cells[SpotY];
    }
    return parts.join(QLatin1Char('/'));
}

void ImportTable::checkRepeats()
{
    QHash<QString, int> first;
    const Column marked = m_eKind == Kind::Times ? Time : m_eKind == Kind::Scan ? SpotX : Emission;
    for (int i = 0; i < m_rows.size(); ++i) {
        const QString key = m_rows.at(i).used ? keyOf(m_rows.at(i)) : QString();
        if (key.isEmpty()) {
            continue;
        }
        if (!first.contains(key)) {
            first.insert(key, i);
            continue;
        }
        const QString reason = QStringLiteral("%1 has the same %2")
                                   .arg(m_rows.at(first.value(key)).cells[Image],
                                        m_eKind == Kind::Times          ? QStringLiteral("second")
                                        : m_eKind == Kind::Scan         ? QStringLiteral("wavelengths and spot")
                                        : m_eKind == Kind::Luminescence ? QStringLiteral("emission")
                                                                        : QStringLiteral("excitation and emission"));
        CellMark& mark = m_marks[i][marked];
        if (mark.mark != Mark::Wrong) {
            mark = {Mark::Wrong, reason};
        }
    }
}

int ImportTable::wrongCount() const
{
    int wrong = 0;
    for (const RowMarks& marks : m_marks) {
        wrong += static_cast<int>(
            std::count_if(marks.cbegin(), marks.cend(), [](const CellMark& mark) { return mark.mark == Mark::Wrong; }));
    }
    return wrong;
}

bool ImportTable::isInDoubt() const
{
    return !m_questions.isEmpty() ||
           std::any_of(m_rows.cbegin(), m_rows.cend(), [](const Row& row) { return row.used && !row.doubt.isEmpty(); });
}

bool ImportTable::isReady() const
{
    return usedCount() > 0 && wrongCount() == 0 && (m_bConfirmed || !isInDoubt());
}

QString ImportTable::todo() const
{
    if (usedCount() == 0) {
        return QStringLiteral("No image is to be used.");
    }
    if (const int wrong = wrongCount(); wrong > 0) {
        return QStringLiteral("%1 to be filled in or corrected; the tool tip of a marked one tells why.")
            .arg(wrong == 1 ? QStringLiteral("1 cell is") : QStringLiteral("%1 cells are").arg(wrong));
    }
    return isInDoubt() && !m_bConfirmed
               ? QStringLiteral("Something is in doubt. Correct the table, or tick that it is right.")
               : QString();
}

int ImportTable::differentCount(Column eColumn) const
{
    QSet<QString> texts;
    for (const Row& row : m_rows) {
        if (row.used && !row.cells[eColumn].isEmpty()) {
            texts.insert(row.cells[eColumn]);
        }
    }
    return texts.size();
}

QString ImportTable::summary() const
{
    QStringList parts;
    if (m_eKind == Kind::Times) {
        parts.append(QStringLiteral("a series of times"));
    } else if (m_eKind == Kind::Channels) {
        parts.append(QStringLiteral("numbered channels"));
    } else {
        parts.append(m_eKind == Kind::Luminescence ? QStringLiteral("luminescence")
                     : m_eKind == Kind::Scan       ? QStringLiteral("fluorescence, a scan of spots")
                                                   : QStringLiteral("fluorescence"));
        if (m_eKind != Kind::Luminescence && anyHas(Excitation)) {
            parts.append(counted(differentCount(Excitation), "excitation", "excitations"));
        }
        if (anyHas(Emission)) {
            parts.append(counted(differentCount(Emission), "emission", "emissions"));
        }
    }
    return QStringLiteral("%1: %2").arg(counted(usedCount(), "image", "images"), parts.join(QStringLiteral(", ")));
}

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace orv {

// What the list of saved results shows: the entries, the chosen one (-1 without entries) and the text.
struct SavedNames
{
    QStringList m_entries;
    int m_nCurrent = -1;
    QString m_strText;
};

// "(new)", behind the automatic name of a result that is not saved yet.
QString newNameMark();

// The list after an update. `before` is what it showed, `saved` are the names in the index. A non-empty `strNew` is the
// name of a new result: it comes last, with the mark, and is chosen. Else what was chosen stays so by its text, and
// failing that by its place.
SavedNames updatedNames(const SavedNames& before, const QStringList& saved, const QString& strNew);

} // namespace orv

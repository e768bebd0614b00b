// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/savedNames.h"

#include <algorithm>

namespace orv {

QString newNameMark()
{
    return QStringLiteral("(new)");
}

SavedNames updatedNames(const SavedNames& before, const QStringList& saved, const QString& strNew)
{
    SavedNames now;
    now.m_entries = saved;
    if (!strNew.isEmpty()) {
        now.m_entries.append(strNew + newNameMark());
        now.m_nCurrent = now.m_entries.size() - 1;
    } else if (!saved.isEmpty()) {
        QString text = before.m_strText;
        if (text.endsWith(newNameMark())) {
            text.remove(newNameMark());
        }
        const int nSame = saved.indexOf(text);
        now.m_nCurrent = nSame >= 0 ? nSame : std::clamp(before.m_nCurrent, 0, saved.size() - 1);
    }
    now.m_strText = now.m_entries.value(now.m_nCurrent);
    return now;
}

} // namespace orv

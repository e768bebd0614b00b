// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/RegionChange.h"

#include <QCoreApplication>

#include <utility>

namespace {

// As it stands behind "Undo" and "Redo".
QString textOf(const RegionChange::Step& step)
{
    const char* pText = "changing a region";
    if (!step.from) {
        pText = "drawing a region";
    } else if (!step.to) {
        pText = "removing a region";
    } else if (step.from->name != step.to->name) {
        pText = "renaming a region";
    }
    return QCoreApplication::translate("RegionChange", pText);
}

} // namespace

RegionChange::RegionChange(Step step, bool bGoesOn, Follow follow)
    : m_step(std::move(step)), m_bGoesOn(bGoesOn), m_follow(std::move(follow))
{
    setText(textOf(m_step));
}

void RegionChange::undo()
{
    setObsolete(!m_follow({m_step.place, m_step.to, m_step.from}));
}

void RegionChange::redo()
{
    if (!m_bMade) {
        setObsolete(!m_follow(m_step));
    }
    m_bMade = false;
}

bool RegionChange::mergeWith(const QUndoCommand* pNext)
{
    const auto* pOther = dynamic_cast<const RegionChange*>(pNext);
    const bool both = m_step.from && m_step.to;
    if (pOther == nullptr || !pOther->m_bGoesOn || !both || pOther->m_step.place != m_step.place) {
        return false;
    }
    m_step.to = pOther->m_step.to;
    return true;
}

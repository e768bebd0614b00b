// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tagROIInfo.h"

#include <QUndoCommand>

#include <functional>
#include <optional>

// A change of one region of a dataset that can be taken back and made again. It has been made when the history gets it.
class RegionChange : public QUndoCommand
{
public:
    // One comes (no `from`), goes (no `to`) or becomes another, at its place in the order of the regions.
    struct Step
    {
        int place = 0;
        std::optional<tagROIInfo> from;
        std::optional<tagROIInfo> to;
    };
    // Makes the regions follow a step. False when they are no longer what it begins with; the change is given up then.
    using Follow = std::function<bool(const Step& step)>;

    // One that goes on is a single change with that before it, if that was of the same region.
    RegionChange(Step step, bool bGoesOn, Follow follow);

    void undo() override;
    void redo() override;
    int id() const override { return 1; }
    bool mergeWith(const QUndoCommand* pNext) override;

private:
    Step m_step;
    bool m_bGoesOn;
    bool m_bMade = true; // ahead of the first redo(), which comes with the push
    Follow m_follow;
};

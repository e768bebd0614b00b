// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/ExitStatus.h"

#include "services/basis/Failure.h"

int ExitStatus::of(const Failure& failure)
{
    switch (failure.kind()) {
    case Failure::Kind::BadRequest:
        return usage;
    case Failure::Kind::Aborted:
        return aborted;
    case Failure::Kind::OnlyWarned:
        return warned;
    case Failure::Kind::Failed:
        break;
    }
    return failed;
}

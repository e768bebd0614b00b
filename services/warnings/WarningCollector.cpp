// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/warnings/WarningCollector.h"

void WarningCollector::add(const RunWarning& warning)
{
    m_warnings.append(warning);
    m_monitor.warn(warning.sentence());
}

void WarningCollector::addAll(const QList<RunWarning>& warnings)
{
    for (const RunWarning& warning : warnings) {
        add(warning);
    }
}

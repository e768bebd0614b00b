// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// A tool tip that shows a name as it stands, also one that looks like markup.
QString plainToolTip(const QString& strName);

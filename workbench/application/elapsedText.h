// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// "0:07", "12:05", "1:02:09": minutes and seconds, with hours from one on. Negative times count as none.
QString elapsedText(qint64 nMilliseconds);

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/results/ReportContent.h"

#include <QByteArray>

// The report as one self-contained page for a browser, pictures inside, that also prints well on A4 or letter paper.
// UTF-8.
QByteArray reportHtml(const ReportContent& content);

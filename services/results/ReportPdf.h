// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/results/ReportContent.h"

#include <QByteArray>

// The report as PDF on A4 pages with page numbers. Needs a QGuiApplication, which may be the "offscreen" one. Empty
// when it cannot be made.
QByteArray reportPdf(const ReportContent& content);

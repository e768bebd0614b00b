// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// The probe names of a comma-separated text under the names of the source database: "AF750" is "AlexaFluor 750",
// "QD800" is "QDot 800".
//
// Two oddities that saved results hold: one that says "QDot" already has its "QD" replaced all the same, and
// one that stands for "Ferrin-Mark 750" or "Glowmark Pronto COX - 2" comes twice.
QStringList normalisedProbeNames(const QString& strText);

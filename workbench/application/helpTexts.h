// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// What the program says about itself and its use, as rich text.
namespace helpTexts {

QString about(const QString& strVersion, const QString& strPlugin);
QString guide();

} // namespace helpTexts

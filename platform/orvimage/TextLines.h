// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFont>
#include <QString>
#include <QStringList>

namespace orvimage {

// A text in lines no wider than that, in pixels: broken between words, within a word where it is wider by itself. Runs
// of blanks are one blank. Nothing for an empty text. Needs a QGuiApplication.
QStringList textLines(const QString& text, const QFont& font, double width);

} // namespace orvimage

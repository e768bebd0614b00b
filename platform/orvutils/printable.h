// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

// What comes from files and from other people's names, made fit for a terminal. Characters that would steer it, or turn
// the direction of what follows, are shown as "\x1b" or "\u202e"; line ends and tabs stay.
namespace orv {

QString printable(const QString& strText);
// The same for what is one line, whatever names stand in it: their line ends are shown as "\x0a".
QString printableLine(const QString& strText);
// The same for the text of a JSON document, whose strings then mean what they meant.
QByteArray printableJson(const QByteArray& json);

} // namespace orv

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

class QWidget;

// What a look at a window would find wrong with what can be seen below it, each as "class name: text".
namespace layoutFaults {

// Texts that have less room than they need, and widgets that reach out of what holds them, where nothing scrolls.
QStringList cut(const QWidget& window);
// Controls that take the focus by Tab and have neither a text, an accessible name nor a label that is their buddy.
QStringList nameless(const QWidget& window);
// In a dark palette: check boxes and radio buttons that can be used and whose outline is hardly seen.
QStringList faint(const QWidget& window);

} // namespace layoutFaults

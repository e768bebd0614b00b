// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QString>

class QWidget;

// The text by which a user knows the widget: of a button, a label, a group, an edit, or the title of a window; empty
// when it shows none.
QString shownText(const QWidget& widget);

// What can be seen of a widget: name, class, place on the screen, whether it can be used, has the focus or is checked,
// its text, its value and range, its entries.
QJsonObject stateOf(const QWidget& widget);

// The same with all visible widgets below, as "inside".
QJsonObject treeOf(const QWidget& widget);

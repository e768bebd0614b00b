// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QString>

class QWidget;

// The question for a colour, answered by the responder that answers CORVMessageBox.
class CORVColorDialog
{
public:
    // An invalid colour when the user backs out.
    static QColor getColor(const QColor& initial, QWidget* pParent, const QString& strTitle);
};

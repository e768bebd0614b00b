// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QString>

class QWidget;

namespace orv {

// A question for a colour.
struct ColorRequest
{
    QWidget* m_pParent = nullptr; // may be null; borrowed for the time of the question
    QString m_strTitle;
    QColor m_initial;
};

} // namespace orv

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFont>
#include <QPointF>
#include <QString>
#include <QStringList>

// A text at the end of a colour bar: a number, and the lines that tell what it is a number of. Places and sizes are in
// the object coordinates of the view that shows it, y downwards.
class CORVTextTag
{
public:
    CORVTextTag();

    void setText(const QString& strText) { m_strText = strText; }
    const QString& text() const { return m_strText; }
    // The first line names the unit. The tag makes room for them; the view draws them.
    void setStringList(const QStringList& lines) { m_lines = lines; }
    QStringList getStringList() const { return m_lines; }

    // Family and size that the user prefers for colour bars; also done by the constructor.
    void updateFontByPreference();
    const QFont& font() const { return m_font; }
    double fontHeight() const;

    // Upper left corner.
    void setPosition(const QPointF& position) { m_position = position; }
    QPointF position() const { return m_position; }
    double x() const { return m_position.x(); }
    double y() const { return m_position.y(); }
    // Of the number's box, and of the widest line.
    double height() const;
    double width() const;

private:
    QString m_strText;
    QStringList m_lines;
    QFont m_font;
    QPointF m_position;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHeaderView>

namespace orv {

// A header above columns that may be narrower than their texts. A text that does not fit stands upright, read from
// below; one that is too long for that as well is elided. The text is shown as tool tip wherever the item has none.
class UprightHeader : public QHeaderView
{
    Q_OBJECT

public:
    explicit UprightHeader(QWidget* pParent = nullptr);

    // Whether the text of this section stands upright at its present width.
    bool isUpright(int nSection) const;

    // The most room that upright texts take, in pixels.
    static constexpr int longestText = 96;

protected:
    void paintSection(QPainter* pPainter, const QRect& rect, int nSection) const override;
    QSize sectionSizeFromContents(int nSection) const override;
    bool viewportEvent(QEvent* pEvent) override;

private:
    QString text(int nSection) const;
    QFont sectionFont(int nSection) const;
    int margin() const;
};

} // namespace orv

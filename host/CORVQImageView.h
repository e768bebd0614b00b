// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/GLImageView.h"

#include <QColor>
#include <QList>
#include <QPair>
#include <QString>

// A picture with labels over it. The zoom stays when a picture of the same size follows.
class CORVQImageView : public GLImageView
{
    Q_OBJECT

public:
    using LabelList = QList<QPair<QString, QColor>>;

    explicit CORVQImageView(QWidget* pParent = nullptr, const char* name = nullptr);
    ~CORVQImageView() override;

    // Shares the picture; null shows nothing.
    void setImage(const QImage& image) { setPicture(image); }
    // Texts with their colours, one under another from the upper left of the view, each outlined so that its colour can
    // be read on any picture. A text that is too long is elided in the middle.
    void setLabelList(const LabelList& labels);
    const LabelList& labelList() const { return m_labels; }
    void refreshView() { update(); }
    // The whole picture with its labels: at its own size, with letters that grow with it, or, where they could not be
    // read on one so small, enlarged by a whole number. Null without a picture.
    QImage labelledPicture() const;

public Q_SLOTS:
    // Asks for a name; nothing happens without a picture.
    void saveLabelledPicture();

protected:
    void paintOverlay(QPainter& painter) const override;
    void fillContextMenu(QMenu& menu) override;

private:
    void paintLabels(QPainter& painter, double dWidth) const;

    LabelList m_labels;
};

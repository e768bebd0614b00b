// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/SpectrumSettings.h"

#include <QIcon>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVector>

class NameEdit;
class QAbstractButton;
class QAction;
class QComboBox;
class QHBoxLayout;
class QLabel;
class QMenu;
class QToolButton;
class QWidget;

// The row of widgets that shows one spectrum in a list: index, select box, name, colour, drawing tool. It has no
// signals or slots of its own: the owner of the list connects those of the widgets and puts the layout where it
// belongs. A row is owned by a shared pointer in that list (records hold weak ones), so it has no QObject parent; its
// widgets are children of the widget given to the constructor and may die with it before the row does.
class SpumKyvoSpectrumCtrl : public QObject
{
    Q_OBJECT

public:
    // One entry of the colour combo.
    struct ColorEntry
    {
        QString name;
        QIcon icon;
    };

    // `withImport` adds "Import" to the tool menu. With `multiSelect` the select control is a check box, otherwise a
    // radio button (exclusive among the rows of one parent). `parent` may be null.
    SpumKyvoSpectrumCtrl(QWidget* parent, bool withImport, bool multiSelect);
    // Deletes the widgets that are still there and the layout, then the colour entries.
    ~SpumKyvoSpectrumCtrl() override;

    // What the widgets show. A tool button that shows none of the three tools ("Import") leaves `shape` at its default.
    SpectrumSettings settings() const;
    // Shows `settings`, without a signal from the combo or the select box. A colour that is not among the default ones
    // keeps the combo where it was, and a shape other than 0, 1, 2 the tool.
    void setSettings(const SpectrumSettings& settings);
    // Enables the select box and the name edit if either argument is true, else disables them.
    void setControlsEnabled(bool hasData, bool force);
    // Hides the tool button.
    void hide();
    // Unchecks the select box.
    void uncheck();

    QPointer<QHBoxLayout> m_pLayout;
    QPointer<QLabel> m_pIndexLabel;
    int m_nCurveFlag = 0;
    int m_nCurveId = -1;
    bool m_bMultiSelect = true;
    QPointer<QAbstractButton> m_pSelectBox; // QCheckBox or QRadioButton
    QPointer<NameEdit> m_pNameEdit;
    QPointer<QComboBox> m_pColorCombo;
    QPointer<QMenu> m_pToolMenu;
    QPointer<QToolButton> m_pToolButton;
    QPointer<QAction> m_pImportAction; // null without import
    QVector<ColorEntry> m_colorEntries;

private:
    void buildColorCombo(QWidget* parent);
    void buildTool(QWidget* parent, bool withImport);
    void setSelected(bool bSelected);
};

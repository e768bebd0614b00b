// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

class QComboBox;
class QFontComboBox;
class QLineEdit;
class QSpinBox;

// The user's preferences: letters in the views, the format that pictures are saved in, the folder of the plug-in.
// Accepted, they are kept, and everybody who listens is told.
class PreferencesDialog : public QDialog
{
    Q_OBJECT

public:
    explicit PreferencesDialog(QWidget* pParent);

    void accept() override;

private:
    QFontComboBox* m_pFont;
    QSpinBox* m_pLabelSize;
    QSpinBox* m_pBarSize;
    QComboBox* m_pFormat;
    QLineEdit* m_pPlugins;
};

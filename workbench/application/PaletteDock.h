// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDockWidget>
#include <QPointer>

class QLabel;
class QPlainTextEdit;
class QScrollArea;
class QStackedWidget;

// The panel of the plug-in's palette. In its place it shows in words why there is no plug-in, or why the palette is
// off.
class PaletteDock : public QDockWidget
{
    Q_OBJECT

public:
    explicit PaletteDock(QWidget* pParent);
    // Lets go of the palette, which is the plug-in's.
    ~PaletteDock() override;

    // The palette, which is borrowed.
    void setTool(QWidget* pPalette);
    void showPalette();
    void showReason(const QString& strReason);
    // The file may be empty, when there was none.
    void showMissingPlugin(const QString& strReason, const QString& strFile);
    bool isPaletteShown() const;

Q_SIGNALS:
    // The user wants to name a folder with the plug-in.
    void otherFolderWanted();

private:
    QWidget* makeReasonPage();
    QWidget* makeMissingPage();

    QStackedWidget* m_pPages;
    QScrollArea* m_pScroll;
    QLabel* m_pReason = nullptr;
    QPlainTextEdit* m_pMissingReason = nullptr;
    QWidget* m_pReasonPage;
    QWidget* m_pMissingPage;
    QPointer<QWidget> m_pPalette;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <QWidget>

class QAction;
class QLabel;
class QVBoxLayout;

// What the window shows while nothing is open: how to begin, and what was open before.
class StartPage : public QWidget
{
    Q_OBJECT

public:
    // The actions are those of the menu.
    StartPage(QAction* pOpen, QAction* pImport, QAction* pSimulate, QWidget* pParent);

    void setRecent(const QStringList& paths);

Q_SIGNALS:
    void recentChosen(const QString& strPath);

private:
    QWidget* makeButton(QAction* pAction, const QString& strText, const QString& strDescription);

    QWidget* makeRecent(const QString& strPath);

    QWidget* m_pRecent;
    QLabel* m_pRecentHeading;
    QVBoxLayout* m_pRecentLayout;
};

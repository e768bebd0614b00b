// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvutils/LogSinks.h"

#include <QDockWidget>
#include <QVector>

class CORVSettings;
class LogFilter;
class LogModel;
class QCheckBox;
class QLineEdit;
class QTreeView;

// The log as a panel: its levels can be shown or not, a text filters it, lines can be copied.
class LogDock : public QDockWidget
{
    Q_OBJECT

public:
    explicit LogDock(QWidget* pParent);

    // Follows the end of the log unless the user has scrolled up.
    void append(const QVector<orv::LogRecord>& records);
    // The selected lines, or all that are shown, as in a log file.
    void copy() const;

    void save(CORVSettings& settings) const;
    void restore(const CORVSettings& settings);

private:
    QWidget* makeBar();
    void makeView();

    LogModel* m_pModel;
    LogFilter* m_pFilter;
    QTreeView* m_pView;
    QLineEdit* m_pText = nullptr;
    QVector<QCheckBox*> m_levels; // in the order of the levels in the source
};

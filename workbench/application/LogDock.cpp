// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/LogDock.h"

#include "host/CORVLog.h"
#include "host/CORVSettings.h"
#include "workbench/application/LogFilter.h"
#include "workbench/application/LogModel.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>

namespace {

struct LevelBox
{
    int m_nLevel;
    const char* m_pName;
    const char* m_pText;
};

constexpr LevelBox levelBoxes[] = {{CORVLOG_ERROR, "logErrors", "&Errors"},
                                   {CORVLOG_WARNING, "logWarnings", "&Warnings"},
                                   {CORVLOG_NOTE, "logNotes", "&Notes"},
                                   {CORVLOG_PROGRESS, "logProgress", "&Progress"}};

QString levelKey(const LevelBox& box)
{
    return QStringLiteral("Workbench/Log/") + QLatin1String(box.m_pName);
}

} // namespace

LogDock::LogDock(QWidget* pParent)
    : QDockWidget(tr("Log"), pParent), m_pModel(new LogModel(20000, this)), m_pFilter(new LogFilter(this)),
      m_pView(new QTreeView(this))
{
    setObjectName(QStringLiteral("logDock"));
    m_pFilter->setSourceModel(m_pModel);
    makeView();
    auto* pContent = new QWidget(this);
    auto* pLayout = new QVBoxLayout(pContent);
    pLayout->setContentsMargins(4, 4, 4, 4);
    pLayout->addWidget(makeBar());
    pLayout->addWidget(m_pView, 1);
    setWidget(pContent);
}

QWidget* LogDock::makeBar()
{
    auto* pBar = new QWidget(this);
    auto* pLayout = new QHBoxLayout(pBar);
    pLayout->setContentsMargins(0, 0, 0, 0);
    for (const LevelBox& box : levelBoxes) {
        auto* pBox = new QCheckBox(tr(box.m_pText), pBar);
        pBox->setObjectName(QLatin1String(box.m_pName));
        pBox->setChecked(true);
        const int nLevel = box.m_nLevel;
        connect(pBox, &QCheckBox::toggled, this,
                [this, nLevel](bool bShown) { m_pFilter->setLevelShown(nLevel, bShown); });
        pLayout->addWidget(pBox);
        m_levels.append(pBox);
    }
    m_pText = new QLineEdit(pBar);
    m_pText->setObjectName(QStringLiteral("logFilter"));
    m_pText->setPlaceholderText(tr("Show lines that hold ..."));
    m_pText->setAccessibleName(tr("Filter of the log"));
    m_pText->setClearButtonEnabled(true);
    connect(m_pText, &QLineEdit::textChanged, m_pFilter, &LogFilter::setText);
    pLayout->addWidget(m_pText, 1);
    // Small ones: beside the panel on a small screen there is room for no more.
    const auto addButton = [&](const char* pName, const QString& strText) {
        auto* pButton = new QToolButton(pBar);
        pButton->setObjectName(QLatin1String(pName));
        pButton->setText(strText);
        pButton->setFocusPolicy(Qt::StrongFocus);
        pLayout->addWidget(pButton);
        return pButton;
    };
    auto* pCopy = addButton("logCopy", tr("&Copy"));
    pCopy->setToolTip(tr("Copy the selected lines, or all that are shown"));
    connect(pCopy, &QToolButton::clicked, this, &LogDock::copy);
    connect(addButton("logClear", tr("C&lear")), &QToolButton::clicked, m_pModel, &LogModel::clear);
    return pBar;
}

void LogDock::makeView()
{
    m_pView->setObjectName(QStringLiteral("logView"));
    m_pView->setAccessibleName(tr("Log"));
    m_pView->setModel(m_pFilter);
    m_pView->setRootIsDecorated(false);
    m_pView->setUniformRowHeights(true);
    m_pView->setAllColumnsShowFocus(true);
    m_pView->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_pView->header()->setStretchLastSection(true);
    m_pView->header()->setSectionResizeMode(LogModel::TimeColumn, QHeaderView::ResizeToContents);
    m_pView->header()->setSectionResizeMode(LogModel::LevelColumn, QHeaderView::ResizeToContents);
    auto* pCopy = new QAction(tr("Copy"), m_pView);
    pCopy->setShortcut(QKeySequence::Copy);
    pCopy->setShortcutContext(Qt::WidgetShortcut);
    connect(pCopy, &QAction::triggered, this, &LogDock::copy);
    m_pView->addAction(pCopy);
    m_pView->setContextMenuPolicy(Qt::ActionsContextMenu);
}

void LogDock::append(const QVector<orv::LogRecord>& records)
{
    const QScrollBar* pScroll = m_pView->verticalScrollBar();
    const bool bAtEnd = pScroll->value() == pScroll->maximum();
    m_pModel->append(records);
    if (bAtEnd) {
        m_pView->scrollToBottom();
    }
}

void LogDock::copy() const
{
    QModelIndexList rows = m_pView->selectionModel()->selectedRows(LogModel::MessageColumn);
    if (rows.isEmpty()) {
        for (int i = 0; i < m_pFilter->rowCount(); ++i) {
            rows.append(m_pFilter->index(i, LogModel::MessageColumn));
        }
    }
    std::sort(rows.begin(), rows.end());
    QStringList lines;
    for (const QModelIndex& row : qAsConst(rows)) {
        lines.append(row.data(LogModel::LineRole).toString());
    }
    QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}

void LogDock::save(CORVSettings& settings) const
{
    for (int i = 0; i < m_levels.size(); ++i) {
        settings.setValue(levelKey(levelBoxes[i]), m_levels.at(i)->isChecked());
    }
}

void LogDock::restore(const CORVSettings& settings)
{
    for (int i = 0; i < m_levels.size(); ++i) {
        m_levels.at(i)->setChecked(settings.value(levelKey(levelBoxes[i]), true).toBool());
    }
}

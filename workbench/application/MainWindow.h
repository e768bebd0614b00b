// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMainWindow>

class OpenDocuments;
class QMdiArea;
struct WorkbenchOptions;

// The window of the program.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(const WorkbenchOptions& options);
    ~MainWindow() override;

    // Once the event loop runs.
    void openLater(const QStringList& paths);
    // Opens a sequence; tells the user why not.
    bool open(const QString& strPath);

    OpenDocuments& documents() { return *m_pDocuments; }

private:
    void makeMenus();
    void askForSequence();

    QMdiArea* m_pArea;
    OpenDocuments* m_pDocuments;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <QProcess>
#include <QTimer>

class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

// Asks what to simulate and where to, and has the command line program do it, with progress; what was made is
// folder() when the dialog was accepted.
class SimulateDialog : public QDialog
{
    Q_OBJECT

public:
    // `strParentFolder` is where the new sequence is proposed, `strProgram` the command line program.
    SimulateDialog(const QString& strParentFolder, const QString& strProgram, QWidget* pParent);
    ~SimulateDialog() override;

    QString folder() const;

public Q_SLOTS:
    // While it works: ends the work first.
    void reject() override;

private:
    void makeForm(const QString& strParentFolder);
    void makeProgress();
    void proposeFolder();
    void chooseFolder();
    void start();
    void finished(int nStatus, QProcess::ExitStatus eEnd);
    void setRunning(bool bRunning);
    void fail(const QString& strReason);

    QString m_strProgram;
    QString m_strProposed;
    QComboBox* m_pKind;
    QComboBox* m_pSize;
    QLineEdit* m_pFolder;
    QPushButton* m_pBrowse;
    QLabel* m_pMessage;
    QProgressBar* m_pBar;
    QPushButton* m_pStart;
    QPushButton* m_pCancel;
    QProcess m_process;
    QElapsedTimer m_since;
    QTimer m_tick;
    bool m_bAborted = false;
};

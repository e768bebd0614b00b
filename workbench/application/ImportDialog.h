// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/ImportReport.h"
#include "services/importer/PlaneChoice.h"
#include "workbench/application/BackgroundWork.h"
#include "workbench/application/importPlace.h"

#include <QDialog>
#include <QStringList>

#include <memory>

class ImportTable;
class ImportTableModel;
class PlaneBoxes;
class QCheckBox;
class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QTableView;
struct ImportOptions;

// Images of other programs become a sequence: a folder of TIFF files, a TIFF or OME-TIFF stack, an ENVI cube, a CSV
// cube. What names and metadata tell of the images is shown first, to be corrected; nothing is written before "Import".
class ImportDialog : public QDialog
{
    Q_OBJECT

public:
    // With paths of one folder, one file or several files of one folder the images are looked at once it is shown.
    explicit ImportDialog(const QStringList& paths, QWidget* pParent = nullptr);
    ~ImportDialog() override;

    // The sequence that was written, after exec() gave QDialog::Accepted; empty else.
    const QString& sequenceFolder() const { return m_strWritten; }
    const ImportTable& table() const;

public Q_SLOTS:
    // While images are read or written Escape and the closing of the window stop that; else they close the dialog.
    void reject() override;

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void makeControls();
    QWidget* makeHead();
    QWidget* makeOptions();
    QWidget* makeFoot();
    QPushButton* addChooser(QGridLayout* pGrid, int nRow, int nColumn, QWidget* pBuddy, const QString& strName);
    void nameControls();
    void connectControls();
    void chooseSource(bool bFolder);
    void chooseTable();
    void takeSource(const ImportSource& source);
    // Reads names and headers on a thread of its own.
    void look();
    void endLook(bool bSuccess, const QString& strError);
    void endLookWithout(const QString& strError);
    // What the user made of the table before stays.
    bool takeOwnTable(const QString& strPath, const ImportTable& before);
    void fitColumns();
    void import();
    void endImport(bool bSuccess, const QString& strError);
    // False with a message when an option cannot be read.
    bool takeOptions(ImportOptions* pOptions);
    void showState();
    void logPrepared() const;
    void showProgress(const QString& strWhat, double dFraction);

    ImportSource m_source;
    QString m_strInterval;       // that of the table, as it was typed
    PlaneChoice m_planes;        // that of the table
    bool m_bTableChosen = false; // the user's own; frames and seconds tell nothing then
    QString m_strWritten;
    BackgroundWork m_looking;
    BackgroundWork m_importing;
    struct Looked; // what the thread found
    std::shared_ptr<Looked> m_pLooked;
    std::shared_ptr<ImportReport> m_pReport;
    ImportTableModel* m_pModel;
    QStringList m_errors;

    QLineEdit* m_pSourceEdit;
    QPushButton* m_pFolderButton;
    QPushButton* m_pFileButton;
    QComboBox* m_pKindBox;
    QLineEdit* m_pIntervalEdit;
    QPushButton* m_pTableButton;
    PlaneBoxes* m_pPlaneBoxes;
    QLabel* m_pSummaryLabel;
    QTableView* m_pTableView;
    QPlainTextEdit* m_pMessages;
    QCheckBox* m_pConfirmBox;
    QWidget* m_pOptions;
    QLineEdit* m_pPhotoEdit;
    QLineEdit* m_pDarkEdit;
    QLineEdit* m_pFlatEdit;
    QLineEdit* m_pBackgroundEdit;
    QComboBox* m_pSizesBox;
    QCheckBox* m_pInvalidBox;
    QLineEdit* m_pExposureEdit;
    QLineEdit* m_pPixelEdit;
    QLineEdit* m_pOutputEdit;
    QPushButton* m_pOutputButton;
    QCheckBox* m_pReplaceBox;
    QProgressBar* m_pProgressBar;
    QPushButton* m_pAbortButton;
    QPushButton* m_pImportButton;
    QPushButton* m_pCancelButton;
};

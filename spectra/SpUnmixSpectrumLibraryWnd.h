// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/ui_SpUnmixSpectrumLibraryWnd.h"

#include "spectra/KeyPair.h"
#include "spectra/SpectrumPlotParams.h"

#include <QDialog>
#include <QList>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVector>

class CORVGLXYPlot1;
struct LibraryChoice;
class SpumKyvoSpectrumCtrl;

// Picks spectra out of the libraries: lists them, shows the spectra of one in a plot and as rows, and hands back those
// that are selected. Names and colours may be changed on the way; the library's file never is.
//
// Its caller makes it, sets pairs and mode, executes it (1 taken, 0 cancelled), reads selectedSpectra() and
// isAppendChecked(), and deletes it. Where "Append" has no meaning the caller hides it. Cancelling ends a batch that is
// being started.
class SpUnmixSpectrumLibraryWnd : public QDialog, public Ui::SpUnmixSpectrumLibraryWnd
{
    Q_OBJECT

public:
    explicit SpUnmixSpectrumLibraryWnd(QWidget* pParent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags(),
                                       bool bModal = true);
    ~SpUnmixSpectrumLibraryWnd() override;

    // The images that spectra must have values for, and the axis that they get (0 emission, 1 excitation, 2 time).
    // Filters the list of libraries at once.
    void setReferencePairs(const QList<KeyPair>& pairs, int nAxis);
    // False makes it the import of one spectrum, without "Append".
    void setMultiSelect(bool bMultiSelect);
    // Loading spectra into a list; true offers to append them to it.
    void setLoadMode(bool bOn);
    // Shows the library of that name; without one of that name nothing is current.
    void preload(bool bPreload, const QString& strName);

    // Copies of the spectra that are selected and have data, in their order, numbered from 0 and without a row. The
    // caller owns them.
    QList<SpectrumPlotParams*> selectedSpectra();
    bool isAppendChecked() const;

    QStringList m_excitationTexts; // the two band columns of the library that is shown
    QStringList m_emissionTexts;
    CORVGLXYPlot1* m_pPlot = nullptr;                   // owned
    QList<QSharedPointer<SpumKyvoSpectrumCtrl>> m_rows; // of the first spectra; see onClickShowAll()
    QList<SpectrumPlotParams*> m_spectra;               // of the library that is shown; owned
    QList<KeyPair> m_referencePairs;
    int m_eAxis = 0;
    bool m_bMultiSelect = true;
    bool m_bPreload = false;
    QString m_strPreload;

Q_SIGNALS:
    // For the start of a batch.
    void signalLoadBrowseWindow();

public Q_SLOTS:
    void reject() override;
    // Draws the selected spectra, as their rows have them, and tells whether they can be taken.
    void updateSpectrumPlot();
    void onToggleShowLegendCheckBox();
    // Shows the library that is current in the list. One that cannot be loaded is told in the log, and the window stays
    // as it was.
    void onUpdateCurrentLibrary();
    // Hides the libraries that cannot be read or lack an image; 0 shows all. The note ends as that of the last library
    // that was read for it.
    void onCheckQualified(int nState);
    void onClickNext();
    void onClickCancel();

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;
    void showEvent(QShowEvent* pEvent) override;

private:
    void init();
    void connectControls();
    void onListChanged();
    void onLibraryClicked();
    void onClickShowAll();

    void showSpectra(const QList<SpectrumPlotParams*>& spectra);
    void keepOneSelected();
    void clearRows();
    void addRows();
    void dropSlice();
    void addSlice(int nEnd);
    void addRow(QWidget& slice);
    void deselectAllBut(int nPlace);
    void tellSpectra(int nFirst);
    void showRowCount();
    bool plotCurve(int nSpectrum);
    void showChoice(LibraryChoice& choice, int nCurves);

    const QListWidgetItem* m_pTriedItem = nullptr; // whose library was asked for last
    bool m_bTriedByPress = false;                  // by the press of the button that is about to be a click
    QVector<bool> m_covered;                       // of each spectrum, see bandCoverage()
    QVBoxLayout* m_pSliceColumn = nullptr;         // of the page: the list, and the slices under it
    int m_nRowLimit = 0;                           // rows that are wanted
    QTimer m_rowTimer;                             // makes them, a slice at a time
    QList<QWidget*> m_leavingPages;                // of earlier libraries; owned
    QList<QSharedPointer<SpumKyvoSpectrumCtrl>> m_leavingRows;
    QTimer m_leaveTimer; // deletes them, a slice at a time
};

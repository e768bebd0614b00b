// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "windows/ui_ConsoleToolbar.h"
#include "windows/ui_SpumKyvoConsoleWnd.h"

#include "spectra/KeyPair.h"
#include "spectra/SpectrumPlotParams.h"
#include "windows/consoleButtons.h"

#include <QDialog>
#include <QImage>
#include <QList>
#include <QMutex>
#include <QPointer>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>

class CILImage;
class CImageCube;
class CORVDistributionView;
class CORVGLXYPlot1;
class CORVPaintQImageView;
class CORVTextTag;
class SpumKyvoCPSWnd;
class SpumKyvoSpectrumCtrl;

// The working window of an analysis: the image cube to look through and to paint regions into, the spectra of these
// regions in a plot and as rows of a list, and the unmixed images with their scale. In background mode it is the
// drawing step before an analysis, in which one spectrum is the background of the others.
//
// It is shown in a tab, says finished(int) by hand and stays: 1 asks for an unmixing with getSelectedSpectra(), 0 takes
// leave. All on the user-interface thread. Nothing here may run while an analysis writes the cube; who runs one locks
// the window.
class SpumKyvoConsoleWnd : public QDialog, public Ui::SpumKyvoConsoleWnd, public Ui::ConsoleToolbar
{
    Q_OBJECT

public:
    explicit SpumKyvoConsoleWnd(QWidget* pParent = nullptr);
    ~SpumKyvoConsoleWnd() override;

    // The frame "ConsoleToolbar" with the controls of the unmixed images, to be shown above the tabs. It is a hidden
    // child of this window until somebody takes it.
    QFrame* toolbar() const { return m_pToolbar; }
    CORVPaintQImageView* imageCubeView() const { return m_pImageCubeView; }
    CORVDistributionView* distributionView() const { return m_pDistributionView; }

    // Shows the cube that the spectra refer to, one pair an image, all of one axis (0 emission, 1 excitation, 2 time),
    // and clears the rows. The cube is borrowed until another one comes or releaseImageCube(); one that changes its
    // size or is emptied meanwhile is not looked at. In data of a Cherenkov isotope the decay controls take effect on
    // it. False, and nothing changed, when the numbers of pairs and images differ.
    bool setImageCube(const QList<KeyPair>& xValues, int nSpectrumType, CImageCube& cube);
    // Lets go of the cube; picture and rows stay.
    void releaseImageCube();
    // Clears the rows. On is the drawing step, off the analysis itself.
    void setBackgroundMode(bool bOn);
    // A row for the tissue's own light and one a probe.
    void setProbeNames(const QStringList& names);
    // Of the sequence that the decay controls belong to, and that spectra of regions name as their origin.
    void setSequenceID(const QString& strSequenceID);
    // The overview of the cube; a null picture is black. One of another size than the cube is scaled to it, so that
    // what is painted on it are pixels of the cube.
    void setPseudoColorImage(const QImage& picture);
    void setDecayState(const QString& strIsotope, double dHalfLifeSeconds, bool bApply);

    // Copies of all spectra that have data, ticked or not, see spectraToUnmix(). The caller owns them.
    QList<SpectrumPlotParams*> getSelectedSpectra();
    // Replaces the rows by copies of these spectra, in their order. Of `spectra` being the console's own list only the
    // rows are made anew.
    void setSpectra(const QList<SpectrumPlotParams*>& spectra);
    // The spectra as their rows have them. Owned by the console, valid until the rows change.
    QList<SpectrumPlotParams*> getSpectra();
    // False also takes the present spectra as those of the last unmixing. The first true asks to save what there is.
    void setSpectraModified(bool bModified);

    QString getNote() const;
    void setNote(const QString& strNote);

    // One tile; the image is borrowed until removeAllUnmixedImages().
    void addUnmixedImage(CILImage* pImage, const QString& strLabel);
    // The range that the tile added last is shown over, in the unit of the colour bar. Its tool tip tells it: with a
    // scale of its own it has no bar.
    void setUnmixedImageRange(double dMin, double dMax);
    void removeAllUnmixedImages();
    // A tile without label that the console owns from then on; 0 for null, else 1.
    int takeUnmixedImage(CILImage* pImage);
    // The part of the common range that is shown, both ends 0 to 1.
    void getScaleRange(double* pLower, double* pUpper) const;
    void setColorBar(int nUnit, bool bNTF, int nColorTable, double dMin, double dMax, bool bReversed, bool bLogScale);
    void setHideColorBar(bool bHide);
    // False selects the tab "Unmixed", true "ImageCube".
    void selectUnmixedTab(bool bImageCube);
    // True takes the tab "Unmixed" away, false brings it back.
    void setUnmixedTabVisible(bool bHide);
    // The window as the user sees it.
    void getViewImage(QImage* pImage);

    CORVPaintQImageView* m_pImageCubeView = nullptr;
    CORVGLXYPlot1* m_pSpectrumPlot = nullptr;
    QList<SpectrumPlotParams*> m_spectra;                        // row by row, owned
    QList<SpectrumPlotParams*> m_lastSpectra;                    // as of the last unmixing, owned
    QList<QSharedPointer<SpumKyvoSpectrumCtrl>> m_spectrumCtrls; // parallel to m_spectra
    QPointer<SpumKyvoSpectrumCtrl> m_pActiveCtrl;                // whose drawing tool is on
    CImageCube* m_pImageCube = nullptr;                          // not owned
    int m_nImageWidth = 0;                                       // of the cube, in pixels
    int m_nImageHeight = 0;
    int m_nCubeUnit = -1; // of its values, as tag_edisplayunit; set by the engine
    QImage m_pseudoColorImage;
    QList<KeyPair> m_xValues; // one an image of the cube
    int m_nSpectrumType = 0;  // 0 emission, 1 excitation, 2 time
    QMutex m_modifiedMutex;   // locked while the first change is told
    bool m_bBackgroundMode = false;
    QString m_strSequenceID;
    QPointer<SpumKyvoCPSWnd> m_pComputePureSpectrumWnd; // owned
    bool m_bSpectraModified = false;                    // since the last unmixing
    QStringList m_probeNames;
    QStringList m_isotopeNames; // in the order of the combo
    QVector<double> m_decayFactors;
    QVector<QString> m_imageNames; // the cube's images by click number, spot by spot; set by the engine
    bool m_bDecayOff = true;       // the correction is not in force on the cube
    bool m_bCherenkovPresent = false;
    bool m_bDecayApplied = false;
    double m_dHalfLifeSeconds = 0.0;
    QString m_strIsotope;
    bool m_bResultsExist = false; // set by the engine: leaving asks to save
    int m_nRemovedCount = 0;      // rows removed since the list was last empty
    int m_nNextChannel = 0;       // of the paint view; not used again until the list is empty
    int m_nSpectrumCount = 0;

    CORVDistributionView* m_pDistributionView = nullptr;
    std::unique_ptr<CILImage> m_pColorBarImage; // carries the palette of the bar
    std::unique_ptr<CORVTextTag> m_pUnitTag;    // beneath the bar
    std::unique_ptr<CORVTextTag> m_pMaxTag;     // above it
    QList<CILImage*> m_unmixedImages;           // owned, see takeUnmixedImage()

Q_SIGNALS:
    void individualScaleSignal(bool bIndividual);
    // What was unmixed is about to differ from what is shown, or to be left.
    void askToSaveExistingResult();
    void updateColorBarSize();

public Q_SLOTS:
    void reject() override;
    void onClickExportGraphics();
    void updateSpectrumPlot();
    void updateRemoveButtonStatus();
    void showWarningForEmptyUnmixname(QString strUnmixName);
    // The computed spectrum goes to its row; nIndex is that of the mixed one, which is not ticked any longer.
    void onUpdateSpectrum(int nIndex);
    // Another tab of the sequence's window is current.
    void onTabSelected(QString strTabName);
    void updateColorBarLayout();

protected Q_SLOTS:
    void languageChange();
    void onCurrentTabChanged(int nIndex);
    void onDrawToolTriggered(QAction* pAction);
    void onDrawToolToggled(bool bOn);
    void onToggleShowLegendCheckBox();
    void onSelectToggled(int nState);
    void onSelectToggled(bool bSelected);
    void onClickSaveSpectrumLibrary();
    void onClickLoadSpectrumLibrary();
    void onComputePureSpectrum();
    void onUpdatePlot(int nButton);
    void onAddSpectrum(QString strProbeName, QString strColorName);
    void onAddSpectrum(QString strProbeName);
    void onAddSpectrum();
    int getProbesCount();
    void updateCursorSpectrum(int nImgX, int nImgY);
    void onClickUnmix();
    void onClickCancel();
    void onRemoveSpectrum();
    void onClickExportData();
    void onClickCubeOverviewCheckBox(bool bChecked);
    void onImageIndexSliderChanged(int nValue);
    void onImageScaleSliderChanged(int nValue);
    void onImageIndexSpinBoxChanged(int nValue);
    void onToggleApplyCherenkovDecayCorrection(bool bApply);
    void onIsotopeComboboxSelectionChanged(int nIndex);
    void onHalfLifeEditBoxChanged(QString strHalfLife);
    void onToggleShowImageLabelsCheckBox();
    void onToggleIndividualScaleCkB(bool bIndividual);
    void onChangeLowerSpan(int nValue);
    void onChangeUpperSpan(int nValue);
    void onMinSpinBoxChanged(double dValue);
    void onMaxSpinBoxChanged(double dValue);

protected:
    void changeEvent(QEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;
    void showEvent(QShowEvent* pEvent) override;

private:
    void init();
    void initCubeView();
    void initPlot();
    void initDecayControls();
    void initUnmixedImages();
    void connectControls();
    void connectToolbar();
    void showModeTexts();
    void showWhatComesLater();

    // Whether the borrowed cube is still the one that was shown, with data.
    bool hasImageCube() const;
    void showOverview();
    void showImageOfCube();
    bool applyDecayCorrection(bool bApply);
    bool computeDecayFactors();

    void updateButtons();
    ConsoleState state() const;
    void readRows();
    void markModified();
    void showChange();
    void plotSpectrum(int nRow, const XTNT::Vector<double>& background);
    bool plotCursor(const XTNT::Vector<double>& values);
    bool cursorSpectrum(int nImgX, int nImgY, XTNT::Vector<double>& values) const;
    void tellPixel(int nImgX, int nImgY, const XTNT::Vector<double>& values);
    void tellPaintedPixels(int nPixels);

    void clearRows();
    void addRow(const SpectrumPlotParams& spectrum);
    void connectRow(SpumKyvoSpectrumCtrl& row);
    void removeRow(int nRow);
    void renumberRows();
    void orderTabs();
    QStringList rowNames() const;
    int rowOfChannel(int nChannel) const;
    int rowOf(const QObject* pWidget) const;
    unsigned char channelOf(int nRow) const;
    bool writeRegion(int nRow, const QList<int>& pixels);
    void refreshRegionSpectra();
    struct LibraryAnswer;
    LibraryAnswer askForSpectra(bool bSeveral);
    void importSpectrum(int nRow);
    void turnPaintToolOff();
    void activateTool(int nRow);
    void showPen(const QString& strPen);

    void showScaleControls();
    void tellScale();

    QFrame* m_pToolbar = nullptr;
};

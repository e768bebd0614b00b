// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/AnalysisInput.h"
#include "engine/AutomaticRunFacts.h"
#include "engine/CImageCube.h"
#include "engine/ComponentConstraint.h"
#include "engine/EngineEnums.h"
#include "engine/ImageFindings.h"
#include "engine/ImageRecord.h"
#include "engine/MCRParams.h"
#include "engine/OwnResultView.h"
#include "engine/RoiRecord.h"
#include "engine/ScaleRatio.h"
#include "engine/dataMask.h"

#include "XTNT/xtnt_matrix.h"
#include "XTNT/xtnt_vector.h"
#include "host/orv_types.h"
#include "spectra/KeyPair.h"

#include <QList>
#include <QMap>
#include <QPair>
#include <QPixmap>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QThread>
#include <QVector>

#include <atomic>
#include <climits>
#include <functional>
#include <memory>
#include <vector>

class AnalysisWindows;
class CAutoProgressUpdate;
class CILImage;
class CORVDataset;
class CORVSequenceDataset;
class CPLClickInfo;
class MCR;
class QDomElement;
class SpUnmixCompositeWnd;
class SpUnmixWizardWnd;
class SpumKyvoConsoleWnd;
class SpectrumPlotParams;
struct UnmixedSource;
struct ValueLimits;
struct downloaded_save_data;

// The unmixing engine of one sequence: owns an analysis from the chosen images to the unmixed images, and runs its
// arithmetic on its own thread.
//
// The object lives on the user-interface thread; run() and what it calls are all that the worker executes. There are no
// locks: between start() and the end of isRunning() the user-interface thread touches nothing of the engine but
// isRunning(), abortRun(), wait() and, after an abort, reportStatus(). Results are read from the members afterwards.
// See runEngine.h for the loop that keeps to this.
class CORVSpumKyvo : public QThread
{
    Q_OBJECT

public:
    explicit CORVSpumKyvo(const QString& strSeqId);
    // Does not stop a running thread: the owner waits for its end first.
    ~CORVSpumKyvo() override;

    // --- run control -------------------------------------------------------------------------------------------------

    // Does the run that m_bRunPCA and m_eMode ask for. Public so that the same work can be done without the thread.
    void run() override;
    // Ends the worker where it next passes a cancellation point, unwinding its stack; wait() for it afterwards.
    virtual void abortRun();
    // As QThread::wait(). Once it has answered true, all that the worker wrote is visible to the caller, also to a
    // checker of threads that cannot look into Qt's own locks.
    bool wait(unsigned long nMilliseconds = ULONG_MAX);

    // Fits the known spectra of m_spectrumPlots to every pixel: m_concentrations, m_spectra, m_nError.
    void solveConcentrations();
    // Resolves the data of the cube into spectra and concentrations under m_params: m_lastParams, m_concentrations,
    // m_spectra, m_spectrumPlots, m_scaleRatios, m_runFacts, m_nError. A failure leaves the results of the last run
    // where they were. Writes the trace of the iterations to std::cout. Passes cancellation points.
    void runMCR();
    // The eigenvalues of the data inside the mask of m_analysisInput: m_pcaResult, m_nError. A selection without images
    // or a mask that cannot be taken ends it with a line and no error code, m_pcaResult being what it was. Clears
    // m_bRunPCA. Passes cancellation points.
    void runPCA();
    // Brings m_spectrumPlots to m_spectra. As many plots as there are components keep their names and colours.
    void createSpectrumPlots();
    // Replaces m_properties; bCurrent is false for a result of the first file generation.
    void updateResultProperties(bool bCurrent);

    bool hasError() const { return m_nError != RUNERROR_NONE; }
    QString getErrorText() const;
    // Shows and logs a line while a long operation is under way; without one (m_pProgress null) the line is dropped on
    // purpose, log included. Safe from the worker.
    void reportStatus(const QString& strMessage, long nLevel);

    // --- the analysis ------------------------------------------------------------------------------------------------

    // "Temporal Unmixing" or "Spectral Unmixing".
    QString getAnalysisName() const;
    // The run modes that the sequence allows, ascending.
    QList<int> availableModes() const;
    // Takes ownership of the spectra and deletes those of before.
    void setPresetSpectra(const QList<SpectrumPlotParams*>& spectra);
    // Brings the engine to a known state before an analysis in the given mode: no cube, mask, labels, plots or results.
    // The selection and the analysis input stay.
    void resetAnalysis(int nMode);
    void clearUnmixedImages();

    // --- inspection and selection ------------------------------------------------------------------------------------

    // Reads kind, images, keys, probes and subject from the sequence; true when it can be analysed.
    bool buildDatasetInfo();
    // See checkSelection(); logs when bLog. *pAxis is left alone when the result is 0.
    int validateSelection(QList<KeyPair>& selection, int* pAxis, bool bLog);
    // Takes the user's selection: true when it is usable as it stands. Otherwise false, and either the part of it that
    // is usable is stored, or, when nothing is, the argument becomes the selection of before.
    bool applySelection(QList<KeyPair>& selection);
    // Rebuilds m_primaryKeys and m_secondaryKeys from the selection.
    void updateKeys();
    static bool wavelengthDigits(QString& strKey);

    // --- cube and mask -----------------------------------------------------------------------------------------------

    // Click numbers of the selected pairs into m_imageList, spot after spot; false when a pair has no image.
    bool createImageList();
    // Chooses the binning (unless bAuto is false and there is one) and from it the size of the cube's images.
    bool setBinningAndSize(bool bAuto);
    // Reads, calibrates and stores the selected images, and looks at each as it passes: m_imageFindings. Returns at
    // once while m_bCubeValid. `step`, when there is one, is called before each image with the share that is done, and
    // may throw to stop. Passes cancellation points.
    bool buildImageCube(const std::function<void(double dShare)>& step = {});
    // Turns the mask image of m_analysisInput into m_maskIndices at the analysis binning. False, told in the log, when
    // there is no such image or it does not fit; nothing is changed then.
    bool takeDataMask(MaskPixels eWhich = MaskPixels::FloatsAboveZero);
    // Multiplies the raw data of the cube by the decay factors of its images. The cube is a copy: its elements are
    // shared.
    void applyDecayCorrection(CImageCube cube, double dHalfLifeSec, const QString& strSeqId,
                              const QVector<QString>& clickNumbers);

    // --- what an automatic run starts from ---------------------------------------------------------------------------

    // How the selected images lie on the grid of m_secondaryKeys (rows) by m_primaryKeys (columns); see
    // wavelengthTopology().
    void buildTopology(XTNT::Matrix<int>& out);
    // The spectrum over the selected images that an initial guess names; empty for an "Auto" one. A spectrumType other
    // than 0 is told and gives zeros.
    XTNT::Vector<double> guessSpectrum(int spectrumType, const QString& name);
    // A source's value at a wavelength; see curveValue().
    double lookupCurve(const QString& name, const QString& wavelength) const;
    // What is known beforehand of the components m_labels, from blue to red: one constraint each in `out`, and
    // m_suggestedLabels in the same order. When nothing can be predicted, defaults in the order of m_labels, and
    // m_suggestedLabels stays. Components of one and the same place leave fewer constraints than labels.
    void suggestConstraints(QList<ComponentConstraint>& out);
    // A source (name with suffix) at the wavelengths, largest intensity of its curve 1; zeros when the database lacks
    // it.
    XTNT::Vector<double> sourceSpectrum(const QString& strName, const QStringList& bandKeys) const;
    // What crosses the tissue at the wavelengths; an empty name takes that of the subject, "RMP-7" when no subject is
    // known. Ones for a tissue that is not there. See attenuationFactors().
    XTNT::Vector<double> tissueAttenuation(const QString& strTissue, const QStringList& bandKeys) const;
    // Takes the component names of m_analysisInput into m_labels and m_params.Constraints: suggested constraints when
    // they are wanted and the sequence is not temporal, else defaults. Fewer suggestions than names leave no
    // constraints at all, and the run ends without a solution.
    void takeComponents();

    // --- pictures ----------------------------------------------------------------------------------------------------

    // How much red, green and blue each selected image gives to the overview of the cube, pairs x 3. False, told in the
    // log and the weights left alone, without a sensor's curve in the database; false too when memory runs out.
    bool computeRGBWeights(XTNT::Matrix<double>& weights);
    // Builds the cube and its overview, m_cube.m_rgbImage. Failures are told in the log.
    bool createPseudoColorImage();
    // Makes m_unmixedImages from the concentrations and shows them: a map over the photograph for each component and a
    // composite, for each spot. The first of the images is a copy of the photograph (empty when there is none), the
    // rest are the layers and what was made of them. bNew: of a new result, whose spectra are then unmodified. False
    // without concentrations or without the sequence, nothing being done then; false too, told in the log, when the
    // first image of m_imageList is gone, the result does not go together (a loaded one may be so), or memory runs out.
    bool updateUnmixedImages(bool bNew);
    // After a run: hand its spectra, and the decay controls that it started from, to the view of an automatic run.
    void updateConsoleSpectra();
    void refreshDecayPanel();
    // Takes the view's decay controls as those of the result.
    void storeDecayState();

    // --- export ------------------------------------------------------------------------------------------------------

    // Makes the dataset of one unmixed map in a folder of the system's temporary directory and opens nothing. The index
    // is spot x (components + 1) + component; the last of each spot stands for the composite, which is no dataset.
    // Gives back the dataset's label and the path of its "ClickInfo.txt" (either may be null; untouched after a
    // failure). A failure is told in the log; a folder that was begun remains.
    bool openUnmixedDataset(int nIndex, QString* pStrName, QString* pStrPath);
    // The seven sections of the click info of a map that was made from pSource, appended to *pOut; see
    // exportClickInfo(). nClick is the scan spot, from 1, or 0 when there is no choice; strName the dataset's label.
    // With bMerge the source's entries are taken over, with bKeepInfo its click number and folder too.
    void buildClickInfo(CPLClickInfo* pOut, CORVDataset* pSource, CILImage* pMap, int nComponent, int nClick,
                        QString strName, bool bMerge, bool bKeepInfo);
    // The dataset of the image in which a component is brightest at a spot, both from 0; null when there is none, as
    // after a change of the sequence.
    CORVDataset* unmixedSource(int nComponent, int nSpot) const;

    // --- results -----------------------------------------------------------------------------------------------------

    // The present result as the text of a file of version 2 (storage/). m_roiResults takes in the regions of open
    // images of the result, and is empty afterwards.
    QString resultToXml();
    // Brings engine and view to the result in a file's text, of either version. True when they show it, and also, after
    // cancelRun(), when the overview of the cube cannot be made; failures are told in the log. What was read before a
    // failure stays, so after one there is no result to go on with.
    bool loadResult(QString content);
    // Fill the engine from the root element of such a document, and no more. False, told in the log, at the first
    // element that does not fit; what was read until then stays.
    bool readResultV1(QDomElement root);
    bool readResultV2(QDomElement root);

    // --- where results are shown -------------------------------------------------------------------------------------

    // Never null. The engine's own lists until a window takes their place; a view that is set is borrowed, and null
    // sets the engine's own again.
    ResultView& resultView() { return *m_pResultView; }
    void setResultView(ResultView* pView) { m_pResultView = pView != nullptr ? pView : &m_ownResultView; }
    OwnResultView& ownResultView() { return m_ownResultView; }
    const OwnResultView& ownResultView() const { return m_ownResultView; }

    // --- windows -----------------------------------------------------------------------------------------------------

    // The engine owns what makes and wires its windows from then on, and shows its results there; null goes back to an
    // engine without windows. The windows of before are deleted.
    void setWindows(std::unique_ptr<AnalysisWindows> pWindows);
    AnalysisWindows* windows() const { return m_pWindows.get(); }
    // The window, made on first use; null for an engine without windows.
    SpUnmixWizardWnd* wizard();
    SpumKyvoConsoleWnd* console();
    SpUnmixCompositeWnd* compositeWnd();
    // Brings the engine and its windows to the start of an analysis of the selected images; see AnalysisWindows.
    void prepareAnalysis(int nMode, bool bUsePreset);

    // --- getters -----------------------------------------------------------------------------------------------------

    const QStringList& getEmissionKeys() const { return m_emissionKeys; }
    const QStringList& getExcitationKeys() const { return m_excitationKeys; }
    const QList<KeyPair>& getAllKeyPairs() const { return m_allKeyPairs; }
    const QList<KeyPair>& getSelectedKeyPairs() const { return m_selectedKeyPairs; }
    const QString& getSequenceId() const { return m_strSeqId; }

public Q_SLOTS:
    // Shows the unmixed images each over its own range, or all over a common one.
    void onAutoScaleClicked(bool bIndividual);
    // Opens one unmixed image as a dataset, or the composite of a spot in its window.
    void onImageDoubleClicked(int nImgIndex);
    // Of a button of the console's or the composite's toolbar: that window's picture is printed or copied.
    void onClickPrintButtons();
    void onClickCopyToClipboard();
    void onSignalUpdatePreference();
    // A window has closed.
    void onClickUnmixWizardFinished(int nResult);
    void onClickDrawingFinished(int nResult);
    void onClickCompositeFinished(int nResult);
    // The composite's picture becomes the overview of the cube.
    void onUpdateImageCubeRGB();
    // Makes a dataset of every map, or at several scan spots of the maps of one component that the user picks, and has
    // the host group them (createSpumKyvoSequence). The first failure ends it without that.
    void onClickExportAsSequence();
    // Asks for a PCA in place of an unmixing, of what the wizard says.
    void onRunPCA();

Q_SIGNALS:
    // Set-up is complete and the thread is to be started.
    void readyToRun();
    // The user backed out of the set-up, or it failed.
    void cancelRun();
    void pcaRun();
    void loadSpumResult(QString, bool, ESTATUS*, downloaded_save_data* pDownloadData);
    void loadSpumResult(QString, bool, ESTATUS*);
    void createSpumKyvoSequence(QStringList, bool);
    void printPixmap(QPixmap pixmap);

public:
    QString m_strSeqId;      // key for all host look-ups
    int m_eSeqKind = 0;      // set by buildDatasetInfo()
    int m_eTemporalKind = 0; // of a temporal sequence: 0 not fluorescent, 1 epi, 2 transillumination
    int m_eAxis = SPECTRUMAXIS_EMISSION;
    int m_eMode = RUNMODE_MANUAL;
    QMap<QString, ImageRecord> m_imageRecords; // by click number
    QVector<QString> m_imageList;              // click numbers in cube order
    QStringList m_emissionKeys;                // rows of the selection table: emission filters, or times
    QStringList m_excitationKeys;              // its columns: excitation filters, or intervals
    QList<KeyPair> m_allKeyPairs;
    QList<KeyPair> m_selectedKeyPairs;
    QStringList m_primaryKeys;                  // values along the axis, in selection order
    QStringList m_secondaryKeys;                // values of the other key
    QList<SpectrumPlotParams*> m_presetSpectra; // owned
    bool m_bAutoBinning = true;
    int m_nBinning = 0;
    int m_nWidth = 0; // of the cube's images, at m_nBinning
    int m_nHeight = 0;
    int m_eUnit = DISPLAYUNIT_RADIANCE;
    CImageCube m_cube;
    bool m_bCubeValid = false;
    CILImage* m_pPhoto = nullptr; // the host's
    int m_bUseMask = 0;
    std::vector<int> m_maskIndices; // row-major at m_nWidth x m_nHeight
    QStringList m_labels;
    QStringList m_suggestedLabels;
    QString m_strSubjectType;
    QStringList m_probes;
    MCRParams m_params; // of the next automatic run
    QPointer<SpUnmixWizardWnd> m_pWizard;
    QPointer<SpumKyvoConsoleWnd> m_pConsole;
    QPointer<SpUnmixCompositeWnd> m_pComposite;
    QStringList m_spots;                        // "x,y"
    CAutoProgressUpdate* m_pProgress = nullptr; // not owned; only while a long operation is under way
    int m_nError = RUNERROR_NONE;
    MCRParams m_lastParams;                // with which the results below were made
    XTNT::Matrix<double> m_concentrations; // components x rows of the data
    XTNT::Matrix<double> m_spectra;        // components x images
    int m_nResultUnits = 0;
    QList<SpectrumPlotParams*> m_spectrumPlots; // one per component, owned
    QList<ScaleRatio> m_scaleRatios;
    int m_nColorMap = 1;
    bool m_bReverse = true;
    bool m_bLogScale = false;
    int m_nOverlayOpacity = 100; // percent
    bool m_bIndividualScale = true;
    QList<RoiRecord> m_roiResults;
    QList<QPair<QString, QString>> m_properties;
    bool m_bSkipSavePrompt = false;
    bool m_bResultReady = false;      // a run has come to its end since the last reset
    QList<CILImage*> m_unmixedImages; // owned
    bool m_bRunPCA = false;           // the next run is a PCA
    XTNT::Vector<double> m_pcaResult; // eigenvalues of the last PCA
    bool m_bCherenkov = false;
    bool m_bDecayApplied = false;
    double m_dHalfLifeSec = 0.0;
    QString m_strIsotope;
    QString m_strLoadedIsotope;
    double m_dLoadedHalfLife = 0.0;
    bool m_bLoadedDecayApplied = false;
    bool m_bHasLoadedDecay = false;
    bool m_bBatchMode = false;
    QString m_strBatchPath;
    int m_nComponents = 0; // of m_concentrations, when maps are exported
    // What a run takes from the user besides the selection.
    AnalysisInput m_analysisInput;
    // Of the images of the cube, as far as it was filled.
    ImageFindings m_imageFindings;
    // Of the last automatic run that came to its iterations.
    AutomaticRunFacts m_runFacts;

private:
    // Null during a run, too: its worker has the engine to itself.
    AnalysisWindows* usableWindows() const;
    // What run() does between its provisions for an abort.
    void runSteps();
    // What the engine's own view shows of a cube of a sequence with Cherenkov light.
    void correctDecay(CImageCube& cube);

    OwnResultView m_ownResultView{m_spectrumPlots, m_analysisInput, [this](CImageCube& cube) { correctDecay(cube); }};
    ResultView* m_pResultView = &m_ownResultView;
    std::unique_ptr<AnalysisWindows> m_pWindows;
    std::atomic<int> m_nRunsEnded{0}; // released at the very end of each run

    // Steps of buildDatasetInfo().
    void readKind(const CORVSequenceDataset& sequence);
    bool readImages(const CORVSequenceDataset& sequence);
    void readSubject(CORVDataset* pDataset);
    bool readPhotograph(const CORVSequenceDataset& sequence, CORVDataset* pDataset);
    void addSpectralImage(CORVDataset* pDataset, ImageRecord record);
    void addTemporalImage(CORVDataset* pDataset, ImageRecord record, int* pCount);
    bool selectAllImages();

    // Steps of runMCR() and runPCA(); the results are error codes.
    void reportProgress(const QString& strMessage);
    int resolveSpectra();
    int startCurveResolution(MCR& mcr);
    int constrainComponent(MCR& mcr, int i);
    int iterate(MCR& mcr);
    void takeResolvedSpectra(const MCR& mcr);
    int analyseSelection();

    // Steps of openUnmixedDataset() and onClickExportAsSequence().
    int exportedSpots() const;
    QString makeDatasetFolder(const QString& strName);
    bool makeUnmixedMap(CORVDataset& source, int nComponent, int nSpot, CILImage& out);
    bool writeUnmixedDataset(CORVDataset& source, const CILImage& map, const QString& strFolder, CPLClickInfo& info);
    QList<int> askForExportedMaps() const;

    // Steps of buildImageCube().
    bool fillImageCube(const std::function<void(double dShare)>& step);
    bool bringToCubeSize(CILImage& image) const;

    // Steps of updateUnmixedImages().
    bool showUnmixedImages(CORVSequenceDataset& sequence, CORVDataset& dataset);
    ValueLimits shownRange(const ValueLimits& limits) const;
    void showColorBar(const ValueLimits& range);
    void showSpot(const UnmixedSource& source, int nSpot);
};

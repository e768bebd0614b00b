// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "algorithms/MCREnding.h"
#include "algorithms/PCA.h"
#include "algorithms/SpectrumFit.h"

#include "XTNT/left_reduction.h"
#include "XTNT/residual_norm.h"
#include "XTNT/xtnt_matrix.h"
#include "XTNT/xtnt_vector.h"

#include <memory>
#include <ostream>

// Multivariate curve resolution by alternating least squares (R. Tauler, Multivariate curve resolution applied to
// second order data, 1995): D (M x N, a row a pixel, a column a band) is resolved into C (M x K) times S (K x N) under
// constraints. One object serves one run:
//
//   setData, setComponents, setters, the plain members, run; then conc and spec.
//
// Results are integers unless stated: 0 is success, and a refused setter changes nothing. The object's matrices share
// storage with what they were given.
class MCR
{
public:
    using Ending = MCREnding;

    MCR() = default;
    virtual ~MCR() = default;
    MCR(const MCR&) = delete;
    MCR& operator=(const MCR&) = delete;

    // --- data and size -----------------------------------------------------------------------------------------------

    // Takes a share of x (M x N) and decomposes it; the result of PCA::decompose: 1, or 0 for an empty x.
    int setData(const XTNT::Matrix<double>& x);
    // The same on the caller's buffer, row by row, which is not copied and must outlive the object.
    int setData(double* buffer, long long rows, long long columns);

    // Number of components. 1: more than bands or pixels; 2, and lastError is 2: more than the rank of the data; 3:
    // fewer than 2. Otherwise sizes the members, makes the first estimate and gives lastError (3 for an estimate with a
    // zero spectrum). Passes cancellation points.
    int setComponents(int k);

    // Fills knownSpectrumState with `state`. State 0 also clusters the pixels into K groups and takes the groups' mean
    // rows as first spectra, normalised and sorted; a zero mean row leaves lastError 3.
    void computeInitialEstimate(int state);

    // --- setters -----------------------------------------------------------------------------------------------------

    // Makes `spectrum` (N values, as they are) row `component` of the first estimate. The estimate that resembles it
    // most by correlation gives way: its row takes what stood in row `component`, unless it holds a known spectrum
    // itself; then the next best is tried. Switches autoSorting and forceAF off. False for a wrong component or length,
    // and when every row is taken.
    bool setKnownSpectrum(int component, XTNT::Vector<double> spectrum);

    // Which bands exist on the grid of secondary (rows) by primary (columns) values: ones and zeros. 1 when they are
    // not N.
    int setTopology(const XTNT::Matrix<int>& layout);

    // which: 0 concentrations, 1 spectra (1 for any other). mode: 0 none, 1 clamp, 2 non-negative least squares.
    int setNonNegMode(int which, int mode);
    int setUnimodTol(double tolerance);
    // K modes of unimodality. Of spectra they are stored, but the result is 1 all the same, which hosts expect.
    int setUnimodFlags(int which, const XTNT::Vector<int>& modes);
    // Mode 0 to 3 (none, vertical, horizontal, average) for one spectrum.
    bool setUnimodMode(int component, int mode);
    // Modes (0 free, 1 equal, 2 upper bound, 3 lower bound) and values of the size of C (which 0) or S (which 1).
    int setBounds(int which, const XTNT::Matrix<int>& modes, const XTNT::Matrix<double>& values);
    int setInitialEstimate(int which, const XTNT::Matrix<double>& estimate);
    // M x N weights of the weighted update.
    int setWeights(const XTNT::Matrix<double>& values);
    // Refused without weights of the right size.
    int setWeightingMode(int mode);
    // Forces bands of a spectrum to zero once the warm-up is over: in every row of the topology those up to column
    // `band` (kind 0, high pass) or from it on (kind 1, low pass), the column itself included. Marks stay.
    bool setBandCutoff(unsigned kind, int component, int band);
    bool setLocked(int component, unsigned char locked);
    // Keeps a component to the first pixels, as many as the list is long, whatever it names, as users know it. False
    // when the component is out of range, or when the list both begins below 0 and ends beyond the last pixel.
    bool setSolutionMask(int component, const XTNT::Vector<int>& pixels);
    // At the listed pixels every other component is zero. Checks as above; a pixel outside the image is passed over.
    bool setPureMask(int component, const XTNT::Vector<int>& pixels);

    // --- run ---------------------------------------------------------------------------------------------------------

    // 0 converged or fit good enough, 1 divergence, 2 iteration limit reached, 3 degenerate estimate (lastError is 3;
    // the residuals and lacks of fit keep their old values). Writes a trace of the iterations to `out`. NaNs are not
    // tested for: they travel through to the limit. Passes cancellation points.
    int run(std::ostream& out);

    Ending ending() const { return m_ending; }

    // Solves every half-step as a textbook has it, with whole-matrix operations and one solver call a row or column:
    // the reference for the faster passes.
    void usePlainPath(bool plain) { m_plain = plain; }

    long long nComponents = 0; // K
    long long nRows = 0;       // M, pixels
    long long nCols = 0;       // N, bands
    int iteration = 0;
    int maxIterations = 20;
    int notImprovingCount = 0;        // consecutive iterations in which the residual grew
    XTNT::Matrix<double> rawData;     // the data as given
    XTNT::Matrix<double> data;        // the denoised data that are fitted
    XTNT::Matrix<double> residualPCA; // fitData - conc spec
    XTNT::Matrix<double> residualRaw; // rawData - conc spec
    XTNT::Matrix<double> conc;        // C, M x K
    XTNT::Matrix<double> spec;        // S, K x N
    XTNT::Matrix<int> topology;
    XTNT::Matrix<double> weights; // M x N
    int weightingMode = 0;        // not 0: weighted update
    int concNonNegMode = 0;
    int specNonNegMode = 0;
    int rowScaling = 0; // not 0: rows of rawData are divided by their norms for the run
    PCA pca;
    int debugTrace = 0;                // not 0: labelled matrices on standard output, on the plain path
    int initialEstimateKind = 0;       // 0 none given, 1 conc, 2 spec
    double convergenceTolerance = 0.1; // percent
    XTNT::Matrix<double> concBoundValues;
    XTNT::Matrix<double> specBoundValues;
    XTNT::Matrix<int> concBoundModes;
    XTNT::Matrix<int> specBoundModes;
    double unimodTol = 1.0;        // factor by which a value may rise away from the peak
    int normalization = 1;         // of spectra: 1 by the maximum, 2 by N times the sum of absolute values, else none
    unsigned char forceAF = 1;     // component 0 may not vanish where there is signal
    int warmUp = 5;                // iterations during which bounds and unimodality sleep
    unsigned char autoSorting = 1; // components by the centre of mass of their spectra
    double lackOfFitPCA = 0;       // percent, against fitData
    double lackOfFitRaw = 0;       // percent, against rawData
    int extraPCs = 1;              // principal components kept beyond K
    int keepMatrices = 1;          // 0: a run leaves no residuals, and pca.U becomes `data`; the rest is the same bits
    int lastError = 0;             // 2 too many components, 3 degenerate estimate
    XTNT::Vector<int> concNonNegFlags;
    XTNT::Vector<int> specNonNegFlags;
    unsigned char concUnimodActive = 0;
    unsigned char specUnimodActive = 0;
    XTNT::Vector<int> concUnimodModes;
    XTNT::Vector<int> specUnimodModes;
    unsigned char concBoundsActive = 0;
    unsigned char specBoundsActive = 0;
    XTNT::Vector<int> knownSpectrumState; // -1 for a row of spec that holds a known spectrum, else 0
    XTNT::Vector<int> lockedFlags;
    XTNT::Vector<double> rowNorms; // Euclidean norms of the rows of rawData
    XTNT::Matrix<double> fitData;  // the target of the residual

private:
    // Whether the last iteration ended the run, and how.
    enum class Verdict
    {
        GoOn,
        Converged,
        GoodFit,
        Diverged,
        Limit
    };

    bool componentExists(int component) const { return component >= 0 && component < nComponents; }
    bool acceptsPixels(int component, const XTNT::Vector<int>& pixels) const;

    // Before the iterations.
    void deriveSwitches();
    void lockSpectrum(int component);
    double norm(const XTNT::Matrix<double>& a) const;

    // The half-steps and their constraints. False leaves lastError 3.
    bool iterate(double* sigma);
    bool solveConcentrations(bool bSpectraFollow);
    bool solveConcentrationsPlainly();
    bool solveConcentrationsInOnePass(bool bSpectraFollow);
    void ownConcentrations();
    void constrainConcentrations();
    void applyConcentrationBounds();
    void shapeConcentrationColumns();
    bool boundConcentrations() const { return concBoundsActive != 0 && warmUp < 1; }
    bool shapeConcentrations() const { return concUnimodActive != 0 && warmUp == 0; }
    void forceAutofluorescence();
    bool forcesAutofluorescence() const { return forceAF != 0 && topology.num_rows() <= 1; }
    bool solveSpectra();
    void makeSpectraNonNegative();
    void boundAndShapeSpectra();
    void shapeSpectraBySegments();
    bool normaliseAndSort();
    void sortComponents();
    void updateDataBySpectra();
    void updateDataByConcentrations();
    bool updatesAreWeighted() const;

    // After an iteration and after the last one.
    Verdict judge(std::ostream& out, double sigmaOld, double sigmaNew, double norm);
    bool finishConverged();
    int finish(std::ostream& out, int result, double normOfData, double normOfRawData);
    XTNT::ResidualNorms fillResiduals();
    int degenerate();
    bool isPlain() const { return m_plain || debugTrace != 0; }

    Ending m_ending = Ending::NotRun;
    bool m_plain = false;
    std::unique_ptr<XTNT::LeftReduction> m_reduction; // made along with the concentrations, for m_fit
    std::unique_ptr<SpectrumFit> m_fit;               // of the concentrations at hand; null while they change
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ReferenceAlgebra.h"
#include "algorithms/MCR.h"

#include <sstream>
#include <string>
#include <vector>

namespace reference {

// Walks one column away from its peak and corrects rises beyond the tolerance.
void makeUnimodal(Column& values, int mode, double tolerance);

// A second implementation of the whole curve resolution, for checks on small data: every step written out on single
// elements. Takes its settings from an object that is ready to run and shares no storage and no solver with it.
class Resolution
{
public:
    explicit Resolution(const MCR& prepared);

    int run();
    std::string trace() const { return m_trace.str(); }

    Index K, M, N;
    int iteration, maxIterations, notImprovingCount, weightingMode, concNonNegMode, specNonNegMode, rowScaling;
    int initialEstimateKind, normalization, warmUp, extraPCs, lastError;
    double convergenceTolerance, unimodTol, lackOfFitPCA, lackOfFitRaw;
    bool forceAF, autoSorting;
    Table rawData, originalData, data, fitData, residualPCA, residualRaw, conc, spec, topology, weights;
    Table concBoundValues, specBoundValues, concBoundModes, specBoundModes;
    std::vector<int> concNonNegFlags, specNonNegFlags, concUnimodModes, specUnimodModes, lockedFlags;
    Column rowNorms;

private:
    enum class Next
    {
        Iterate,
        FinalConcentrations,
        Finish,
        Degenerate
    };

    void deriveSwitches();
    void computeRowNorms();
    Next setUp();
    Next iterate();
    Next concentrationHalfStep();
    Next spectrumHalfStep();
    Next judge();
    Next finalConcentrations();
    int finish();

    bool degenerate();
    bool normaliseAndSort();
    void sortComponents();
    void constrainConc();
    void constrainSpecSigns();
    void applyBounds(Table& values, const Table& modes, const Table& bounds) const;
    void boundConc();
    void unimodalConc();
    void unimodalSpec();
    void forceAutofluorescence();
    void refitFreeComponents(const Table& specBeforeBounds);
    void refitGroup(const std::vector<Index>& bands, const std::vector<Index>& freeOnes,
                    const std::vector<Index>& fixedOnes);
    void weightedUpdateWithSpec();
    void weightedUpdateWithConc();

    bool m_concUnimod = false, m_specUnimod = false, m_concBounds = false, m_specBounds = false;
    int m_result = -1;
    double m_sigmaOld = 0, m_normData = 0, m_normRaw = 0;
    std::ostringstream m_trace;
};

} // namespace reference

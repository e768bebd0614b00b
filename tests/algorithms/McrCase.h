// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ReferenceResolution.h"
#include "algorithms/MCR.h"

#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

// Cases of curve resolution: small data, an object made ready, its run, and the run of the reference beside it.
namespace testsupport {

using Configure = std::function<void(MCR&)>;

// M x N data of K components: spectra with one peak each, amounts that are zero for some pixels, and noise of this size
// relative to the largest element.
XTNT::Matrix<double> mixture(long long M, long long N, int K, double noise, std::uint32_t seed);

// setData, setComponents and a state that leaves nothing but the loop: no sorting, no forced autofluorescence, no
// normalisation, no warm-up.
std::unique_ptr<MCR> preparedMcr(const XTNT::Matrix<double>& data, int K);
Configure bareLoop();

// A band layout of one row with every band.
XTNT::Matrix<int> oneRowOfBands(long long N);

struct McrOutcome
{
    int result = -1;
    std::string trace;
    std::unique_ptr<MCR> mcr;
};
McrOutcome runMcr(const XTNT::Matrix<double>& data, int K, const Configure& configure, bool plain = false);

// Runs the case on both paths and by the reference, and expects everything that a run leaves to agree within a relative
// 1e-8. Gives the outcome of the ordinary path. With `compareTrace` the traces are compared too, numbers as far as they
// are printed.
McrOutcome expectAsReference(const XTNT::Matrix<double>& data, int K, const Configure& configure,
                             bool compareTrace = true);

::testing::AssertionResult agree(const XTNT::Matrix<double>& a, const reference::Table& b, double tolerance = 1e-8);
::testing::AssertionResult agree(const XTNT::Matrix<double>& a, const XTNT::Matrix<double>& b,
                                 double tolerance = 1e-12);
// Texts equal and numbers close; `expected` may hold any.
::testing::AssertionResult sameTrace(const std::string& actual, const std::string& expected);

bool sameBits(const XTNT::Matrix<double>& a, const XTNT::Matrix<double>& b);

} // namespace testsupport

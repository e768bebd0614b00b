// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_vector.h"

class JobMonitor;
class CORVSpumKyvo;

// Runs a principal component analysis of the engine's selection inside the mask of its analysis input, and returns the
// eigenvalues, in descending order. The run reads the images, each once. Throws Failure with the reason against the
// images (also where all analysed pixels of one are the same) or the engine's text; where the engine ends without an
// error and without a result, with the last line that it wrote to the log; of the kind Aborted after an abort.
XTNT::Vector<double> runPca(CORVSpumKyvo& engine, JobMonitor& monitor);

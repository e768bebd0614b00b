// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/ImportOptions.h"
#include "services/importer/ImportReport.h"

#include <QString>

#include <functional>

// Called before each step with the steps done, their number, and the image concerned. False aborts the import.
using ImportProgress = std::function<bool(int nDone, int nSteps, const QString& strWhat)>;

// Makes a sequence of a stack of images. Images keep their pixel type, unless what is done with them makes floats of
// them (ImagePreparation), and are padded with zeros at the right and the bottom to a square; the section
// "luminescent image" keeps the extent. No calibration from counts is told, so the sequence is analysed in counts. A
// sequence with excitations is one of fluorescence, one with emissions alone, with times, or of numbered channels, is
// not.
//
// All images are read and checked before one is written, and the folder appears as a whole or not at all. False with
// one sentence in *pError, "file: reason" or "file:line: reason", when
//   - a file cannot be read, is no such image, or is shorter than its header says;
//   - the images, by their headers, would take more memory than `maxMemory`;
//   - an image differs in size from the first, and `sizes` does not bring them to one;
//   - an image has a pixel that is not finite or beyond single precision, or no pixel has a value in all of them;
//   - a wavelength, rounded to whole nanometres, is not 100 to 999, or a time is not a number of seconds within 2^24;
//   - numbered channels are more than 999;
//   - a dark image or the flat field cannot be read or has another size, or a pixel of the flat is not above 0;
//   - the region of the background reaches beyond an image, or holds no pixel with a value;
//   - there are several exposures, but not one an image;
//   - two rows name one image, or two images share excitation and emission, or a whole second;
//   - the output exists and `force` is not set, holds saved results, or cannot be written.
// `pReport` and `pError` may be null, `progress` empty. The report counts only after success, but for `aborted`.
bool importStack(const ImportOptions& options, const ImportProgress& progress, ImportReport* pReport, QString* pError);

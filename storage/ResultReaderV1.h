// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/ResultReader.h"

#include "XTNT/xtnt_matrix.h"

// The reader of the first generation of files, which hold the settings of the curve resolution and the solved matrices.
class ResultReaderV1 : public ResultReader
{
public:
    explicit ResultReaderV1(CORVSpumKyvo& engine);

    // As read(), and then what such a file leaves out: ratios, one a component when it has none, and the values of the
    // spectra over the selection.
    bool readAll(const QDomElement& root);

private:
    bool readParams(const QDomElement& element);
    bool readConstraints(const QDomElement& element);
    bool readSpectra(const QDomElement& element);
    bool readMask(const QDomElement& element);
    bool readSpectrumMatrix(const QDomElement& element);
    static bool readMatrix(const QDomElement& element, XTNT::Matrix<double>* pMatrix);
    void completeRatios();
    void completeSpectra();
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/ResultReader.h"

// The reader of the present files: selection, spectra, mask and display; the concentrations are computed again
// afterwards.
class ResultReaderV2 : public ResultReader
{
public:
    explicit ResultReaderV2(CORVSpumKyvo& engine);

private:
    bool readSpectra(const QDomElement& element);
    bool readMask(const QDomElement& element);
    bool readDecay(const QDomElement& element);
};

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class CORVSpumKyvo;
struct ResultFacts;

// All maps of a result as one OME-TIFF at `strPath`: an image a scan spot, a channel a component with its name and
// colour, floats in the unit of the analysis, NaN outside the mask. Unit, pixel size and binning stand in the metadata.
// Throws Failure.
void writeMapsOme(const CORVSpumKyvo& engine, const ResultFacts& facts, const QString& strPath);

// Its metadata, as OME-XML.
QString mapsOmeText(const ResultFacts& facts);

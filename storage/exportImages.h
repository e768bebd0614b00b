// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class CORVDataset;
class CORVSequenceDataset;
class CPLClickInfo;

// Images that a map's dataset takes over, each with its section. `strFolder` ends with a separator. Every function is
// false when a file cannot be written, and true when there is nothing to be taken.

// Structure and reference image of the first structured-light dataset of the sequence: "structure.TIF",
// "reference.TIF".
bool exportStructuredLight(const CORVSequenceDataset& sequence, const QString& strFolder, CPLClickInfo& info);
// The source's photograph: "photograph.TIF".
bool exportPhotograph(CORVDataset& source, const QString& strFolder);
// The source's fluorescent reference image: "transmission.tif" when it was taken in transmission, else
// "FluorescentReference.TIF".
bool exportReference(CORVDataset& source, const QString& strFolder, CPLClickInfo& info);
// The source's X-ray image: "X-ray.TIF".
bool exportXRay(CORVDataset& source, const QString& strFolder, CPLClickInfo& info);

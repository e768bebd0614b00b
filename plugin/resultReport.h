// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QString>

class CORVSequenceDataset;
class CORVSpumKyvo;

// The files of a result as the command line writes them: maps, pictures, spectra, numbers and a page for a browser.
namespace resultReport {

// A folder beside the images of a sequence that is not there yet: "unmixed", "unmixed-2" and so on.
QString proposedFolder(const CORVSequenceDataset& sequence);

// Writes them for the engine's present result into a new folder, all or none; `composite` is the picture that the
// window shows, null without one. The reason where that fails, for the user; else an empty text.
QString write(const CORVSpumKyvo& engine, const QString& strSequenceName, const QString& strNote,
              const QImage& composite, const QString& strFolder);

} // namespace resultReport

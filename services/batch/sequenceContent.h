// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

// What an analysis of a sequence may read of its folder, looked at without opening the sequence: a broken one has it,
// too. All safe to call from several threads at once.

// Every image, text and table below the folder (or that of an info file), relative to it and sorted. Hidden files,
// results beside the images and saved ones are none of it. Links are followed, none twice. At most 200,000.
QStringList contentOfSequence(const QString& strSequence);

// Length of all of it.
qint64 bytesOfSequence(const QString& strSequence, const QStringList& files);

// Of names and bytes of a sequence: a hash of the names and of the hashes of their files (fileHash); what cannot be
// read counts as one that has none. Empty where `goesOn`, asked every few megabytes, says no.
QString hashOfSequence(const QString& strSequence, const QStringList& files, const std::function<bool()>& goesOn = {});

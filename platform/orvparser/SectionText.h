// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CPLSection.h"

#include <QByteArray>
#include <QList>
#include <QSharedPointer>
#include <QStringList>

// The text form of sections; docs/formats.md describes it. For every list of sections, parsing what toText() wrote
// gives the same list.
namespace SectionText {

// What is larger is no text of this kind: it is refused before it takes memory.
constexpr int maximumBytes = 16 * 1024 * 1024;
constexpr int maximumLines = 200000;
// Warnings of one file; the last one then tells how many lines were not listed.
constexpr int maximumWarnings = 50;

enum class Outcome
{
    Complete,
    LinesSkipped, // something in the file is not in the sections
    Refused       // no text of this kind, cut off or too large: no sections
};

// `strPath` serves the warnings, "file:line: what is wrong"; `pWarnings` may be null and is appended to.
Outcome parse(const QByteArray& text, const QString& strPath, QList<QSharedPointer<CPLSection>>* pSections,
              QStringList* pWarnings);

QByteArray toText(const QList<QSharedPointer<CPLSection>>& sections);

// The bytes of a regular file of at most maximumBytes; false with the path and the reason in `pError`.
bool readFile(const QString& strPath, QByteArray* pBytes, QString* pError);

} // namespace SectionText

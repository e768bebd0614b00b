// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// The frame of a page for a browser that needs no other file: one look for all that this program writes. Between head
// and foot stands the page's content, marked up.

// Up to the begin of the content; the title is plain text, `strStyle` goes behind the common style sheet.
QString htmlPageHead(const QString& strTitle, const QString& strStyle = QString());
// From the end of the content on, with a line of plain text.
QString htmlPageFoot(const QString& strProgram);

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDomDocument>
#include <QString>

// A results document as text and back.
namespace documentText {

// The type that the document type line names.
QString documentType();

// The first line of a results file, with its end.
QString prologue();

// The document with an indent of 1: the text of QDomDocument::toString(1), but with the attributes of an element in one
// order, always the same (Qt's own changes from process to process), and without the characters U+FFFE and U+FFFF, at
// which readers of XML stop. For documents that consist of a document type, elements and attributes; other nodes are
// left out.
QString toText(const QDomDocument& document);

// Parses the text. Of one that breaks off, or is wrong somewhere, *pDocument holds what stood before; the answer is
// then false and *pReason tells where and why. Elements more than 256 deep are refused without an attempt, *pDocument
// being empty: the tree takes itself apart by recursion; and so are more than 500,000 elements, whose tree takes up to
// a gigabyte, more than 1000 attributes in one, and declared entities, of which few lines make many.
bool parse(const QString& text, QDomDocument* pDocument, QString* pReason);
// Same of the bytes of a file, in the encoding that it names. A results file says UTF-8 and holds the bytes of the code
// page of its writer: bytes that are no UTF-8 are read in the code page of the locale, and where they are wrong in that
// too, what cannot be read is replaced and *pWarning (may be null; else empty) tells so.
bool parse(const QByteArray& bytes, QDomDocument* pDocument, QString* pReason, QString* pWarning = nullptr);
// Same of a file, of which there is no more than 512 MiB; a warning goes to the log. What is no file (a folder, a pipe)
// or cannot be opened is refused too.
bool readFile(const QString& strPath, QDomDocument* pDocument, QString* pReason);

} // namespace documentText

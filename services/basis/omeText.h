// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>
#include <initializer_list>
#include <utility>

class QXmlStreamWriter;

// A document of OME-XML (I. Goldberg et al., 2005; schema of June 2016): its root with the schema's names, in which
// `write` writes the images and annotations.
QString omeText(const std::function<void(QXmlStreamWriter& xml)>& write);

// An element without content, its attributes in that order.
void writeOmeElement(QXmlStreamWriter& xml, const char* pName,
                     const std::initializer_list<std::pair<const char*, QString>>& attributes);
// Attributes of a "Pixels" element: the side of square pixels.
void writeOmePixelSize(QXmlStreamWriter& xml, double micrometres);

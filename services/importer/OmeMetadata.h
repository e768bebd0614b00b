// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/Figure.h"
#include "services/importer/ImageFacts.h"
#include "services/importer/PlaneChoice.h"

#include <QString>
#include <QStringList>
#include <QVector>

// What the OME-XML in a TIFF file's first description (Open Microscopy Environment, schemas of 2008 to 2016) tells of
// the file's pages: the wavelengths of their channels, the times of their planes.
class OmeMetadata
{
public:
    // The namespace of the annotation in which an export tells what OME has no place for, as a map: "kind"
    // ("temporal", "channels"), "unit", "isotope", and "start N" and "wavenumber N" for page N, from 1.
    static constexpr const char* const kNamespace = "orvia/image-cube/1";

    static bool isOme(const QString& strDescription);

    // Reads the text for a file of that name with `nPages` pages. Of a set of files each tells all; what is meant for
    // other files is left out. False with the reason in *pError: XML that is broken or has a document type (entities
    // are not expanded), sizes that no file has.
    bool parse(const QString& strXml, const QString& strFile, int nPages, QString* pError);

    // By page. A page that the text does not speak of has none.
    const QVector<QVector<Figure>>& pages() const { return m_pages; }
    // By page as well: exposures of the planes and the size of a pixel, and what an export of this program notes
    // besides.
    const QVector<ImageFacts>& facts() const { return m_facts; }
    // By page as well: the name of its channel, with the plane's number where there are several in depth; empty
    // without.
    const QStringList& channels() const { return m_channels; }
    // By page as well: where it stands among channels, depths and times.
    const FilePlanes& planes() const { return m_planes; }
    // Whether an image is said to hold several times.
    bool hasTimes() const { return m_bTimes; }
    // Figures that cannot be used, a sentence each.
    const QStringList& doubts() const { return m_doubts; }

private:
    QVector<QVector<Figure>> m_pages;
    QVector<ImageFacts> m_facts;
    QStringList m_channels;
    FilePlanes m_planes;
    bool m_bTimes = false;
    QStringList m_doubts;
};

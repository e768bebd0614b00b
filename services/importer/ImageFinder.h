// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/Figure.h"
#include "services/importer/ImageFacts.h"
#include "services/importer/PlaneChoice.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>
#include <optional>

struct TiffTexts;

// An image of a stack, and what its name and its file's metadata tell of it.
struct FoundImage
{
    QString file;              // below the stack when that is a folder, else the name of the stack's file
    std::optional<int> page;   // from 1; of a TIFF file with several
    PageProjection projection; // of pages from that one on
    std::optional<int> band;   // from 1
    QString name;              // for people
    QString channel;     // what the file calls the image: its channel, label, band or column, or the file's own name
    bool framed = false; // metadata say that the images are a series of times
    QVector<Figure> figures;
    ImageFacts facts;
};

// Lists the images of a stack without a table, in their order: files by name with numbers by value, then pages, then
// bands.
class ImageFinder
{
public:
    using Progress = std::function<bool(int nDone, int nSteps, const QString& strWhat)>;

    // `strSource` is a folder, a TIFF file, an ENVI cube, a CSV cube, or a PNG or JPEG picture. In a folder TIFF files
    // and ENVI headers count, and pictures where there are none of these. One without any image stands for its only
    // folder with images, or for its folders with one image each, which are then called by their folders' names; of
    // others the names are told. A picture of several hues that is alone gives its red, green and blue. False with
    // "file: reason" in *pError: nothing there, no image in it, a file that cannot be read. An abort by `progress` (may
    // be empty) is told by aborted(). `bFollow` as in EnviCube::open().
    // Of files with several dimensions `planes` chooses.
    bool find(const QString& strSource, const Progress& progress, QString* pError, bool bFollow = false,
              const PlaneChoice& planes = {});

    const QVector<FoundImage>& images() const { return m_images; }
    // What names and metadata leave open or tell in two ways, a sentence each with the image concerned.
    const QStringList& doubts() const { return m_doubts; }
    // What was passed over.
    const QStringList& warnings() const { return m_warnings; }
    bool aborted() const { return m_bAborted; }
    // The most planes that a file has in each dimension, of those that were looked at; also when a file was refused.
    const PlanePosition& sizes() const { return m_sizes; }

private:
    // What a TIFF file's metadata tell of its pages.
    struct PageFacts
    {
        QVector<QVector<Figure>> figures; // a page each
        QVector<ImageFacts> facts;        // a page each
        QStringList channels;             // may be fewer
        FilePlanes planes;
        bool framed = false;
        bool described = false; // by the text of the first page, which is no name then
    };

    bool findInFolder(const QString& strFolder, const Progress& progress, QString* pError);
    bool listFolder(const QString& strFolder, QStringList* pNames, QStringList* pOthers, QString* pError);
    bool lookBelow(const QString& strFolder, QStringList* pNames, QString* pError);
    bool addFile(const QString& strPath, QString* pError);
    bool addPicture(const QString& strPath, QString* pError);
    bool splitLoneColours(const QString& strSource);
    bool addTiff(const QString& strPath, QString* pError);
    FoundImage imageOfPages(const QString& strFile, const QVector<int>& pages, int nPages) const;
    PageFacts factsOfPages(const TiffTexts& texts, const QString& strFile);
    void addPageNames(FoundImage& image, const TiffTexts& texts, int nPage, const PageFacts& facts, bool bAlone);
    bool addEnvi(const QString& strPath, QString* pError);
    bool addCsv(const QString& strPath, QString* pError);
    void addNamed(FoundImage& image, const QString& strText, const QString& strWhat, bool bFrames);

    QVector<FoundImage> m_images;
    QStringList m_doubts;
    QStringList m_warnings;
    bool m_bAborted = false;
    bool m_bFollow = false;
    PlaneChoice m_choice;
    PlanePosition m_sizes{1, 1, 1};
    bool m_bFoldersName = false; // the images are called by their folders
};

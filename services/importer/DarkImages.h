// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/ImageStack.h"
#include "services/importer/ImagesTable.h"

#include <QHash>
#include <QSize>
#include <QString>
#include <QVector>

#include <vector>

// The dark images of an import: one for all images, or one each.
class DarkImages
{
public:
    // Finds them, and reads their headers. `strSource` is whatever a stack can be: a TIFF file of one page or many, a
    // cube, a picture, a folder. An image alone serves all. Of a folder those serve whose names are those of the
    // images' files, with or without "dark" in them; where none is named so, and of a file with several, as many as
    // there are images serve in their order. `sizes` are those of the images, before they are brought to one. False
    // with one sentence in *pError that names the file: no image there, another number, an image without one, another
    // size.
    bool open(const QString& strSource, const QVector<ImageRow>& images, const QStringList& names,
              const QVector<QSize>& sizes, QString* pError);

    bool isEmpty() const { return m_ofImage.isEmpty(); }
    // How they belong to the images, for people: "one for all", "by name" or "in their order".
    QString matching() const;
    // Of the dark image of image i.
    QString name(int i) const { return m_stack.name(m_ofImage.at(i)); }
    // Whether that is the one of image k.
    bool isSame(int i, int k) const { return m_ofImage.at(i) == m_ofImage.at(k); }
    // Bytes that reading one takes beside its numbers; 0 for one alone, which is read before the images.
    qint64 readBytes() const { return m_stack.count() > 1 ? m_stack.readBytes() : 0; }

    // The pixels of that of image i. False with "file: reason" in *pError: it cannot be read, or has a pixel that is
    // not finite.
    bool read(int i, std::vector<double>& pixels, QString* pError) const;

private:
    enum class Matching
    {
        OneForAll,
        ByName,
        InOrder
    };
    bool list(const QString& strSource, QString* pError);
    bool match(const QVector<ImageRow>& images, const QStringList& names, QString* pError);
    bool checkSizes(const QStringList& names, const QVector<QSize>& sizes, QString* pError) const;

    QString m_strSource;
    ImageStack m_stack;
    ImagesTable m_table;
    QVector<int> m_ofImage; // the dark image of each image
    Matching m_eMatching = Matching::OneForAll;
};

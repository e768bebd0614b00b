// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "services/importer/CommonSize.h"
#include "services/importer/DarkImages.h"
#include "services/importer/ImageCorrection.h"
#include "services/importer/ImageStack.h"
#include "services/importer/ImagesTable.h"
#include "services/importer/ImportMemory.h"
#include "services/importer/ImportOptions.h"
#include "services/importer/ImportReport.h"
#include "services/importer/InvalidPixels.h"

#include <QString>
#include <QVector>

// The images of a stack as a sequence will hold them. In this order: values are divided by what the file tells, the
// dark image is subtracted, the flat field divided, the size brought to that of the others, the background subtracted,
// and pixels without a value set to 0. What becomes negative stays.
class ImagePreparation
{
public:
    // The options, the stack and the table are borrowed.
    ImagePreparation(const ImportOptions& options, const ImageStack& stack, const ImagesTable& table)
        : m_options(options), m_stack(stack), m_table(table)
    {
    }

    // Chooses the size and finds the dark images, by headers alone. False with the sentence of importStack().
    bool begin(QString* pError);
    // What the images will take.
    ImportSize size() const;
    // Reads what all images need.
    bool loadFlat(QString* pError);

    long width() const { return m_size.width(); }
    long height() const { return m_size.height(); }

    // Reads image i and prepares it. The first time all images are read their pixels are checked, and those without a
    // value are found; what the second one gives is theirs to store. False with the sentence.
    bool read(int i, CILImage& image, QString* pError);

    const InvalidPixels& invalid() const { return m_invalid; }
    const CommonSize& commonSize() const { return m_size; }
    const DarkImages& dark() const { return m_dark; }
    bool hasFlat() const { return m_correction.hasFlat(); }
    // What was done with the images, in their order; after each has been read.
    const QVector<PreparedImage>& images() const { return m_images; }

private:
    bool correct(int i, CILImage& image, QString* pError);
    bool takeDark(int i, QString* pError);
    bool checkPixels(int i, const CILImage& image, QString* pError) const;
    bool subtractBackground(int i, const std::vector<bool>& marks, CILImage& image, QString* pError);
    void countNegatives(int i, const CILImage& image);
    bool failWithoutMemory(int i, QString* pError) const;

    const ImportOptions& m_options;
    const ImageStack& m_stack;
    const ImagesTable& m_table;
    CommonSize m_size;
    DarkImages m_dark;
    int m_nDark = -1; // the image whose dark image the correction has
    ImageCorrection m_correction;
    InvalidPixels m_invalid;
    QVector<PreparedImage> m_images;
};

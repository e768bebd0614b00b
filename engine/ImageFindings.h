// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include <vector>

class CILImage;

// What the images of a selection turned out to be while the cube was filled with them, each named by its click number.
class ImageFindings
{
public:
    // What the images are held against: size and binning of the cube, and the pixels of its mask.
    struct Frame
    {
        int width = 0;
        int binning = 1;
        const std::vector<int>* mask = nullptr; // empty: every pixel counts
    };

    // Looks at an image as it was read, floats at its own binning.
    void look(const QString& strName, const CILImage& image, const Frame& frame);
    void cannotBeRead(const QString& strName);
    // Looks at the same image as it goes into the cube.
    void lookAtCube(const QString& strName, const CILImage& image, const Frame& frame);

    // Why the images cannot be analysed, in one sentence: the first that could not be read, is not square or does not
    // cover the area of the first one, else all that have pixels that are not finite. Empty when there is no reason.
    QString refusal() const;
    // Whether that is an image that could not be read, of which the log tells more.
    bool isUnreadable() const { return m_bUnreadable; }
    // Images whose pixels are all the same: those of the mask, or, in an image of another size than the analysis and
    // without a mask, all of them. In the order of the cube.
    const QStringList& constantImages() const { return m_constant; }
    // Elements below 0, which the cube holds as 0: their number, what they sum up to without their sign, and the images
    // that they are in, each with their number.
    struct Negatives
    {
        long long elements = 0; // of the cube
        long long cut = 0;
        double cutLight = 0.0;
        QList<QPair<QString, long long>> images;
    };
    const Negatives& negatives() const { return m_negatives; }
    // The images of the cube summed up, row by row, where there is a mask; else empty.
    const std::vector<double>& light() const { return m_light; }
    // Whether every image has finite pixels and a variance to scale.
    bool isFitForPca() const { return m_strFirst.isEmpty() && m_notFinite.isEmpty() && m_constant.isEmpty(); }

private:
    QString m_strFirst;
    bool m_bUnreadable = false;
    QStringList m_notFinite;
    QStringList m_constant;
    Negatives m_negatives;
    std::vector<double> m_light;
};

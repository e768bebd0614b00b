// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QSize>
#include <QString>

// Picture files that Qt reads, such as PNG and JPEG. What is broken, cut short or claims more pixels than a file of its
// length can hold is refused.

// Whether the name is that of a picture that counts as an image of a stack: PNG or JPEG, in any case.
bool isPictureName(const QString& strName);

// What a picture's header tells.
struct PictureHeader
{
    QSize size;
    bool isColour = false;
    bool isDeep = false; // 16 bits a sample
};

// False with "file: reason" in *pError; *pHeader is then as it was.
bool readPictureHeader(const QString& strPath, PictureHeader* pHeader, QString* pError);

// The picture as it was stored, turned as it is meant to be seen. False with "file: reason" in *pError; `picture` is
// then null.
bool readPictureFile(const QString& strPath, QImage& picture, QString* pError);

// Bytes of memory that reading it as grey values takes, by its header; 0 where that does not tell, or claims what
// reading refuses.
qint64 pictureFileMemory(const QString& strPath);

// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/support/CliFixture.h"

#include "platform/orvimage/TiffIo.h"
#include "services/basis/Failure.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

void CliFixture::SetUp()
{
    ASSERT_TRUE(m_folder.isValid());
    m_root = m_folder.filePath(QString::fromUtf8("M\xC3\xA4use und mehr"));
    ASSERT_TRUE(QDir().mkpath(m_root));
}

QString CliFixture::write(const QString& name, const QByteArray& bytes) const
{
    QDir().mkpath(QFileInfo(path(name)).path());
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path(name));
    EXPECT_EQ(file.write(bytes), bytes.size());
    return path(name);
}

CILImage CliFixture::imageOf(long width, long height, const std::function<float(int)>& value, float binning)
{
    CILImage image;
    EXPECT_EQ(image.InitWithType(ORVTYPE_FLOAT, width, height), EIL_SUCCESS);
    image.m_fBinning = binning;
    for (int i = 0; i < width * height; ++i) {
        image.floats()[i] = value(i);
    }
    return image;
}

QString CliFixture::writeTiffFile(const QString& name, const CILImage& image) const
{
    QDir().mkpath(QFileInfo(path(name)).path());
    QString error;
    EXPECT_TRUE(writeTiff(path(name), image, TiffWriteOptions(), &error)) << qPrintable(error);
    return path(name);
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return file.readAll();
}

QStringList entriesOf(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

QStringList filesBelow(const QString& folder)
{
    QStringList files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        files.append(QDir(folder).relativeFilePath(it.next()));
    }
    files.sort();
    return files;
}

QString failureOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const Failure& failure) {
        return (failure.kind() == Failure::Kind::BadRequest ? QStringLiteral("[2] ") : QString()) + failure.text();
    }
    ADD_FAILURE() << "nothing was refused";
    return QString();
}

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

// A folder of its own for each test, whose name has blanks and letters beyond ASCII.
class CliFixture : public ::testing::Test
{
protected:
    void SetUp() override;

    QString path(const QString& name) const { return m_root + '/' + name; }
    QString write(const QString& name, const QByteArray& bytes) const;

    // An image of floats; pixel i (row-major) is value(i).
    static CILImage imageOf(long width, long height, const std::function<float(int)>& value, float binning = 1.0F);
    QString writeTiffFile(const QString& name, const CILImage& image) const;

private:
    QTemporaryDir m_folder;
    QString m_root;
};

// Contents of a file; the test fails when it cannot be read.
QByteArray contentOf(const QString& path);
// Names in a folder, hidden ones too, sorted.
QStringList entriesOf(const QString& folder);
// All files below a folder, hidden ones too, as sorted paths relative to it.
QStringList filesBelow(const QString& folder);
// The message of the Failure that `action` throws, with "[2] " in front when its status is that of a usage error; a
// test failure and an empty text when it throws none.
QString failureOf(const std::function<void()>& action);

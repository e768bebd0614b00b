// SPDX-License-Identifier: GPL-3.0-or-later
// Entry of every test program: a QApplication on the offscreen platform, user folders that belong to the run alone.
#include <QApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QTemporaryDir home;
    qputenv("XDG_DATA_HOME", home.filePath("data").toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.filePath("config").toLocal8Bit());
    qputenv("XDG_CACHE_HOME", home.filePath("cache").toLocal8Bit());
    ::testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}

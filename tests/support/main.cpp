// SPDX-License-Identifier: GPL-3.0-or-later
// Entry of every test program: a QApplication on the offscreen platform, user folders and a folder of temporary files
// that belong to the run alone, so that programs of tests may run beside each other.
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

#if defined(__SANITIZE_ADDRESS__)
#define ORV_NAMES_LEAKS
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORV_NAMES_LEAKS
#endif
#endif

#if defined(ORV_NAMES_LEAKS)
// Drivers of OpenGL stay loaded: what they leak could not be told to be theirs once they are gone.
extern "C" int dlclose(void* /*pLibrary*/)
{
    return 0;
}
#endif

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QTemporaryDir home;
    qputenv("XDG_DATA_HOME", home.filePath("data").toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.filePath("config").toLocal8Bit());
    qputenv("XDG_CACHE_HOME", home.filePath("cache").toLocal8Bit());
    QDir(home.path()).mkdir("tmp");
    // Tests that turn into a plain user pass through it, and write there as anybody does into such a folder.
    ::chmod(QFile::encodeName(home.path()).constData(), 0711);
    ::chmod(QFile::encodeName(home.filePath("tmp")).constData(), 01777);
    qputenv("TMPDIR", home.filePath("tmp").toLocal8Bit());
    ::testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}

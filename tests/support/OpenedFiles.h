// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QString>

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <stdexcept>

namespace testsupport {

// Counts how often the files below a folder are opened, by whatever process, from now on. Folders that come later are
// not watched.
class OpenedFiles
{
public:
    explicit OpenedFiles(const QString& strFolder) : m_nDescriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        watch(strFolder);
        QDirIterator folders(strFolder, QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (folders.hasNext()) {
            watch(folders.next());
        }
    }
    ~OpenedFiles() { ::close(m_nDescriptor); }
    OpenedFiles(const OpenedFiles&) = delete;
    OpenedFiles& operator=(const OpenedFiles&) = delete;

    // By path; a file that nobody opened is absent.
    QMap<QString, int> counts()
    {
        alignas(inotify_event) std::array<char, 65536> buffer{};
        for (ssize_t nRead = 0; (nRead = ::read(m_nDescriptor, buffer.data(), buffer.size())) > 0;) {
            for (ssize_t i = 0; i < nRead;) {
                inotify_event event{};
                std::memcpy(&event, buffer.data() + i, sizeof event);
                if ((event.mask & IN_Q_OVERFLOW) != 0) {
                    throw std::runtime_error("more files were opened than the queue holds");
                }
                if ((event.mask & IN_OPEN) != 0 && (event.mask & IN_ISDIR) == 0) {
                    const char* const pName = buffer.data() + i + sizeof event;
                    ++m_counts[m_folders.value(event.wd) + '/' + QFile::decodeName(pName)];
                }
                i += static_cast<ssize_t>(sizeof event + event.len);
            }
        }
        return m_counts;
    }
    // Of all files of that name.
    int count(const QString& strName)
    {
        int nTotal = 0;
        const QMap<QString, int> all = counts();
        for (auto it = all.cbegin(); it != all.cend(); ++it) {
            nTotal += it.key().endsWith('/' + strName) ? it.value() : 0;
        }
        return nTotal;
    }

private:
    // The closing is watched too: two openings in a row would be told as one.
    void watch(const QString& strFolder)
    {
        const int nWatch =
            ::inotify_add_watch(m_nDescriptor, QFile::encodeName(strFolder).constData(), IN_OPEN | IN_CLOSE);
        if (nWatch < 0) {
            throw std::runtime_error("the folder cannot be watched: " + strFolder.toStdString());
        }
        m_folders.insert(nWatch, strFolder);
    }

    int m_nDescriptor;
    QMap<int, QString> m_folders;
    QMap<QString, int> m_counts;
};

} // namespace testsupport

// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/deleteFolderTree.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <system_error>
#include <thread>
#include <vector>

#include <unistd.h>

namespace orv {

namespace {

namespace fs = std::filesystem;

// More wait for each other: a folder is locked while a name goes from it.
constexpr std::size_t mostThreads = 4;
// For fewer a thread takes longer than the removal.
constexpr std::size_t pathsOfAThread = 4;

// Calls `remove` with each path, in no order; with fewer threads, or none of its own, where the system gives no more.
void forAll(const std::vector<fs::path>& paths, int (*remove)(const char*))
{
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
        for (std::size_t i = next++; i < paths.size(); i = next++) {
            remove(paths[i].c_str());
        }
    };
    std::vector<std::thread> helpers;
    try {
        helpers.reserve(mostThreads);
        while (helpers.size() + 1 < std::min(mostThreads, paths.size() / pathsOfAThread)) {
            helpers.emplace_back(work);
        }
    } catch (const std::system_error&) {
    }
    work();
    for (std::thread& helper : helpers) {
        helper.join();
    }
}

} // namespace

bool deleteFolderTree(const QString& strFolder)
{
    const fs::path root(QFile::encodeName(QDir::cleanPath(strFolder)).toStdString());
    std::error_code error;
    if (!fs::is_directory(fs::symlink_status(root, error))) {
        return ::unlink(root.c_str()) == 0 || !fs::exists(fs::symlink_status(root, error));
    }
    std::vector<fs::path> folders{root};
    std::vector<fs::path> files;
    const auto readable = fs::directory_options::skip_permission_denied;
    for (fs::recursive_directory_iterator entry(root, readable, error), end; entry != end; entry.increment(error)) {
        (fs::is_directory(entry->symlink_status(error)) ? folders : files).push_back(entry->path());
    }
    forAll(files, &::unlink);
    // A folder comes ahead of what lies in it.
    std::vector<fs::path> innermost;
    std::vector<fs::path> others;
    for (std::size_t i = 0; i < folders.size(); ++i) {
        const bool holdsNext = i + 1 < folders.size() && folders[i + 1].parent_path() == folders[i];
        (holdsNext ? others : innermost).push_back(folders[i]);
    }
    forAll(innermost, &::rmdir);
    std::for_each(others.rbegin(), others.rend(), [](const fs::path& folder) { ::rmdir(folder.c_str()); });
    return !fs::exists(fs::symlink_status(root, error));
}

} // namespace orv

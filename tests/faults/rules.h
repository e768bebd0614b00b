// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

// The rules of faults.h: which call is struck, and how. Nothing here allocates or calls what is intercepted.
namespace faults {

enum class Kind
{
    open,
    openRead,
    read,
    write,
    sync,
    rename,
    link,
    symlink,
    unlink,
    rmdir,
    mkdir,
    chmod,
    truncate,
    close,
    thread,
    memory,
    count
};

enum class Action
{
    pass,
    fail,
    kill,
    killAfter,
    half,
    brief,
    skip
};

struct Verdict
{
    Action action = Action::pass;
    int error = 0;
};

// Of a call by descriptor, by path (relative to the descriptor of a folder), by two paths, and without any. Each counts
// the call and logs it.
Verdict judge(Kind kind, int file);
Verdict judge(Kind kind, int folder, const char* pPath);
Verdict judge(Kind kind, int fromFolder, const char* pFrom, int toFolder, const char* pTo);
Verdict judge(Kind kind);

// Bytes from which on a block is of the kind "memory".
size_t memoryLimit();

[[noreturn]] void die();

} // namespace faults

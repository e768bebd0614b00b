// SPDX-License-Identifier: GPL-3.0-or-later
#include "faults/rules.h"

#include "faults/faults.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/syscall.h>
#include <unistd.h>

namespace faults {

namespace {

constexpr int kinds = static_cast<int>(Kind::count);
constexpr std::array<const char*, kinds> kindNames = {"open",     "openread", "read",   "write", "sync",  "rename",
                                                      "link",     "symlink",  "unlink", "rmdir", "mkdir", "chmod",
                                                      "truncate", "close",    "thread", "memory"};

struct ErrorName
{
    const char* pName;
    int number;
};
constexpr std::array<ErrorName, 19> errorNames = {{{"EIO", EIO},
                                                   {"ENOSPC", ENOSPC},
                                                   {"EDQUOT", EDQUOT},
                                                   {"EACCES", EACCES},
                                                   {"EPERM", EPERM},
                                                   {"EROFS", EROFS},
                                                   {"ENOENT", ENOENT},
                                                   {"EEXIST", EEXIST},
                                                   {"EAGAIN", EAGAIN},
                                                   {"ENOMEM", ENOMEM},
                                                   {"EINVAL", EINVAL},
                                                   {"ENOSYS", ENOSYS},
                                                   {"EMFILE", EMFILE},
                                                   {"EINTR", EINTR},
                                                   {"EXDEV", EXDEV},
                                                   {"ENOTSUP", ENOTSUP},
                                                   {"EBUSY", EBUSY},
                                                   {"ENOTEMPTY", ENOTEMPTY},
                                                   {"ESTALE", ESTALE}}};

struct Rule
{
    unsigned kinds = 0;
    int first = 0;
    bool ever = false;
    Verdict verdict;
    std::atomic<int> calls{0};
};

constexpr int maxRules = 8;
struct State
{
    std::array<Rule, maxRules> rules;
    int ruleCount = 0;
    std::array<char, PATH_MAX> below{};
    int log = -1;
    size_t memory = 1 << 20;
};
State state;
std::atomic<bool> armed{false};

constexpr unsigned bit(Kind kind)
{
    return 1U << static_cast<unsigned>(kind);
}

constexpr unsigned changes = bit(Kind::open) | bit(Kind::write) | bit(Kind::sync) | bit(Kind::rename) |
                             bit(Kind::link) | bit(Kind::symlink) | bit(Kind::unlink) | bit(Kind::rmdir) |
                             bit(Kind::mkdir) | bit(Kind::chmod) | bit(Kind::truncate);

unsigned kindsOf(std::string_view name)
{
    if (name == "change") {
        return changes;
    }
    if (name == "file") {
        return changes | bit(Kind::openRead) | bit(Kind::read) | bit(Kind::close);
    }
    for (int k = 0; k < kinds; ++k) {
        if (name == kindNames[static_cast<size_t>(k)]) {
            return 1U << static_cast<unsigned>(k);
        }
    }
    return 0;
}

bool readAction(std::string_view name, Verdict* pVerdict)
{
    struct Word
    {
        const char* pName;
        Action action;
    };
    for (const Word& word : {Word{"kill", Action::kill}, Word{"killafter", Action::killAfter},
                             Word{"half", Action::half}, Word{"short", Action::brief}, Word{"skip", Action::skip}}) {
        if (name == word.pName) {
            pVerdict->action = word.action;
            return true;
        }
    }
    pVerdict->action = Action::fail;
    for (const ErrorName& error : errorNames) {
        if (name == error.pName) {
            pVerdict->error = error.number;
            return true;
        }
    }
    pVerdict->error = std::atoi(name.data());
    return pVerdict->error > 0;
}

// Up to the separator, which is taken off `rest` with it.
std::string_view upTo(char separator, std::string_view& rest)
{
    const size_t end = rest.find(separator);
    const std::string_view part = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    return part;
}

bool readRule(std::string_view text, Rule* pRule)
{
    std::string_view names = upTo('@', text);
    pRule->kinds = 0;
    while (!names.empty()) {
        const unsigned mask = kindsOf(upTo(',', names));
        if (mask == 0) {
            return false;
        }
        pRule->kinds |= mask;
    }
    const std::string_view number = upTo('=', text);
    pRule->first = number.empty() ? 0 : std::atoi(number.data());
    pRule->ever = !number.empty() && number.back() == '+';
    pRule->verdict = {};
    pRule->calls = 0;
    return pRule->kinds != 0 && pRule->first > 0 && !text.empty() && readAction(text, &pRule->verdict);
}

bool readRules(std::string_view text)
{
    state.ruleCount = 0;
    while (!text.empty()) {
        const std::string_view rule = upTo(';', text);
        if (state.ruleCount == maxRules || !readRule(rule, &state.rules[static_cast<size_t>(state.ruleCount)])) {
            state.ruleCount = 0;
            return false;
        }
        ++state.ruleCount;
    }
    return true;
}

void openLog(const char* pLog)
{
    if (state.log >= 0) {
        ::syscall(SYS_close, state.log);
    }
    state.log = -1;
    if (pLog != nullptr && *pLog != '\0') {
        state.log =
            static_cast<int>(::syscall(SYS_openat, AT_FDCWD, pLog, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
    }
}

class KeptErrno
{
public:
    KeptErrno() : m_error(errno) {}
    ~KeptErrno() { errno = m_error; }
    KeptErrno(const KeptErrno&) = delete;
    KeptErrno& operator=(const KeptErrno&) = delete;

private:
    int m_error;
};

using Path = std::array<char, 2 * PATH_MAX>;

void pathOf(int file, Path* pPath)
{
    std::array<char, 64> link{};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", file);
    const long length = ::syscall(SYS_readlinkat, AT_FDCWD, link.data(), pPath->data(), pPath->size() - 1);
    (*pPath)[length < 0 ? 0 : static_cast<size_t>(length)] = '\0';
}

void pathOf(int folder, const char* pName, Path* pPath)
{
    (*pPath)[0] = '\0';
    if (pName == nullptr || *pName == '/') {
        std::snprintf(pPath->data(), pPath->size(), "%s", pName == nullptr ? "" : pName);
        return;
    }
    if (folder == AT_FDCWD) {
        const long length = ::syscall(SYS_getcwd, pPath->data(), pPath->size());
        (*pPath)[length <= 0 ? 0 : static_cast<size_t>(length - 1)] = '\0';
    } else {
        pathOf(folder, pPath);
    }
    const size_t used = std::strlen(pPath->data());
    std::snprintf(pPath->data() + used, pPath->size() - used, "/%s", pName);
}

bool isBelow(const char* pPath)
{
    const size_t length = std::strlen(state.below.data());
    return length == 0 ||
           (std::strncmp(pPath, state.below.data(), length) == 0 && (pPath[length] == '\0' || pPath[length] == '/'));
}

void log(Kind kind, const char* pPath, const char* pSecond)
{
    if (state.log < 0) {
        return;
    }
    std::array<char, 4 * PATH_MAX + 64> line{};
    const bool two = *pSecond != '\0';
    const int length = std::snprintf(line.data(), line.size(), "%s\t%s%s%s\n", kindNames[static_cast<size_t>(kind)],
                                     pPath, two ? "\t" : "", pSecond);
    ::syscall(SYS_write, state.log, line.data(), static_cast<size_t>(length));
}

Verdict count(Kind kind)
{
    Verdict verdict;
    for (int r = 0; r < state.ruleCount; ++r) {
        Rule& rule = state.rules[static_cast<size_t>(r)];
        if ((rule.kinds & bit(kind)) == 0) {
            continue;
        }
        const int number = rule.calls.fetch_add(1) + 1;
        const bool shortBefore = rule.verdict.action == Action::brief && number > rule.first;
        if (verdict.action != Action::pass) {
            continue;
        }
        if (shortBefore) {
            verdict = {Action::fail, ENOSPC};
        } else if (number == rule.first || (rule.ever && number > rule.first)) {
            verdict = rule.verdict;
        }
    }
    return verdict;
}

[[gnu::constructor]] void armFromEnvironment()
{
    const char* pRules = ::getenv("FAULTS");
    const char* pLog = ::getenv("FAULTS_LOG");
    if (const char* pMemory = ::getenv("FAULTS_MEMORY")) {
        state.memory = std::strtoull(pMemory, nullptr, 10);
    }
    if ((pRules != nullptr || pLog != nullptr) && !armFaults(pRules, ::getenv("FAULTS_BELOW"), pLog)) {
        constexpr std::string_view complaint = "faults: rules that cannot be read\n";
        ::syscall(SYS_write, STDERR_FILENO, complaint.data(), complaint.size());
        ::syscall(SYS_exit_group, 99);
    }
}

} // namespace

Verdict judge(Kind kind, int file)
{
    if (!armed) {
        return {};
    }
    const KeptErrno kept;
    Path path;
    pathOf(file, &path);
    if (!isBelow(path.data())) {
        return {};
    }
    log(kind, path.data(), "");
    return count(kind);
}

Verdict judge(Kind kind, int folder, const char* pPath)
{
    if (!armed) {
        return {};
    }
    const KeptErrno kept;
    Path path;
    pathOf(folder, pPath, &path);
    if (!isBelow(path.data())) {
        return {};
    }
    log(kind, path.data(), "");
    return count(kind);
}

Verdict judge(Kind kind, int fromFolder, const char* pFrom, int toFolder, const char* pTo)
{
    if (!armed) {
        return {};
    }
    const KeptErrno kept;
    Path from;
    Path to;
    pathOf(fromFolder, pFrom, &from);
    pathOf(toFolder, pTo, &to);
    if (!isBelow(from.data()) && !isBelow(to.data())) {
        return {};
    }
    log(kind, from.data(), to.data());
    return count(kind);
}

Verdict judge(Kind kind)
{
    if (!armed) {
        return {};
    }
    const KeptErrno kept;
    unsigned named = 0;
    for (int r = 0; r < state.ruleCount; ++r) {
        named |= state.rules[static_cast<size_t>(r)].kinds;
    }
    if ((named & bit(kind)) == 0) {
        return {};
    }
    log(kind, "", "");
    return count(kind);
}

size_t memoryLimit()
{
    return state.memory;
}

void die()
{
    for (;;) {
        ::syscall(SYS_kill, ::syscall(SYS_getpid), SIGKILL);
    }
}

} // namespace faults

bool armFaults(const char* pRules, const char* pBelow, const char* pLog)
{
    using namespace faults;
    armed = false;
    std::snprintf(state.below.data(), state.below.size(), "%s", pBelow == nullptr ? "" : pBelow);
    openLog(pLog);
    const bool understood = readRules(pRules == nullptr ? std::string_view() : std::string_view(pRules));
    armed = understood && (state.ruleCount > 0 || state.log >= 0);
    return understood;
}

int countedCalls()
{
    return faults::state.rules[0].calls;
}

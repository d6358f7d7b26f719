// Preloaded into programs, counts their calls of the file system below some directories, over all
// processes together, and lets the nth fail.
//
//     NTH_CALL_DIRS=/a:/b NTH_CALL_STATE=/somewhere/state NTH_CALL=7 NTH_CALL_HOW=28
//
// How: the number of an error; "short" for half a write; "full" for half a write and no room for
// any other; "kill" for the end of the process; "power" for its end with the loss of what it has
// not flushed; "hang" for a call that never returns. What could not be flushed or closed is lost.

#include "tests/support/nthcallstate.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

using testing_support::NthCallState;

enum class Fate
{
    Pass,
    Fail, // with errno set
    Half
};

/// Descriptors of files below the directories.
std::array<std::atomic<bool>, 4096> watched {};

/// Of these, what was written and not flushed; of those closed, a descriptor that still means them.
std::array<std::atomic<bool>, 4096> unflushed {};
std::array<std::atomic<int>, 256> closedUnflushed {};
std::atomic<std::size_t> closedCount {0};

NthCallState* state = nullptr;
int nth = 0;
std::string_view dirs; // plain views: begin() comes before what needs to be constructed
std::string_view how;

template <typename Function>
Function next(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

__attribute__((constructor)) void begin()
{
    const char* path = std::getenv("NTH_CALL_STATE");
    const char* below = std::getenv("NTH_CALL_DIRS");
    const char* when = std::getenv("NTH_CALL");
    const char* what = std::getenv("NTH_CALL_HOW");
    if (path == nullptr || below == nullptr || when == nullptr || what == nullptr) {
        return;
    }
    dirs = below;
    how = what;
    nth = std::atoi(when);
    using Open = int (*)(const char*, int, ...);
    const int file = next<Open>("open")(path, O_RDWR | O_CLOEXEC);
    void* memory = mmap(nullptr, sizeof(NthCallState), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (memory == MAP_FAILED) {
        std::abort();
    }
    state = static_cast<NthCallState*>(memory);
}

bool isBelow(const char* path)
{
    if (state == nullptr || path == nullptr) {
        return false;
    }
    for (std::size_t at = 0; at < dirs.size();) {
        const std::size_t end = std::min(dirs.find(':', at), dirs.size());
        if (std::strncmp(path, dirs.data() + at, end - at) == 0) {
            return true;
        }
        at = end + 1;
    }
    return false;
}

bool isBelow(int descriptor)
{
    return state != nullptr && descriptor >= 0 && descriptor < static_cast<int>(watched.size())
        && watched[static_cast<std::size_t>(descriptor)];
}

int watch(int descriptor, bool isOn)
{
    if (descriptor >= 0 && descriptor < static_cast<int>(watched.size())) {
        watched[static_cast<std::size_t>(descriptor)] = isOn;
    }
    return descriptor;
}

void setUnflushed(int descriptor, bool isOn)
{
    unflushed[static_cast<std::size_t>(descriptor)] = isOn;
}

void lose(int descriptor)
{
    if (ftruncate(descriptor, 0) != 0) {
        std::abort();
    }
}

/// Ends the process as a power cut would.
void cutPower()
{
    for (std::size_t i = 0; i < unflushed.size(); ++i) {
        if (unflushed[i]) {
            lose(static_cast<int>(i));
        }
    }
    for (std::size_t i = 0; i < std::min(closedCount.load(), closedUnflushed.size()); ++i) {
        lose(closedUnflushed[i]);
    }
    kill(getpid(), SIGKILL);
}

Fate fateOf(const char* call)
{
    const int number = ++state->seen;
    if (number <= NthCallState::kMost) {
        std::snprintf(state->names[number - 1].data(), state->names[0].size(), "%s", call);
    }
    const bool writes = std::strcmp(call, "write") == 0;
    if (how == "full" && writes && number > nth && nth > 0) {
        errno = ENOSPC;
        return Fate::Fail;
    }
    if (number != nth) {
        return Fate::Pass;
    }
    if (how == "kill") {
        kill(getpid(), SIGKILL);
    }
    if (how == "power") {
        cutPower();
    }
    while (how == "hang") {
        pause();
    }
    if (how == "short" || how == "full") {
        return writes ? Fate::Half : Fate::Pass;
    }
    errno = std::atoi(how.data());
    return Fate::Fail;
}

/// Whether a call on this path or descriptor is to fail.
template <typename Where>
bool fails(const char* call, Where where)
{
    return isBelow(where) && fateOf(call) == Fate::Fail;
}

int opened(const char* call, const char* path, int flags, mode_t mode)
{
    using Open = int (*)(const char*, int, ...);
    const bool below = isBelow(path);
    if (below && fateOf("open") == Fate::Fail) {
        return -1;
    }
    return watch(next<Open>(call)(path, flags, mode), below);
}

mode_t modeOf(int flags, std::va_list rest)
{
    return (flags & (O_CREAT | __O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0;
}

} // namespace

extern "C" {

// NOLINTBEGIN(cert-dcl50-cpp): the C library's signatures
int open(const char* path, int flags, ...)
{
    std::va_list rest;
    va_start(rest, flags);
    const mode_t mode = modeOf(flags, rest);
    va_end(rest);
    return opened("open", path, flags, mode);
}

int open64(const char* path, int flags, ...)
{
    std::va_list rest;
    va_start(rest, flags);
    const mode_t mode = modeOf(flags, rest);
    va_end(rest);
    return opened("open64", path, flags, mode);
}

// NOLINTEND(cert-dcl50-cpp)

DIR* opendir(const char* path)
{
    const bool below = isBelow(path);
    if (below && fateOf("opendir") == Fate::Fail) {
        return nullptr;
    }
    DIR* dir = next<DIR* (*)(const char*)>("opendir")(path);
    if (dir != nullptr) {
        watch(dirfd(dir), below);
    }
    return dir;
}

int closedir(DIR* dir)
{
    watch(dirfd(dir), false);
    return next<int (*)(DIR*)>("closedir")(dir);
}

ssize_t read(int descriptor, void* bytes, size_t count)
{
    return fails("read", descriptor)
        ? -1
        : next<ssize_t (*)(int, void*, size_t)>("read")(descriptor, bytes, count);
}

ssize_t write(int descriptor, const void* bytes, size_t count)
{
    const Fate fate = isBelow(descriptor) ? fateOf("write") : Fate::Pass;
    if (fate == Fate::Fail) {
        return -1;
    }
    if (isBelow(descriptor)) {
        setUnflushed(descriptor, true);
    }
    return next<ssize_t (*)(int, const void*, size_t)>("write")(
        descriptor, bytes, fate == Fate::Half ? count / 2 : count);
}

int fsync(int descriptor)
{
    if (!isBelow(descriptor)) {
        return next<int (*)(int)>("fsync")(descriptor);
    }
    const bool failed = fateOf("fsync") == Fate::Fail;
    const int code = errno;
    if (failed && unflushed[static_cast<std::size_t>(descriptor)]) {
        lose(descriptor);
    }
    setUnflushed(descriptor, false);
    const int result = next<int (*)(int)>("fsync")(descriptor);
    if (failed) {
        errno = code;
    }
    return failed ? -1 : result;
}

int close(int descriptor)
{
    using Close = int (*)(int);
    if (!isBelow(descriptor)) {
        return next<Close>("close")(descriptor);
    }
    const bool failed = fateOf("close") == Fate::Fail;
    const int code = errno;

    struct stat status
    {
    };

    // A directory has nothing to lose.
    if (failed && next<int (*)(int, struct stat*)>("fstat")(descriptor, &status) == 0
        && S_ISREG(status.st_mode) && (fcntl(descriptor, F_GETFL) & O_ACCMODE) != O_RDONLY) {
        lose(descriptor);
    } else if (unflushed[static_cast<std::size_t>(descriptor)]
               && closedCount < closedUnflushed.size()) {
        closedUnflushed[closedCount] = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
        ++closedCount;
    }
    setUnflushed(descriptor, false);
    watch(descriptor, false);
    const int result = next<Close>("close")(descriptor);
    if (failed) {
        errno = code;
    }
    return failed ? -1 : result;
}

int fchmod(int descriptor, mode_t mode)
{
    return fails("fchmod", descriptor) ? -1
                                       : next<int (*)(int, mode_t)>("fchmod")(descriptor, mode);
}

int rename(const char* from, const char* to)
{
    return fails("rename", to) ? -1 : next<int (*)(const char*, const char*)>("rename")(from, to);
}

int unlink(const char* path)
{
    return fails("unlink", path) ? -1 : next<int (*)(const char*)>("unlink")(path);
}

int unlinkat(int descriptor, const char* path, int flags)
{
    return fails("unlinkat", descriptor)
        ? -1
        : next<int (*)(int, const char*, int)>("unlinkat")(descriptor, path, flags);
}

int mkdir(const char* path, mode_t mode)
{
    return fails("mkdir", path) ? -1 : next<int (*)(const char*, mode_t)>("mkdir")(path, mode);
}

char* realpath(const char* path, char* resolved)
{
    return fails("realpath", path)
        ? nullptr
        : next<char* (*)(const char*, char*)>("realpath")(path, resolved);
}

int stat(const char* path, struct stat* status)
{
    return fails("stat", path) ? -1
                               : next<int (*)(const char*, struct stat*)>("stat")(path, status);
}

int fstatat(int descriptor, const char* path, struct stat* status, int flags)
{
    return fails("fstatat", descriptor) ? -1
                                        : next<int (*)(int, const char*, struct stat*, int)>(
                                            "fstatat")(descriptor, path, status, flags);
}

} // extern "C"

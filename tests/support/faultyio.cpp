// Preloaded into a child program, lets the system fail it: one call of a kind, on a path that holds
// a text, fails with an error; or the time of day jumps at every look at it.
//
//     FAULTY_CALL=write FAULTY_NTH=2 FAULTY_ERRNO=28 FAULTY_PATH=.wfgather
//     FAULTY_CLOCK=1

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

namespace {

std::atomic<int> callsSeen {0};
std::atomic<int> looksAtTheClock {0};

template <typename Function>
Function next(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

bool isSet(const char* variable, const char* value)
{
    const char* text = std::getenv(variable);
    return text != nullptr && std::strcmp(text, value) == 0;
}

/// Whether this call is the one that fails; sets errno then.
bool fails(const char* call, const char* path)
{
    const char* part = std::getenv("FAULTY_PATH");
    const char* nth = std::getenv("FAULTY_NTH");
    const char* code = std::getenv("FAULTY_ERRNO");
    if (!isSet("FAULTY_CALL", call) || part == nullptr || nth == nullptr || code == nullptr
        || std::strstr(path, part) == nullptr || ++callsSeen != std::atoi(nth)) {
        return false;
    }
    errno = std::atoi(code);
    return true;
}

bool fails(const char* call, int descriptor)
{
    const int errnoBefore = errno;
    std::array<char, 4096> path {};
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t size = readlink(link.c_str(), path.data(), path.size() - 1);
    errno = errnoBefore;
    return size > 0 && fails(call, path.data());
}

/// An hour forward, an hour backward, two forward, two backward ...
long jump_s()
{
    if (!isSet("FAULTY_CLOCK", "1")) {
        return 0;
    }
    const long look = looksAtTheClock++;
    return (look % 2 == 0 ? 3600L : -3600L) * (1 + look / 2 % 24);
}

} // namespace

extern "C" {

int open(const char* path, int flags, ...) // NOLINT(cert-dcl50-cpp): the C library's signature
{
    std::va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    using Open = int (*)(const char*, int, ...);
    return fails("open", path) ? -1 : next<Open>("open")(path, flags, mode);
}

int open64(const char* path, int flags, ...) // NOLINT(cert-dcl50-cpp): the C library's signature
{
    std::va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    using Open = int (*)(const char*, int, ...);
    return fails("open", path) ? -1 : next<Open>("open64")(path, flags, mode);
}

ssize_t write(int descriptor, const void* bytes, size_t count)
{
    using Write = ssize_t (*)(int, const void*, size_t);
    return fails("write", descriptor) ? -1 : next<Write>("write")(descriptor, bytes, count);
}

int close(int descriptor)
{
    using Close = int (*)(int);
    const bool failed = fails("close", descriptor);
    const int code = failed ? errno : 0;
    const int result = next<Close>("close")(descriptor);
    if (failed) {
        errno = code;
    }
    return failed ? -1 : result;
}

int rename(const char* from, const char* to)
{
    using Rename = int (*)(const char*, const char*);
    return fails("rename", from) ? -1 : next<Rename>("rename")(from, to);
}

int mkdir(const char* path, mode_t mode)
{
    using Mkdir = int (*)(const char*, mode_t);
    return fails("mkdir", path) ? -1 : next<Mkdir>("mkdir")(path, mode);
}

int clock_gettime(clockid_t clock, timespec* time)
{
    using ClockGettime = int (*)(clockid_t, timespec*);
    const int result = next<ClockGettime>("clock_gettime")(clock, time);
    if (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE) {
        time->tv_sec += jump_s();
    }
    return result;
}

int gettimeofday(timeval* time, void* zone)
{
    using Gettimeofday = int (*)(timeval*, void*);
    const int result = next<Gettimeofday>("gettimeofday")(time, zone);
    time->tv_sec += jump_s();
    return result;
}

time_t time(time_t* where)
{
    using Time = time_t (*)(time_t*);
    const time_t now = next<Time>("time")(nullptr) + jump_s();
    if (where != nullptr) {
        *where = now;
    }
    return now;
}

} // extern "C"

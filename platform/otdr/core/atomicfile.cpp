#include "platform/otdr/core/atomicfile.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>

namespace otdr {

namespace {

constexpr int kNameTries = 100;
constexpr const char* kTemporary = ".waveform-"; // then the process, a dash, a number in it

/// The number of the next temporary file of this process.
std::atomic<unsigned> serial {0};

Error cannotWrite(const std::string& path, int number)
{
    return Error {ErrorCode::CannotWrite, path + ": " + std::strerror(number), 0};
}

/// The file that the path means, links followed; the path itself where nothing is there.
std::string resolved(const std::string& path)
{
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr),
                                                           &std::free);
    return real ? real.get() : path;
}

std::string directoryOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

std::string temporaryName(int process, unsigned number)
{
    return kTemporary + std::to_string(process) + "-" + std::to_string(number);
}

/// Whether a name is that of a temporary file that nobody writes to any more.
bool isAbandoned(const std::string& name)
{
    int process = 0;
    unsigned number = 0;
    const char* end = name.data() + name.size();
    const char* dash =
        std::from_chars(name.data() + std::min(std::strlen(kTemporary), name.size()), end, process)
            .ptr;
    if (dash != end) {
        std::from_chars(dash + 1, end, number);
    }
    if (process <= 0 || name != temporaryName(process, number)) {
        return false;
    }
    if (process == ::getpid()) {
        return number >= serial; // of a process that had the same number, before the last start
    }
    return ::kill(process, 0) != 0 && errno == ESRCH;
}

/// A new file in the directory that nobody else writes to. Removed with the object unless renamed.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::string& directory)
    {
        for (int i = 0; i < kNameTries && handle < 0; ++i) {
            // Not made from the target's name, which may be as long as a name can be.
            name = directory + "/" + temporaryName(::getpid(), serial++);
            handle = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (handle < 0 && errno != EEXIST) {
                return;
            }
        }
        isThere = handle >= 0;
    }

    ~TemporaryFile()
    {
        if (handle >= 0) {
            ::close(handle);
        }
        if (isThere) {
            ::unlink(name.c_str());
        }
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] bool isOpen() const { return handle >= 0; }

    bool setMode(mode_t mode) { return ::fchmod(handle, mode) == 0; }

    bool write(gsl::span<const std::byte> bytes)
    {
        while (!bytes.empty()) {
            const ssize_t count = ::write(handle, bytes.data(), bytes.size());
            if (count < 0 && errno != EINTR) {
                return false;
            }
            bytes = bytes.subspan(count > 0 ? static_cast<std::size_t>(count) : 0);
        }
        return ::fsync(handle) == 0;
    }

    bool close()
    {
        const int closing = handle;
        handle = -1;
        return ::close(closing) == 0;
    }

    bool renameTo(const std::string& path)
    {
        if (std::rename(name.c_str(), path.c_str()) != 0) {
            return false;
        }
        isThere = false;
        return true;
    }

private:
    std::string name;
    int handle = -1;
    bool isThere = false; ///< under the temporary name
};

/// Makes the rename survive a power cut. The file stands whole with or without, so a refusal is no
/// failure.
void flushDirectory(const std::string& directory)
{
    const int handle = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle >= 0) {
        ::fsync(handle);
        ::close(handle);
    }
}

Result<std::size_t> replace(const std::string& path, gsl::span<const std::byte> bytes)
{
    const std::string target = resolved(path);

    struct stat status
    {
    };

    const bool exists = ::stat(target.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        return Error {ErrorCode::CannotWrite, path + ": not a regular file", 0};
    }
    const std::string directory = directoryOf(target);
    TemporaryFile temporary(directory);
    if (!temporary.isOpen()) {
        return cannotWrite(path, errno);
    }
    if ((exists && !temporary.setMode(status.st_mode & 07777U)) || !temporary.write(bytes)
        || !temporary.close() || !temporary.renameTo(target)) {
        return cannotWrite(path, errno);
    }
    flushDirectory(directory);
    return bytes.size();
}

struct CloseDirectory
{
    void operator()(DIR* directory) const { ::closedir(directory); }
};

void removeAbandoned(const std::string& directory)
{
    const std::unique_ptr<DIR, CloseDirectory> entries(::opendir(directory.c_str()));
    if (!entries) {
        return;
    }
    const int handle = ::dirfd(entries.get());
    while (const dirent* entry = ::readdir(entries.get())) {
        struct stat status
        {
        };

        if (isAbandoned(entry->d_name)
            && ::fstatat(handle, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0
            && S_ISREG(status.st_mode) && status.st_uid == ::geteuid()) {
            ::unlinkat(handle, entry->d_name, 0);
        }
    }
}

} // namespace

Result<std::size_t> writeFileAtomically(const std::string& path, gsl::span<const std::byte> bytes)
{
    try {
        return replace(path, bytes);
    } catch (const std::exception&) {
        return Error {ErrorCode::CannotWrite, "out of memory", 0};
    }
}

void removeLeftovers(const std::string& directory)
{
    try {
        removeAbandoned(directory);
    } catch (const std::exception&) {
        return; // out of memory; nothing depends on it
    }
}

} // namespace otdr

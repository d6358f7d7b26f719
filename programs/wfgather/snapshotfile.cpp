#include "programs/wfgather/snapshotfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

namespace gather {

namespace {

constexpr mode_t kPrivateFolder = 0700;
constexpr mode_t kReadableFile = 0644;

/// The error of the last system call.
otdr::Error failure(const std::string& path)
{
    return {otdr::ErrorCode::CannotWrite, path + ": " + std::strerror(errno), 0};
}

/// Whether a device, a pipe or a socket stands there: no file of an earlier run, and once removed
/// it would be gone for all who use it.
bool isSpecial(const std::string& path)
{
    struct stat status
    {
    };

    return lstat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode)
        && !S_ISDIR(status.st_mode);
}

/// Whether all the bytes could be written.
bool writeAll(int descriptor, gsl::span<const std::byte> bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return false;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

} // namespace

SnapshotFile::SnapshotFile(std::string path)
    : path(std::move(path))
{
    const std::filesystem::path whole(this->path);
    const std::filesystem::path directory =
        whole.has_parent_path() ? whole.parent_path() : std::filesystem::path(".");
    folder = (directory / ".wfgather").string();
    temporary = (directory / ".wfgather" / whole.filename()).string();
}

SnapshotFile::~SnapshotFile()
{
    unlink(temporary.c_str());
}

std::optional<otdr::Error> SnapshotFile::prepare()
{
    if (isSpecial(path)) {
        return otdr::Error {otdr::ErrorCode::CannotWrite, path + ": not a regular file", 0};
    }
    if (unlink(path.c_str()) != 0 && errno != ENOENT) {
        return failure(path);
    }
    if (mkdir(folder.c_str(), kPrivateFolder) != 0 && errno != EEXIST) {
        return failure(folder);
    }

    struct stat status
    {
    };

    if (lstat(folder.c_str(), &status) != 0) {
        return failure(folder);
    }
    if (!S_ISDIR(status.st_mode)) {
        errno = ENOTDIR;
        return failure(folder);
    }
    if (status.st_uid != geteuid()) { // whose it is could change what is written
        errno = EPERM;
        return failure(folder);
    }
    return write({}); // what would fail at the first refresh fails before the run
}

std::optional<otdr::Error> SnapshotFile::write(gsl::span<const std::byte> bytes)
{
    constexpr int kHow = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC;
    const int descriptor = open(temporary.c_str(), kHow, kReadableFile);
    if (descriptor < 0) {
        return failure(temporary);
    }
    std::optional<otdr::Error> error;
    if (!writeAll(descriptor, bytes)) {
        error = failure(temporary);
    }
    if (close(descriptor) != 0 && !error) {
        error = failure(temporary);
    }
    return error;
}

std::optional<otdr::Error> SnapshotFile::publish()
{
    if (rename(temporary.c_str(), path.c_str()) != 0) {
        return failure(path);
    }
    return std::nullopt;
}

} // namespace gather

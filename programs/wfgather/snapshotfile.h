#pragma once

#include "platform/otdr/core/result.h"

#include <gsl/span>

#include <cstddef>
#include <optional>
#include <string>

namespace gather {

/// The file into which every refresh of a trace goes.
///
/// A new content is written under a temporary name in the folder ".wfgather" beside it and renamed
/// over it: nobody reads half a file, and who watches the directory sees one change for each. The
/// folder stays, without the temporary file. It is private to the user; a link in its place is
/// refused. All errors are CannotWrite.
class SnapshotFile
{
public:
    explicit SnapshotFile(std::string path);
    SnapshotFile(const SnapshotFile&) = delete;
    SnapshotFile& operator=(const SnapshotFile&) = delete;

    /// Removes the temporary file.
    ~SnapshotFile();

    /// Removes the file of an earlier run and makes the folder. A device, a pipe or a socket in the
    /// place of the file is refused.
    [[nodiscard]] std::optional<otdr::Error> prepare();

    /// Writes the next content to the temporary file.
    [[nodiscard]] std::optional<otdr::Error> write(gsl::span<const std::byte> bytes);

    /// Puts what was written last in place.
    [[nodiscard]] std::optional<otdr::Error> publish();

private:
    std::string path;
    std::string folder;
    std::string temporary;
};

} // namespace gather

#pragma once

#include <QString>

/// Turns a name typed by the user into a file name that stays in its directory on every file system
/// in use, the FAT of a flash drive included.
class FileNameConverter
{
public:
    /// Longest result, bytes of UTF-8: leaves room for a wavelength, an extension and a temporary
    /// suffix.
    static constexpr int kMaxBytes = 200;

    /// The safe form of a name; empty where nothing usable is left, and the caller refuses.
    ///
    /// Separators and characters that FAT forbids become '_'; control and direction characters are
    /// dropped; leading and trailing dots and blanks go; device names ("CON") get a leading
    /// underscore; a long name is cut between characters. A safe name is answered as it is.
    [[nodiscard]] QString convert(const QString& typed) const;
};

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

/// What a second instance says to the first one: the files that it was to open, and nothing more
/// than its presence where there are none.
///
/// On the wire: a greeting with the version of these words, the name of each file, and an empty
/// name, each ended by a NUL.
namespace handover {

constexpr int kMostBytes = 1 << 20; ///< of a message; longer ones are refused

/// The answer to a message that was understood.
const QByteArray kTaken = "taken";

/// Where the first instance listens.
[[nodiscard]] QString address(const QString& temporaryDir);

[[nodiscard]] QByteArray message(const QStringList& files);

/// Whether all of a message has come.
[[nodiscard]] bool isComplete(const QByteArray& bytes);

/// The files of a message; nothing where it is none.
[[nodiscard]] std::optional<QStringList> files(const QByteArray& bytes);

/// Gives the files to the instance that listens at the address, which may still be starting.
/// \return whether it took them in time
[[nodiscard]] bool send(const QString& address, const QStringList& files,
                        std::chrono::milliseconds patience);

} // namespace handover

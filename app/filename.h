#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

class QMimeData;

/// Names of files as a text that loses nothing: a name is bytes on the disk, and not every name is
/// a text in the encoding of the user's language.
///
/// A name that is none has its bytes from 0x80 on as the characters U+DC80 to U+DCFF, which no text
/// holds by themselves.
namespace filename {

[[nodiscard]] QString fromRaw(const QByteArray& raw); ///< of the bytes that the system has
[[nodiscard]] QByteArray toRaw(const QString& name); ///< those bytes again

/// Whether Qt finds the file under this name.
[[nodiscard]] bool isText(const QString& name);

/// The name in letters that can be shown, written and read by everybody; for a name that is no text
/// the nearest guess.
[[nodiscard]] QString shown(const QString& name);

/// The name with the directory in front that it was meant in.
[[nodiscard]] QString absolute(const QString& name);

struct Dropped
{
    QStringList files;
    QStringList elsewhere; ///< what lies on no disk of this machine
};

/// What was dragged here out of a file manager.
[[nodiscard]] Dropped dropped(const QMimeData& data);

} // namespace filename

#pragma once

#include <QByteArray>
#include <QString>

/// How a run of the acquisition program came to its end.
struct GatherOutcome
{
    enum Kind
    {
        Pending, ///< it has not
        Announced, ///< the program said so
        Stopped, ///< it was asked to end, and did
        Forced, ///< it was asked to end, did not, and was killed
        FailedToStart,
        Exited, ///< it left without a word
        Crashed,
        Silent, ///< nothing came from it any more, and it was ended
    };

    Kind kind = Pending;
    int exitCode = 0;
    QString lastWords; ///< the last line on its standard error
};

/// The last line in what a program wrote, fit to be shown: in printable characters, and not long.
[[nodiscard]] QString lastLineOf(const QByteArray& text);

/// What went wrong, in words for the user; empty for a run that ended as it should, and for one
/// that did not start, of which more is known where it was started.
[[nodiscard]] QString whatWentWrong(const GatherOutcome& outcome);

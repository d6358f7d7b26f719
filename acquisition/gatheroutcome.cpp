#include "acquisition/gatheroutcome.h"

#include <QCoreApplication>

namespace {

constexpr int kLongestLine = 200;

/// Texts of this file.
struct Words
{
    Q_DECLARE_TR_FUNCTIONS(GatherOutcome)
};

/// The sentence, and what the program said of it.
QString withReason(const QString& sentence, const QString& reason)
{
    return reason.isEmpty() ? sentence + '.' : sentence + ": " + reason;
}

} // namespace

QString lastLineOf(const QByteArray& text)
{
    const QByteArray trimmed = text.trimmed();
    const QByteArray bytes = trimmed.mid(trimmed.lastIndexOf('\n') + 1);
    const QString last = QString::fromLocal8Bit(bytes.constData(), bytes.size());
    QString line;
    for (const QChar character : last) {
        if (character.isPrint() || character.isSpace()) {
            line += character.isSpace() ? QChar(' ') : character;
        }
    }
    return line.size() > kLongestLine ? line.left(kLongestLine - 3) + "..." : line;
}

QString whatWentWrong(const GatherOutcome& outcome)
{
    switch (outcome.kind) {
    case GatherOutcome::Exited:
        return outcome.exitCode == 0
            ? Words::tr("The acquisition program ended before the measurement was complete.")
            : withReason(
                Words::tr("The acquisition program failed (code %1)").arg(outcome.exitCode),
                outcome.lastWords);
    case GatherOutcome::Crashed:
        return withReason(Words::tr("The acquisition program crashed"), outcome.lastWords);
    case GatherOutcome::Silent:
        return Words::tr("The acquisition program did not answer any more and was ended.");
    case GatherOutcome::Forced:
        return Words::tr("The acquisition program did not stop when it was told to and was ended.");
    default:
        return {};
    }
}

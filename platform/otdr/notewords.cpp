#include "platform/otdr/notewords.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>

#include <gsl/span>

namespace {

// What the numeric library, which knows no languages, can say of a file that it does read or has
// written. Each %1, %2 and %3 is a number or the name of a block, or of several.

/// Something is not there; what a user misses most first.
constexpr const char* kDamages[] = {
    QT_TRANSLATE_NOOP("TraceNote", "of %1 samples the file holds %2"),
    QT_TRANSLATE_NOOP("TraceNote",
                      "how the trace was measured is missing; distances are not known"),
    QT_TRANSLATE_NOOP("TraceNote", "the data spacing is 0; distances are not known"),
    QT_TRANSLATE_NOOP("TraceNote", "of %1 events the file holds %2"),
    QT_TRANSLATE_NOOP("TraceNote", "the file ends within the block \"%1\""),
    QT_TRANSLATE_NOOP("TraceNote", "the file ends before the block \"%1\""),
};

/// All is there, but not as with others.
constexpr const char* kOddities[] = {
    QT_TRANSLATE_NOOP("TraceNote", "the block \"%1\" ends early; its last fields are missing"),
    QT_TRANSLATE_NOOP("TraceNote", "the block \"%1\" is there more than once; the first is used"),
    QT_TRANSLATE_NOOP(
        "TraceNote",
        "the block \"%1\" does not stand where the map puts it; it was found close by"),
    QT_TRANSLATE_NOOP("TraceNote", "%1 bytes follow the last block; they are kept"),
    QT_TRANSLATE_NOOP("TraceNote", "the samples come in %1 sections; they are joined"),
    QT_TRANSLATE_NOOP("TraceNote", "the scale factor of the samples is 0; 1.000 is assumed"),
    QT_TRANSLATE_NOOP("TraceNote", "the group index %1 is impossible; %2 is assumed"),
    QT_TRANSLATE_NOOP("TraceNote",
                      "the backscatter coefficient is stored as %1; it is read as %2 dB"),
    QT_TRANSLATE_NOOP(
        "TraceNote",
        "the backscatter coefficient is stored as %1, which none is; the usual one is taken"),
    QT_TRANSLATE_NOOP(
        "TraceNote", "the samples are told to have several spacings; one is taken for all of them"),
    QT_TRANSLATE_NOOP("TraceNote",
                      "the data spacing is %1 times what the range allows; distances may be wrong"),
    QT_TRANSLATE_NOOP(
        "TraceNote", "the data spacing is ten times what the range allows; a tenth of it is taken"),
    QT_TRANSLATE_NOOP("TraceNote", "the samples are counted as %1 and as %2; %3 are taken"),
    QT_TRANSLATE_NOOP(
        "TraceNote", "the map does not end where it says; the blocks are taken from where it says"),
    QT_TRANSLATE_NOOP("TraceNote",
                      "the map does not end where it says; the blocks are taken from its real end"),
    QT_TRANSLATE_NOOP("TraceNote",
                      "the landmarks are more than their block can hold; they are not shown"),
    QT_TRANSLATE_NOOP("TraceNote",
                      "the data spacing is 0; the range over the number of samples is taken"),
    QT_TRANSLATE_NOOP("TraceNote", "the number of pulse widths is %1; one is assumed"),
    QT_TRANSLATE_NOOP(
        "TraceNote",
        "the events fit the samples with 0 m at sample %1, not where the offsets put it"),
    QT_TRANSLATE_NOOP("TraceNote", "a snapshot tells no group index: %1 assumed"),
    QT_TRANSLATE_NOOP(
        "TraceNote", "samples or events were changed, so the maker's own blocks were left out: %1"),
};

/// What stands in a note for the whole and for %1 to %3; nothing where it is another note.
QStringList placesIn(const QString& note, const char* known)
{
    QString pattern = QRegularExpression::escape(QString::fromLatin1(known));
    for (const char* place : {"\\%1", "\\%2", "\\%3"}) {
        pattern.replace(place, "(.+)");
    }
    const QRegularExpression whole(QRegularExpression::anchoredPattern(pattern),
                                   QRegularExpression::DotMatchesEverythingOption);
    return whole.match(note).capturedTexts();
}

/// Nothing where it is another note.
QString wordsOf(const QString& note, const char* known)
{
    const QStringList places = placesIn(note, known);
    if (places.isEmpty()) {
        return {};
    }
    QString words = QCoreApplication::translate("TraceNote", known);
    for (int place = 1; place < places.size(); ++place) {
        words.replace("%" + QString::number(place), places.at(place));
    }
    return words;
}

} // namespace

QString noteWords(const QString& note)
{
    for (const auto& all :
         {gsl::span<const char* const>(kDamages), gsl::span<const char* const>(kOddities)}) {
        for (const char* known : all) {
            QString words = wordsOf(note, known);
            if (!words.isEmpty()) {
                return words;
            }
        }
    }
    return note;
}

QString damageWords(const Reflectogram& refl)
{
    const QStringList notes = refl.notes();
    for (const char* known : kDamages) {
        for (const QString& note : notes) {
            const QString words = wordsOf(note, known);
            if (!words.isEmpty()) {
                const QString line = QCoreApplication::translate(
                    "TraceNote", "%1: the file is damaged; what could be read of it is shown (%2)");
                return line.arg(QFileInfo(refl.fileName()).fileName(), words);
            }
        }
    }
    return {};
}

#include "platform/launcher/touchkeys.h"

#include <QString>

namespace touchkeys {

namespace {

constexpr int kKey = 2;

void append(QVector<Key>& row, Deed deed, QChar character, int columns)
{
    const int column = row.isEmpty() ? 0 : row.last().column + row.last().columns;
    row << Key {deed, character, column, columns};
}

void append(QVector<Key>& row, const QString& characters)
{
    for (const QChar character : characters) {
        append(row, Deed::Type, character, kKey);
    }
}

QVector<Key> letters(const QString& characters, int firstColumn)
{
    QVector<Key> row;
    append(row, characters);
    for (Key& key : row) {
        key.column += firstColumn;
    }
    return row;
}

QVector<Key> lastLetters(const QString& characters)
{
    constexpr int kSide = 3;
    QVector<Key> row;
    append(row, Deed::Shift, {}, kSide);
    append(row, characters);
    append(row, Deed::Backspace, {}, kSide);
    return row;
}

/// The space takes what the others leave.
QVector<Key> lastRow(Alphabet alphabet, bool hasOther)
{
    // Narrower keys, but longer words on them.
    const int clear = alphabet == Alphabet::Latin ? 3 : 4;
    const QString signs = QStringLiteral("_-.");
    QVector<Key> row;
    append(row, Deed::Clear, {}, clear);
    append(row, Deed::Left, {}, kKey);
    append(row, Deed::Right, {}, kKey);
    if (hasOther) {
        append(row, Deed::OtherAlphabet, {}, kKey);
    }
    const int taken = row.last().column + row.last().columns + kKey * signs.size();
    append(row, Deed::Type, QLatin1Char(' '), columnsOf(alphabet) - taken);
    append(row, signs);
    return row;
}

} // namespace

QVector<QVector<Key>> rows(Alphabet alphabet, bool hasOther)
{
    const QVector<Key> last = lastRow(alphabet, hasOther);
    if (alphabet == Alphabet::Latin) {
        return {letters(QStringLiteral("1234567890"), 0), letters(QStringLiteral("qwertyuiop"), 0),
                letters(QStringLiteral("asdfghjkl"), 1), lastLetters(QStringLiteral("zxcvbnm")),
                last};
    }
    return {letters(QStringLiteral("ё1234567890"), 1), letters(QStringLiteral("йцукенгшщзхъ"), 0),
            letters(QStringLiteral("фывапролджэ"), 1), lastLetters(QStringLiteral("ячсмитьбю")),
            last};
}

Shift touched(Shift shift)
{
    switch (shift) {
    case Shift::Off:
        return Shift::Once;
    case Shift::Once:
        return Shift::Locked;
    case Shift::Locked:
        break;
    }
    return Shift::Off;
}

Shift after(Shift shift, const Key& key)
{
    if (key.deed == Deed::Shift) {
        return touched(shift);
    }
    return shift == Shift::Once && key.isLetter() ? Shift::Off : shift;
}

} // namespace touchkeys

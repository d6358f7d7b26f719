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

QVector<Key> lastLetters()
{
    constexpr int kSide = 3;
    QVector<Key> row;
    append(row, Deed::Shift, {}, kSide);
    append(row, QStringLiteral("zxcvbnm"));
    append(row, Deed::Backspace, {}, kSide);
    return row;
}

QVector<Key> lastRow()
{
    constexpr int kClear = 3;
    constexpr int kBlank = 7;
    QVector<Key> row;
    append(row, Deed::Clear, {}, kClear);
    append(row, Deed::Left, {}, kKey);
    append(row, Deed::Right, {}, kKey);
    append(row, Deed::Type, QLatin1Char(' '), kBlank);
    append(row, QStringLiteral("_-."));
    return row;
}

} // namespace

QVector<QVector<Key>> rows()
{
    return {letters(QStringLiteral("1234567890"), 0), letters(QStringLiteral("qwertyuiop"), 0),
            letters(QStringLiteral("asdfghjkl"), 1), lastLetters(), lastRow()};
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

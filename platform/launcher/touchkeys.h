#pragma once

#include <QChar>
#include <QVector>

/// Where the keys of a keyboard on the screen lie and what they do. No widget.
namespace touchkeys {

enum class Alphabet
{
    Latin,
    Cyrillic
};

/// The keyboard is so many half keys wide.
[[nodiscard]] constexpr int columnsOf(Alphabet alphabet)
{
    return alphabet == Alphabet::Latin ? 20 : 24;
}

enum class Deed
{
    Type, ///< its character
    Shift,
    OtherAlphabet,
    Backspace,
    Clear,
    Left,
    Right
};

struct Key
{
    Deed deed = Deed::Type;
    QChar character; ///< of Deed::Type, letters as they are without shift
    int column = 0; ///< the half key that it starts at
    int columns = 2; ///< its width in half keys

    [[nodiscard]] bool isLetter() const { return deed == Deed::Type && character.isLetter(); }
};

/// The rows from above, each from the left: digits, three rows of letters, and what else a file
/// name wants. With a key for the other alphabet if wanted.
[[nodiscard]] QVector<QVector<Key>> rows(Alphabet alphabet, bool hasOther);

enum class Shift
{
    Off,
    Once, ///< the next letter is a capital
    Locked
};

/// The shift after its key was touched: once, locked, off.
[[nodiscard]] Shift touched(Shift shift);

/// The shift after this key was.
[[nodiscard]] Shift after(Shift shift, const Key& key);

} // namespace touchkeys

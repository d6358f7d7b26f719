#include "platform/launcher/touchkeys.h"

#include <QString>

#include <gtest/gtest.h>

namespace {

using namespace touchkeys;

QString allCharacters(Alphabet alphabet)
{
    QString all;
    for (const auto& row : rows(alphabet, true)) {
        for (const Key& key : row) {
            all += key.deed == Deed::Type ? QString(key.character) : QString();
        }
    }
    return all;
}

int count(const QVector<QVector<Key>>& rows, Deed deed)
{
    int count = 0;
    for (const auto& row : rows) {
        for (const Key& key : row) {
            count += key.deed == deed ? 1 : 0;
        }
    }
    return count;
}

constexpr Alphabet kAlphabets[] = {Alphabet::Latin, Alphabet::Cyrillic};
const Key kLetter {Deed::Type, 'a', 0, 2};
const Key kDigit {Deed::Type, '7', 0, 2};
const Key kShift {Deed::Shift, {}, 0, 2};

} // namespace

TEST(TouchKeys, HaveEachCharacterOfAFileNameOnce)
{
    const QString signs = QStringLiteral("0123456789_-. ");
    const QString letters[] = {QStringLiteral("abcdefghijklmnopqrstuvwxyz"),
                               QStringLiteral("абвгдеёжзийклмнопрстуфхцчшщъыьэюя")};
    for (const Alphabet alphabet : kAlphabets) {
        const QString all = allCharacters(alphabet);
        const QString expected = letters[static_cast<int>(alphabet)] + signs;
        for (const QChar wanted : expected) {
            EXPECT_EQ(all.count(wanted), 1) << QString(wanted).toStdString();
        }
        EXPECT_EQ(all.size(), expected.size());
    }
}

TEST(TouchKeys, HaveEachDeedOnce)
{
    for (const Alphabet alphabet : kAlphabets) {
        for (const bool hasOther : {false, true}) {
            const auto all = rows(alphabet, hasOther);
            for (const Deed deed :
                 {Deed::Shift, Deed::Backspace, Deed::Clear, Deed::Left, Deed::Right}) {
                EXPECT_EQ(count(all, deed), 1);
            }
            EXPECT_EQ(count(all, Deed::OtherAlphabet), hasOther ? 1 : 0);
        }
    }
}

TEST(TouchKeys, LieBesideEachOtherWithinTheKeyboard)
{
    for (const Alphabet alphabet : kAlphabets) {
        for (const auto& row : rows(alphabet, true)) {
            int end = 0;
            for (const Key& key : row) {
                EXPECT_GE(key.column, end);
                EXPECT_GE(key.columns, 2);
                end = key.column + key.columns;
            }
            EXPECT_LE(end, columnsOf(alphabet));
        }
    }
}

TEST(TouchKeys, ShiftHoldsForOneLetter)
{
    EXPECT_EQ(after(Shift::Once, kLetter), Shift::Off);
    EXPECT_EQ(after(Shift::Off, kLetter), Shift::Off);
}

TEST(TouchKeys, ShiftWaitsForALetter)
{
    EXPECT_EQ(after(Shift::Once, kDigit), Shift::Once);
}

TEST(TouchKeys, ShiftTouchedTwiceHoldsUntilItIsTouchedAgain)
{
    EXPECT_EQ(after(Shift::Off, kShift), Shift::Once);
    EXPECT_EQ(after(Shift::Once, kShift), Shift::Locked);
    EXPECT_EQ(after(Shift::Locked, kLetter), Shift::Locked);
    EXPECT_EQ(after(Shift::Locked, kShift), Shift::Off);
}

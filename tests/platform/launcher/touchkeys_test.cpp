#include "platform/launcher/touchkeys.h"

#include <QString>

#include <gtest/gtest.h>

namespace {

using namespace touchkeys;

QString allCharacters()
{
    QString all;
    for (const auto& row : rows()) {
        for (const Key& key : row) {
            all += key.deed == Deed::Type ? QString(key.character) : QString();
        }
    }
    return all;
}

int count(Deed deed)
{
    int count = 0;
    for (const auto& row : rows()) {
        for (const Key& key : row) {
            count += key.deed == deed ? 1 : 0;
        }
    }
    return count;
}

const Key kLetter {Deed::Type, 'a', 0, 2};
const Key kDigit {Deed::Type, '7', 0, 2};
const Key kShift {Deed::Shift, {}, 0, 2};

} // namespace

TEST(TouchKeys, HaveEachCharacterOfAFileNameOnce)
{
    const QString all = allCharacters();
    for (const QChar wanted : QStringLiteral("abcdefghijklmnopqrstuvwxyz0123456789_-. ")) {
        EXPECT_EQ(all.count(wanted), 1) << wanted.toLatin1();
    }
    EXPECT_EQ(all.size(), 40);
}

TEST(TouchKeys, HaveEachDeedOnce)
{
    for (const Deed deed : {Deed::Shift, Deed::Backspace, Deed::Clear, Deed::Left, Deed::Right}) {
        EXPECT_EQ(count(deed), 1);
    }
}

TEST(TouchKeys, LieBesideEachOtherWithinTheKeyboard)
{
    for (const auto& row : rows()) {
        int end = 0;
        for (const Key& key : row) {
            EXPECT_GE(key.column, end);
            EXPECT_GE(key.columns, 2);
            end = key.column + key.columns;
        }
        EXPECT_LE(end, kColumns);
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

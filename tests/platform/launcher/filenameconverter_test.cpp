#include "platform/launcher/filenameconverter.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace {

QString convert(const QString& typed)
{
    return FileNameConverter().convert(typed);
}

} // namespace

TEST(FileNameConverter, LeavesAnOrdinaryNameAlone)
{
    for (const QString& name :
         {QStringLiteral("trace_1550nm_0001"), QStringLiteral("Линия 7 (запад)"),
          QStringLiteral("a.b-c"), QStringLiteral("光ファイバー")}) {
        EXPECT_EQ(convert(name), name);
    }
}

TEST(FileNameConverter, CannotLeaveTheDirectory)
{
    EXPECT_EQ(convert("../x"), "_x");
    EXPECT_EQ(convert("a/b"), "a_b");
    EXPECT_EQ(convert("..\\..\\x"), "_.._x");
    EXPECT_EQ(convert("/etc/passwd"), "_etc_passwd");
    EXPECT_EQ(convert(".."), "");
    EXPECT_EQ(convert("."), "");
}

TEST(FileNameConverter, AnswersNothingWhereNothingIsLeft)
{
    EXPECT_EQ(convert(""), "");
    EXPECT_EQ(convert("   "), "");
    EXPECT_EQ(convert(" . . "), "");
    EXPECT_EQ(convert(QString(QChar(u'\n'))), "");
}

TEST(FileNameConverter, DropsDotsAndBlanksAtBothEnds)
{
    EXPECT_EQ(convert("name..."), "name");
    EXPECT_EQ(convert(" .hidden "), "hidden");
    EXPECT_EQ(convert("a . b"), "a . b");
    EXPECT_EQ(convert("name\u00a0"), "name");
}

TEST(FileNameConverter, DropsControlAndDirectionCharacters)
{
    EXPECT_EQ(convert(QStringLiteral("a\nb\tc") + QChar(0) + QStringLiteral("d\u007f")), "abcd");
    EXPECT_EQ(convert(QStringLiteral("abc\u202egpj")), "abcgpj");
    EXPECT_EQ(convert(QStringLiteral("a\u2028b")), "ab");
    EXPECT_EQ(
        convert(QStringLiteral("a") + QChar(0xd83d) + QStringLiteral("b")).contains(QChar(0xd83d)),
        false);
}

TEST(FileNameConverter, ReplacesWhatAFlashDriveForbids)
{
    EXPECT_EQ(convert("a:b*c?d\"e<f>g|h"), "a_b_c_d_e_f_g_h");
}

TEST(FileNameConverter, GivesDeviceNamesAnUnderscore)
{
    EXPECT_EQ(convert("CON"), "_CON");
    EXPECT_EQ(convert("con"), "_con");
    EXPECT_EQ(convert("lpt9.old"), "_lpt9.old");
    EXPECT_EQ(convert("NUL .x"), "_NUL .x");
    EXPECT_EQ(convert("CONTROL"), "CONTROL");
    EXPECT_EQ(convert("COM0"), "COM0");
}

TEST(FileNameConverter, CutsALongNameToTwoHundredBytesBetweenCharacters)
{
    EXPECT_EQ(convert(QString(300, 'x')), QString(200, 'x'));
    EXPECT_EQ(convert(QString(200, 'x')), QString(200, 'x'));

    const QString emoji = QString::fromUtf8("\U0001F4C8"); // four bytes
    EXPECT_EQ(convert(emoji.repeated(60)), emoji.repeated(50));
    EXPECT_EQ(convert("x" + emoji.repeated(60)), "x" + emoji.repeated(49));
}

TEST(FileNameConverter, CutsNoCombinedCharacterInTwo)
{
    const QString accented = QStringLiteral("e\u0301"); // three bytes, one character on the screen
    const QString cut = convert(accented.repeated(100));
    EXPECT_EQ(cut, accented.repeated(66));
}

TEST(FileNameConverter, EndsInNoDotAfterTheCut)
{
    EXPECT_EQ(convert(QString(199, 'x') + ".sor"), QString(199, 'x'));
}

TEST(FileNameConverter, ConvertsItsOwnResultToItself)
{
    const QStringList names {"../x",    "a/b",         "CON",    QString(300, 'x'), " .a. ",
                             "NUL.txt", "\u202ea\nb ", "..a..b", "com1.."};
    for (const QString& name : names) {
        const QString once = convert(name);
        EXPECT_EQ(convert(once), once) << qPrintable(name);
    }
}

#include "platform/otdr/errorwords.h"
#include "platform/otdr/reflectogram.h"
#include "tests/support/echo.h"
#include "tests/support/tracefiles.h"

#include <QFile>
#include <QSet>

#include <gmock/gmock.h>

namespace {

using namespace testing_support; // builders, a language

Bytes filled(std::size_t size)
{
    return Bytes(size, std::byte {0x20});
}

/// Files that are no traces, each for another reason.
QStringList noTraces(const TraceFiles& files)
{
    SorSketch empty = SorSketch::plain();
    empty.samples.clear();
    const Bytes plain = SorSketch::plain().build();
    const Bytes cut(plain.begin(), plain.begin() + 40);
    const QString snapshot = files.writeSnapshot("whole.bin", TraceBuilder());
    QFile whole(snapshot);
    EXPECT_TRUE(whole.open(QIODevice::ReadOnly));
    QByteArray bytes = whole.readAll();
    QStringList names;
    const auto damaged = [&](const QString& name, int place) {
        QByteArray other = bytes;
        other[place] = static_cast<char>(other[place] ^ 0x5a);
        QFile file(files.path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(other) == other.size());
        names << file.fileName();
    };
    damaged("version.bin", 4);
    damaged("header.bin", 6);
    damaged("length.bin", 8);
    damaged("sum.bin", 45);
    return names
        + QStringList {files.write("nothing.sor", Bytes()), files.write("short.sor", filled(5)),
                       files.write("words.sor", filled(500)), files.write("cut.sor", cut),
                       files.write("empty.sor", empty)};
}

TEST(ErrorWords, AreThereForWhateverIsNoTrace)
{
    const TraceFiles files;
    const QStringList names = noTraces(files);
    QSet<QString> reasons;
    const Echo language;
    for (const QString& name : names) {
        const Reflectogram refl(name);
        ASSERT_FALSE(refl.isValid()) << qPrintable(name);
        const QString words = errorWords(refl.error());
        EXPECT_TRUE(words.startsWith(name + ": <") && words.endsWith(">")) << qPrintable(words);
        EXPECT_EQ(QString(words).remove('<').remove('>'), refl.error());
        reasons << words.mid(name.size());
    }
    EXPECT_GT(reasons.size(), 6) << "they fail for the same reason";
}

TEST(ErrorWords, AreTheLibrarysOwnInEnglish)
{
    const TraceFiles files;
    for (const QString& name : noTraces(files)) {
        EXPECT_EQ(errorWords(Reflectogram(name).error()), Reflectogram(name).error());
    }
}

TEST(ErrorWords, AreLeftAsTheyAreWhereNobodyKnowsThem)
{
    const Echo language;
    EXPECT_EQ(errorWords(""), "");
    EXPECT_EQ(errorWords("a.sor: Permission denied"), "a.sor: Permission denied");
    EXPECT_EQ(errorWords("cannot be read"), "<cannot be read>");
    EXPECT_EQ(errorWords("it cannot be read"), "it cannot be read") << "a part of another sentence";
}

} // namespace

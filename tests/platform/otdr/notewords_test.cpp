#include "platform/otdr/notewords.h"
#include "platform/otdr/reflectogram.h"
#include "tests/support/echo.h"
#include "tests/support/tracefiles.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <vector>

namespace {

using namespace testing_support; // builders, a language

TEST(NoteWords, AreThereForWhateverACutFileMisses)
{
    const TraceFiles files;
    const Bytes plain = SorSketch::plain().build();
    const Echo language;
    int opened = 0;
    for (std::size_t size = 20; size < plain.size(); size += size < 1200 ? 1 : 97) {
        const Reflectogram refl(
            files.write("cut.sor", Bytes(plain.begin(), plain.begin() + static_cast<long>(size))));
        if (!refl.isValid()) {
            continue;
        }
        ++opened;
        const QString damage = damageWords(refl);
        ASSERT_TRUE(damage.startsWith("<cut.sor: the file is damaged")) << size;
        for (const QString& note : refl.notes()) {
            const QString words = noteWords(note);
            ASSERT_TRUE(words.startsWith('<') && words.endsWith('>')) << qPrintable(note);
            ASSERT_EQ(words, '<' + note + '>');
        }
        EXPECT_TRUE(damage.contains("samples") || damage.contains("Cksum")) << qPrintable(damage);
    }
    EXPECT_GT(opened, 50);
}

TEST(NoteWords, TellOfDamageWhereNothingIsKnownOfTheDistances)
{
    const TraceFiles files;
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"FxdParams"};
    EXPECT_EQ(damageWords(Reflectogram(files.write("a.sor", sketch))),
              "a.sor: the file is damaged; what could be read of it is shown (how the trace was "
              "measured is missing; distances are not known)");
}

TEST(NoteWords, TellOfNoDamageWhereAMakerDoesItOtherwise)
{
    const TraceFiles files;
    SorSketch sketch = SorSketch::plain();
    sketch.tail = Bytes(103);
    sketch.fxd.groupIndex = 0;
    const Reflectogram refl(files.write("a.sor", sketch));
    EXPECT_EQ(refl.notes().size(), 2);
    EXPECT_EQ(damageWords(refl), "");
    const Echo language;
    EXPECT_EQ(noteWords("103 bytes follow the last block; they are kept"),
              "<103 bytes follow the last block; they are kept>");
}

/// Files of which something is odd, each in a way of its own.
std::vector<Bytes> oddFiles()
{
    std::vector<Bytes> files;
    const auto add = [&files](const auto& change) {
        SorSketch sketch = SorSketch::plain();
        change(sketch);
        files.push_back(sketch.build());
    };
    add([](SorSketch& sketch) { sketch.fxd.groupIndex = 14'682; });
    add([](SorSketch& sketch) { sketch.fxd.backscatter = 7950; });
    add([](SorSketch& sketch) { sketch.fxd.backscatter = 30'000; });
    add([](SorSketch& sketch) {
        sketch.fxd.pulses.push_back(sketch.fxd.pulses.front());
        sketch.fxd.pulses.back().dataSpacing *= 2;
    });
    add([](SorSketch& sketch) {
        sketch.fxd.acquisitionRange = sketch.fxd.pulses.front().dataSpacing
            * static_cast<std::uint32_t>(sketch.samples.size()) / 100'000;
    });
    auto blocks = SorSketch::plain().blocks();
    blocks[4].body = ByteSketch().u32(3).u16(1).u32(2).u16(1000).u16(7).u16(8).u16(9).done;
    files.push_back(SorSketch::assemble(2, blocks));
    blocks = SorSketch::plain().blocks();
    blocks[0].statedSize = static_cast<std::int64_t>(blocks[0].body.size());
    files.push_back(SorSketch::assemble(2, blocks));
    return files;
}

TEST(NoteWords, AreThereForEachOddity)
{
    const TraceFiles files;
    const Echo language;
    for (const Bytes& bytes : oddFiles()) {
        const Reflectogram refl(files.write("odd.sor", bytes));
        ASSERT_TRUE(refl.isValid());
        EXPECT_EQ(refl.notes().size(), 1);
        for (const QString& note : refl.notes()) {
            EXPECT_EQ(noteWords(note), '<' + note + '>');
        }
        EXPECT_EQ(damageWords(refl), "");
    }
}

TEST(NoteWords, AreThereForWhatWasNotSaved)
{
    const TraceFiles files;
    SorSketch sketch = SorSketch::plain();
    sketch.makers = {{"Mine", Bytes(4)}, {"Ours", Bytes(4)}};
    Reflectogram refl(files.write("plain.sor", sketch));
    refl.setEventList({});
    ASSERT_EQ(refl.save(files.path("changed.sor")), 0);
    ASSERT_EQ(refl.notes().size(), 1);
    const Echo language;
    EXPECT_EQ(noteWords(refl.notes()[0]), '<' + refl.notes()[0] + '>');
    EXPECT_EQ(damageWords(refl), "");
}

TEST(NoteWords, TellOfNoDamageInFilesOfMakers)
{
    const QStringList names = realTraces();
    if (names.isEmpty()) {
        GTEST_SKIP() << "no trace files here";
    }
    for (const QString& name : names) {
        EXPECT_EQ(damageWords(Reflectogram(name)), "") << qPrintable(name);
    }
}

TEST(NoteWords, AreLeftAsTheyAreWhereNobodyKnowsThem)
{
    const Echo language;
    EXPECT_EQ(noteWords(""), "");
    EXPECT_EQ(noteWords("the moon is full"), "the moon is full");
    EXPECT_EQ(noteWords("so: of 2 samples the file holds 1"), "so: of 2 samples the file holds 1")
        << "a part of another sentence";
    EXPECT_EQ(noteWords("the file ends before the block \"A\nB\""),
              "<the file ends before the block \"A\nB\">");
    EXPECT_EQ(damageWords(Reflectogram()), "");
}

} // namespace

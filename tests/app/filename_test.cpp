#include "app/filename.h"
#include "app/linkednames.h"

#include <QFile>
#include <QFileInfo>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>

#include <gmock/gmock.h>

#include <cstdio>

namespace {

const QByteArray kEveryByte = [] {
    QByteArray bytes;
    for (int byte = 1; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    return bytes;
}();

void write(const QByteArray& path, const char* text)
{
    std::FILE* file = std::fopen(path.constData(), "w");
    ASSERT_NE(file, nullptr);
    std::fputs(text, file);
    std::fclose(file);
}

QByteArray read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be opened");
}

TEST(FileName, OfAnyBytesComesBackAsItWas)
{
    const QByteArray names[] = {"plain.sor",        "gr\xC3\xBC\xC3\x9F.sor",
                                "gr\xFC\xDF.sor",   "\xF0\x9F\x94\xA6.sor",
                                "\xED\xA0\x80.sor", kEveryByte};
    for (const QByteArray& raw : names) {
        EXPECT_EQ(filename::toRaw(filename::fromRaw(raw)), raw) << raw.toPercentEncoding().data();
    }
}

TEST(FileName, KeepsItsBytesBehindADirectoryWhoseNameIsText)
{
    const QString joined = QString("/a b/") + filename::fromRaw(kEveryByte);
    EXPECT_EQ(filename::toRaw(joined), "/a b/" + kEveryByte);
}

TEST(FileName, IsShownInLettersThatCanBeWritten)
{
    EXPECT_EQ(filename::shown("plain.sor"), "plain.sor");
    const QString shown = filename::shown(filename::fromRaw("a\nb\xFC.sor"));
    EXPECT_TRUE(filename::isText(shown));
    EXPECT_EQ(QFile::decodeName(QFile::encodeName(shown)), shown);
    EXPECT_TRUE(shown.endsWith(".sor"));
}

TEST(FileName, IsMeantInTheWorkingDirectory)
{
    EXPECT_EQ(filename::absolute("/tmp/a.sor"), "/tmp/a.sor");
    const QString name = filename::absolute("a.sor");
    EXPECT_TRUE(name.startsWith('/'));
    EXPECT_TRUE(name.endsWith("/a.sor"));
}

TEST(DroppedThings, AreFilesByTheirBytesAndPlacesElsewhere)
{
    QMimeData data;
    data.setUrls({QUrl("file:///a%20b/%FF%FE.sor"), QUrl("https://example.org/x.sor"),
                  QUrl::fromLocalFile("/tmp/100%.sor")});
    const filename::Dropped things = filename::dropped(data);
    ASSERT_EQ(things.files.size(), 2);
    EXPECT_EQ(filename::toRaw(things.files.at(0)), "/a b/\xFF\xFE.sor");
    EXPECT_EQ(things.files.at(1), "/tmp/100%.sor");
    EXPECT_EQ(things.elsewhere, QStringList {"https://example.org/x.sor"});
}

TEST(LinkedFile, IsReadUnderANameThatIsText)
{
    const QTemporaryDir dir;
    const QByteArray raw = QFile::encodeName(dir.path()) + "/\xFF\xFE.sor";
    write(raw, "one");
    const QByteArray alike = QFile::encodeName(dir.path()) + "/\xFF\xFD.sor";
    write(alike, "other");
    QString link;
    {
        LinkedNames names(dir.path());
        link = names.openable(filename::fromRaw(raw));
        EXPECT_TRUE(filename::isText(link));
        EXPECT_EQ(read(link), "one");
        EXPECT_EQ(names.openable(filename::fromRaw(raw)), link) << "it would be loaded twice";
        EXPECT_EQ(read(names.openable(filename::fromRaw(alike))), "other")
            << "two names that look the same are two files";
    }
    EXPECT_FALSE(QFileInfo(link).isSymLink()) << "it is left behind";
    EXPECT_EQ(std::remove(raw.constData()), 0) << "the file itself is gone with its link";
    EXPECT_EQ(std::remove(alike.constData()), 0);
}

TEST(LinkedFile, WithAPlainNameIsTheFileItself)
{
    LinkedNames names("/nowhere");
    EXPECT_EQ(names.openable("/tmp/a.sor"), "/tmp/a.sor");
}

TEST(LinkedFile, ThatCannotBeLinkedIsNotFound)
{
    LinkedNames names("/nowhere");
    const QString name = filename::fromRaw("/tmp/\xFF\xFE.sor");
    EXPECT_FALSE(QFile::exists(names.openable(name)));
}

} // namespace

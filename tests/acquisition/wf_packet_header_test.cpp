#include "platform/otdr/wf_packet_header.h"
#include "tests/support/warnings.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <cstring>

namespace {

using testing_support::logged;

class PacketHeader : public testing::Test
{
protected:
    QString fileOf(int size)
    {
        QString name = dir.filePath("trace.bin");
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        QByteArray bytes(size, '\0');
        for (int i = 0; i < size; ++i) {
            bytes[i] = static_cast<char>(i + 1);
        }
        file.write(bytes);
        return name;
    }

    unsigned char byteAt(std::size_t offset) const
    {
        unsigned char bytes[sizeof(header)];
        std::memcpy(bytes, &header, sizeof(header));
        return bytes[offset];
    }

    QTemporaryDir dir;
    wf_packet_header header;
};

TEST_F(PacketHeader, IsTheFirstFortyEightBytesOfTheFile)
{
    header.initFrom(fileOf(100));
    for (std::size_t i = 0; i < 48; ++i) {
        EXPECT_EQ(byteAt(i), i + 1);
    }
    EXPECT_EQ(header.pulse_ns, 0x28272625U); // bytes 36 to 39, the lowest first
    EXPECT_EQ(testing_support::messages(), QString());
}

TEST_F(PacketHeader, ShortFileReplacesAsManyBytesAsItHas)
{
    std::memset(static_cast<void*>(&header), 0xEE, sizeof(header));
    header.initFrom(fileOf(47));
    EXPECT_EQ(byteAt(46), 47);
    EXPECT_EQ(byteAt(47), 0xEE);
    EXPECT_TRUE(logged("Can't read header from file '"));
    EXPECT_TRUE(logged("void wf_packet_header::initFrom(QString)"));
    EXPECT_TRUE(logged("\"" + dir.filePath("trace.bin") + "\""));
}

TEST_F(PacketHeader, FileThatCannotBeOpenedChangesNothing)
{
    std::memset(static_cast<void*>(&header), 0xEE, sizeof(header));
    header.initFrom("");
    EXPECT_EQ(byteAt(0), 0xEE);
    EXPECT_EQ(byteAt(47), 0xEE);
    EXPECT_TRUE(logged("Can't open reflectogram file '"));
    EXPECT_TRUE(logged("error =  5")) << qPrintable(testing_support::messages());
}

} // namespace

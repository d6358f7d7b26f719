#include "platform/sysinfo/sysinforeader.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

/// An information file with these bytes.
class InfoFile
{
public:
    explicit InfoFile(const QByteArray& bytes)
        : name(dir.filePath("info"))
    {
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QTemporaryDir dir;
    QString name;
};

} // namespace

TEST(SysinfoReader, ReadsRevisionAndSerialNumber)
{
    const InfoFile info("model: handheld\nhwrev: 2.1\nserial: A0012\n");
    EXPECT_EQ(SysinfoReader::hwrev(info.name), "2.1");
    EXPECT_EQ(SysinfoReader::serial(info.name), "A0012");
}

TEST(SysinfoReader, TakesEitherSignBlanksCaseAndLineEnds)
{
    const InfoFile info("  Serial = A:0012 \r\nRevision=4\r\n");
    EXPECT_EQ(SysinfoReader::serial(info.name), "A:0012");
    EXPECT_EQ(SysinfoReader::hwrev(info.name), "4");
}

TEST(SysinfoReader, TakesTheFirstOfTwo)
{
    const InfoFile info("serial: one\nserial: two\n");
    EXPECT_EQ(SysinfoReader::serial(info.name), "one");
}

TEST(SysinfoReader, AnswersEmptyWhereThereIsNothing)
{
    EXPECT_EQ(SysinfoReader::hwrev("/no/such/file"), "");
    EXPECT_EQ(SysinfoReader::serial("/no/such/file"), "");
    const QTemporaryDir dir;
    EXPECT_EQ(SysinfoReader::serial(dir.path()), "");
    const InfoFile info("serialnumber: 1\nno sign here\n: x\n");
    EXPECT_EQ(SysinfoReader::serial(info.name), "");
}

TEST(SysinfoReader, DoesNotReadAHugeFile)
{
    const InfoFile small("serial: 1\n" + QByteArray(60 * 1024, ' '));
    EXPECT_EQ(SysinfoReader::serial(small.name), "1");
    const InfoFile huge("serial: 1\n" + QByteArray(70 * 1024, ' '));
    EXPECT_EQ(SysinfoReader::serial(huge.name), "");
}

TEST(SysinfoReader, KnowsTheReleaseOfTheApplication)
{
    const QRegularExpression version(R"(^\d+\.\d+\.\d+$)");
    EXPECT_TRUE(version.match(SysinfoReader::releaseVersion()).hasMatch());
    EXPECT_EQ(SysinfoReader::releaseVersion(), WAVEFORM_VERSION);
}

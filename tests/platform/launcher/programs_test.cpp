#include "platform/launcher/programs.h"

#include <QtGlobal>

#include <gtest/gtest.h>

TEST(ProgramPath, IsOnTheInstrumentUnlessTheEnvironmentNamesADirectory)
{
    const QByteArray before = qgetenv("WAVEFORM_PROGRAMS");
    qunsetenv("WAVEFORM_PROGRAMS");
    EXPECT_EQ(programPath("wfgather"), "/usr/local/bin/wfgather");
    qputenv("WAVEFORM_PROGRAMS", "");
    EXPECT_EQ(programPath("wfgather"), "/usr/local/bin/wfgather");
    qputenv("WAVEFORM_PROGRAMS", "/opt/w/bin");
    EXPECT_EQ(programPath("wfevfind"), "/opt/w/bin/wfevfind");
    qputenv("WAVEFORM_PROGRAMS", "/opt/w/bin/");
    EXPECT_EQ(programPath("wfevfind"), "/opt/w/bin/wfevfind");
    if (before.isNull()) {
        qunsetenv("WAVEFORM_PROGRAMS");
    } else {
        qputenv("WAVEFORM_PROGRAMS", before);
    }
}

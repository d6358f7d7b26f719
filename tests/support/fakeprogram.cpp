#include "tests/support/fakeprogram.h"

#include <QFile>

#include <gtest/gtest.h>

namespace testing_support {

namespace {

constexpr const char* kVariable = "WAVEFORM_PROGRAMS";

} // namespace

FakePrograms::FakePrograms()
    : before(qgetenv(kVariable))
{
    qputenv(kVariable, QFile::encodeName(dir.path()));
}

FakePrograms::~FakePrograms()
{
    qputenv(kVariable, before);
}

void FakePrograms::make(const QString& name, const QString& script) const
{
    QFile file(path(name));
    file.remove(); // a shell that still runs reads on in the old file
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("#!/bin/sh\n" + script.toUtf8() + "\n");
    file.close();
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QString FakePrograms::path(const QString& name) const
{
    return dir.filePath(name);
}

} // namespace testing_support

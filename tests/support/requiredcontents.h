#pragma once

#include "tests/support/contents.h"

#include <QFileInfo>

#include <gtest/gtest.h>

namespace testing_support {

/// What stands in a file; a failure of the test where it cannot be read.
inline QByteArray requiredContents(const QString& path)
{
    EXPECT_TRUE(QFileInfo(path).isReadable()) << qPrintable(path);
    return contents(path);
}

} // namespace testing_support

#pragma once

#include "platform/otdr/core/sorreader.h"
#include "tests/support/sorsketch.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

namespace testing_support {

inline otdr::Result<otdr::sor::File> readBytes(Bytes bytes)
{
    return otdr::readSor(std::make_shared<const Bytes>(std::move(bytes)));
}

/// A sketch that is to be read without an error.
inline otdr::sor::File readSketch(const SorSketch& sketch)
{
    auto file = otdr::readSor(sketch.share());
    EXPECT_TRUE(file.ok()) << (file.ok() ? "" : file.error().message);
    return file.ok() ? *file : otdr::sor::File {};
}

/// Why a file is not read; it is not to be.
inline otdr::ErrorCode codeOf(const otdr::Result<otdr::sor::File>& result)
{
    EXPECT_FALSE(result.ok());
    return result.error().code;
}

} // namespace testing_support

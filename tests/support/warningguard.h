#pragma once

#include <gtest/gtest.h>

namespace testing_support {

/// Fails a test on any Qt warning that it did not announce; a connection that does not take is such
/// a warning.
class WarningGuard : public testing::EmptyTestEventListener
{
public:
    static void install();
    void OnTestStart(const testing::TestInfo& info) override;
    void OnTestEnd(const testing::TestInfo& info) override;
};

} // namespace testing_support

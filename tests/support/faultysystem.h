#pragma once

#include <QByteArray>

namespace testing_support {

/// The child programs started while it lives meet a system that fails them.
class FaultySystem
{
public:
    /// The nth such call ("open", "write", "close", "rename", "mkdir") of a program on a path that
    /// holds the text fails with the error; all others pass.
    FaultySystem(const char* call, int nth, int error, const char* path);
    FaultySystem(const FaultySystem&) = delete;
    FaultySystem& operator=(const FaultySystem&) = delete;
    ~FaultySystem();

    /// A system whose time of day jumps by hours, forward and backward, at every look at it.
    static FaultySystem withJumpingClock();

private:
    FaultySystem();

    QByteArray preloadBefore;
};

} // namespace testing_support

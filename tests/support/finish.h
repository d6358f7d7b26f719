#pragma once

#include <QCoreApplication>
#include <QThreadPool>

namespace testing_support {

/// Waits until all computations are done and told; what is told may begin others.
inline void finish()
{
    for (int round = 0; round < 5; ++round) {
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
    }
}

} // namespace testing_support

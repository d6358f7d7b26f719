#include "tests/support/faultysystem.h"

#include <QtGlobal>

namespace testing_support {

FaultySystem::FaultySystem()
    : preloadBefore(qgetenv("LD_PRELOAD"))
{
    qputenv("LD_PRELOAD", WAVEFORM_FAULTY_IO);
    // The sanitizer's library wants to be the first; for what is replaced here it need not be.
    const QByteArray options = qgetenv("ASAN_OPTIONS");
    if (!options.contains("verify_asan_link_order")) {
        qputenv("ASAN_OPTIONS", options + ":verify_asan_link_order=0");
    }
}

FaultySystem::FaultySystem(const char* call, int nth, int error, const char* path)
    : FaultySystem()
{
    qputenv("FAULTY_CALL", call);
    qputenv("FAULTY_NTH", QByteArray::number(nth));
    qputenv("FAULTY_ERRNO", QByteArray::number(error));
    qputenv("FAULTY_PATH", path);
}

FaultySystem::~FaultySystem()
{
    for (const char* variable :
         {"FAULTY_CALL", "FAULTY_NTH", "FAULTY_ERRNO", "FAULTY_PATH", "FAULTY_CLOCK"}) {
        qunsetenv(variable);
    }
    if (preloadBefore.isNull()) {
        qunsetenv("LD_PRELOAD");
    } else {
        qputenv("LD_PRELOAD", preloadBefore);
    }
}

FaultySystem FaultySystem::withJumpingClock()
{
    qputenv("FAULTY_CLOCK", "1");
    return {};
}

} // namespace testing_support

#include "tests/support/nthcall.h"

#include "tests/support/nthcallstate.h"

#include <QFile>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

namespace testing_support {

NthCall::NthCall(const QStringList& dirs)
    : dirs(dirs)
{
    const QByteArray path = QFile::encodeName(place.filePath("state"));
    const int file = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (::ftruncate(file, sizeof(NthCallState)) != 0) {
        qFatal("no room for the calls of a test");
    }
    void* memory =
        ::mmap(nullptr, sizeof(NthCallState), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ::close(file);
    if (memory == MAP_FAILED) {
        qFatal("no memory to share with the programs of a test");
    }
    state = static_cast<NthCallState*>(memory);
}

NthCall::~NthCall()
{
    ::munmap(state, sizeof(NthCallState));
}

QProcessEnvironment NthCall::start(int nth, const QString& how) const
{
    state->seen = 0;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LD_PRELOAD", WAVEFORM_NTH_CALL);
    environment.insert("NTH_CALL_DIRS", dirs.join(':'));
    environment.insert("NTH_CALL_STATE", place.filePath("state"));
    environment.insert("NTH_CALL", QString::number(nth));
    environment.insert("NTH_CALL_HOW", how);
    // The sanitizer's library wants to be the first; for what is replaced here it need not be.
    environment.insert("ASAN_OPTIONS",
                       environment.value("ASAN_OPTIONS") + ":verify_asan_link_order=0");
    return environment;
}

QStringList NthCall::calls() const
{
    QStringList calls;
    for (int i = 0; i < std::min<int>(state->seen, NthCallState::kMost); ++i) {
        calls << QString::fromLatin1(state->names[static_cast<std::size_t>(i)].data());
    }
    return calls;
}

} // namespace testing_support

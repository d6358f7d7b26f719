#include "tests/soak/processuse.h"

#include "tests/support/contents.h"

#include <QApplication>
#include <QDir>

#include <dirent.h>
#include <malloc.h>

#include <atomic>

// Qt's own table for tools that follow objects: exported, with a version in front, and declared in
// a private header.
extern Q_CORE_EXPORT quintptr qtHookData[]; // NOLINT(readability-identifier-naming)

using testing_support::contents;

namespace {

enum Hook
{
    Version = 0,
    AddObject = 3,
    RemoveObject = 4
};

constexpr quintptr kFirstVersionWithObjects = 1;

std::atomic<long> objectCount {0};

void added(QObject* /*object*/)
{
    ++objectCount;
}

void removed(QObject* /*object*/)
{
    --objectCount;
}

/// A number of /proc/self/status, such as "VmRSS".
long statusValue(const QByteArray& status, const QByteArray& name)
{
    const int at = status.indexOf('\n' + name + ':');
    if (at < 0) {
        return 0;
    }
    const int from = at + name.size() + 2;
    const QByteArray line = status.mid(from, status.indexOf('\n', from) - from);
    return line.simplified().split(' ').first().toLong();
}

/// Names in a directory of /proc, without the handle with which it is read.
int entriesOf(const char* directory, int own)
{
    DIR* entries = ::opendir(directory);
    if (entries == nullptr) {
        return 0;
    }
    int count = -own;
    while (const dirent* entry = ::readdir(entries)) {
        count += entry->d_name[0] != '.' ? 1 : 0;
    }
    ::closedir(entries);
    return count;
}

int childCount()
{
    int count = 0;
    const QStringList tasks = QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& task : tasks) {
        const QByteArray ids = contents("/proc/self/task/" + task + "/children").simplified();
        count += ids.isEmpty() ? 0 : ids.split(' ').size();
    }
    return count;
}

} // namespace

void countObjects()
{
    if (qtHookData[Version] >= kFirstVersionWithObjects) {
        qtHookData[AddObject] = reinterpret_cast<quintptr>(&added);
        qtHookData[RemoveObject] = reinterpret_cast<quintptr>(&removed);
    }
}

ProcessUse processUse()
{
    constexpr int kKilobyte = 1024;
    ProcessUse use;
    const QByteArray status = '\n' + contents("/proc/self/status");
    use.resident_KB = statusValue(status, "VmRSS");
    use.mostResident_KB = statusValue(status, "VmHWM");
    use.heap_KB = static_cast<long>(::mallinfo2().uordblks / kKilobyte);
    use.threads = static_cast<int>(statusValue(status, "Threads"));
    use.handles = entriesOf("/proc/self/fd", 1);
    use.children = childCount();
    use.windows = QApplication::topLevelWidgets().size();
    use.objects = objectCount;
    return use;
}

QString toText(const ProcessUse& use)
{
    return QString("resident %1 KB (most %2), heap %3 KB, handles %4, threads %5, children %6, "
                   "windows %7, objects %8")
        .arg(use.resident_KB)
        .arg(use.mostResident_KB)
        .arg(use.heap_KB)
        .arg(use.handles)
        .arg(use.threads)
        .arg(use.children)
        .arg(use.windows)
        .arg(use.objects);
}

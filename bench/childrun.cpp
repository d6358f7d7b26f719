#include "bench/childrun.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

namespace {

constexpr int kCannotStart = 127;

double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

[[noreturn]] void becomeProgram(const std::vector<char*>& words, const std::string& directory)
{
    const int nowhere = ::open("/dev/null", O_WRONLY);
    if (nowhere < 0 || ::dup2(nowhere, STDOUT_FILENO) < 0 || ::dup2(nowhere, STDERR_FILENO) < 0
        || ::chdir(directory.c_str()) != 0) {
        ::_exit(kCannotStart);
    }
    ::execvp(words.front(), words.data());
    ::_exit(kCannotStart);
}

} // namespace

ChildRun runChild(const std::vector<std::string>& words, const std::string& directory)
{
    std::vector<char*> pointers;
    for (const std::string& word : words) {
        pointers.push_back(const_cast<char*>(word.c_str()));
    }
    pointers.push_back(nullptr);

    const auto start = std::chrono::steady_clock::now();
    // vfork() keeps what forking costs out of the figures, however large this program is.
    const pid_t child = ::vfork();
    if (child == 0) {
        becomeProgram(pointers, directory);
    }
    ChildRun run;
    int status = 0;
    rusage usage {};
    if (child < 0 || ::wait4(child, &status, 0, &usage) != child) {
        return run;
    }
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    run.code = WIFEXITED(status) && WEXITSTATUS(status) != kCannotStart ? WEXITSTATUS(status) : -1;
    run.wall_s = wall.count();
    run.cpu_s = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    run.peak_KB = usage.ru_maxrss;
    return run;
}

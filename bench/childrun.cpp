#include "bench/childrun.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

namespace {

double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

/// What is done before a program starts in a directory, its output thrown away.
class Surroundings
{
public:
    explicit Surroundings(const std::string& directory)
    {
        good = ::posix_spawn_file_actions_init(&actions) == 0
            && ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0)
                == 0
            && ::posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO) == 0
            && ::posix_spawn_file_actions_addchdir_np(&actions, directory.c_str()) == 0;
    }

    ~Surroundings() { ::posix_spawn_file_actions_destroy(&actions); }

    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

    /// Whether the program runs.
    [[nodiscard]] bool start(const std::vector<char*>& words, pid_t& child) const
    {
        return good
            && ::posix_spawnp(&child, words.front(), &actions, nullptr, words.data(), environ) == 0;
    }

private:
    posix_spawn_file_actions_t actions {};
    bool good = false;
};

} // namespace

ChildRun runChild(const std::vector<std::string>& words, const std::string& directory)
{
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (const std::string& word : words) {
        pointers.push_back(const_cast<char*>(word.c_str()));
    }
    pointers.push_back(nullptr);
    const Surroundings surroundings(directory);

    const auto start = std::chrono::steady_clock::now();
    // A spawned program shares this one's memory till it starts, which keeps what forking costs out
    // of the figures, however large this program is.
    pid_t child = -1;
    const bool started = surroundings.start(pointers, child);
    ChildRun run;
    int status = 0;
    rusage usage {};
    if (!started || ::wait4(child, &status, 0, &usage) != child) {
        return run;
    }
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    run.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.wall_s = wall.count();
    run.cpu_s = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    run.peak_KB = usage.ru_maxrss;
    return run;
}

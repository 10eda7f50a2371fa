// Runs a program and reports its cost. This program is so small that its own memory does not raise
// the peak of its child.
//
//   measure REPORT PROGRAM ARGUMENT...
//
// Writes one line to the file REPORT: exit status, processor time (user and system) and wall time
// in microseconds, peak memory in KiB. Standard output of the program goes to /dev/null.

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

namespace {

long long microseconds(const timeval& time) {
    return 1'000'000LL * time.tv_sec + time.tv_usec;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount < 3) return 2;
    posix_spawn_file_actions_t actions;
    if (posix_spawn_file_actions_init(&actions) != 0 ||
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0) != 0)
        return 2;
    const auto begin = std::chrono::steady_clock::now();
    pid_t child = 0;
    if (posix_spawnp(&child, arguments[2], &actions, nullptr, arguments + 2, environ) != 0)
        return 2;
    int status = 0;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) != child) return 2;
    const auto wall = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - begin);
    std::FILE* const report = std::fopen(arguments[1], "w");
    if (report == nullptr) return 2;
    std::fprintf(report, "%d %lld %lld %ld\n", status,
                 microseconds(usage.ru_utime) + microseconds(usage.ru_stime),
                 static_cast<long long>(wall.count()), usage.ru_maxrss);
    return std::fclose(report) == 0 ? 0 : 2;
}

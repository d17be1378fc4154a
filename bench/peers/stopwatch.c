/* Runs one command and prints what it cost: wall time in nanoseconds, processor time in
   microseconds, peak memory in KiB and the exit status. The command's output is thrown away.

   A process of its own, and a small one: the peak memory that the kernel reports for a child
   begins with what its parent had resident when it started the child.
   Usage: stopwatch COMMAND [ARGUMENT...] */
#include <fcntl.h>
#include <spawn.h>
#include <stdio.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

static long long nanoseconds_now(void) {
    struct timespec now;

    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000000000LL + now.tv_nsec;
}

static long long microseconds(struct timeval time) {
    return time.tv_sec * 1000000LL + time.tv_usec;
}

int main(int argc, char** argv) {
    posix_spawn_file_actions_t actions;
    struct rusage usage;
    int status;
    pid_t child;

    if (argc < 2)
        return 1;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);

    long long start = nanoseconds_now();
    if (posix_spawn(&child, argv[1], &actions, NULL, argv + 1, environ) != 0)
        return 1;
    if (wait4(child, &status, 0, &usage) != child)
        return 1;
    long long elapsed = nanoseconds_now() - start;

    printf("%lld %lld %ld %d\n", elapsed,
           microseconds(usage.ru_utime) + microseconds(usage.ru_stime), usage.ru_maxrss,
           WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
    return 0;
}

// Runs a command many times and prints the median of the nanoseconds that a run took, from before
// its process is made until it has ended, and the page faults of the last run.
//
// Usage: time-runs RUNS COMMAND [ARGUMENT]...

#define _GNU_SOURCE // NOLINT(*-reserved-identifier): the C library's name

#include <fcntl.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

static long long Now(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000000000LL + now.tv_nsec;
}

static long PageFaults(void)
{
    struct rusage usage;
    getrusage(RUSAGE_CHILDREN, &usage);
    return usage.ru_minflt;
}

static int Ascending(const void* one, const void* other)
{
    const long long a = *(const long long*)one;
    const long long b = *(const long long*)other;
    return (a > b) - (a < b);
}

int main(int argc, char** argv)
{
    const int runs = argc > 2 ? atoi(argv[1]) : 0;
    if (runs < 1) {
        fprintf(stderr, "usage: time-runs RUNS COMMAND [ARGUMENT]...\n");
        return 64;
    }
    long long* const times = calloc((size_t)runs, sizeof *times);
    if (times == NULL) {
        perror("time-runs");
        return 71;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);

    long faults = 0;
    for (int run = 0; run < runs; ++run) {
        pid_t child;
        int status;
        const long faultsBefore = PageFaults();
        const long long start = Now();
        if (posix_spawn(&child, argv[2], &actions, NULL, argv + 2, environ) != 0 ||
            waitpid(child, &status, 0) != child || status != 0) {
            fprintf(stderr, "time-runs: %s failed\n", argv[2]);
            free(times);
            return 1;
        }
        times[run] = Now() - start;
        faults = PageFaults() - faultsBefore;
    }
    qsort(times, (size_t)runs, sizeof *times, Ascending);
    printf("%lld %ld\n", times[runs / 2], faults);
    return 0;
}

// Runs a command and writes its peak memory in KB, the children's that it waited for included, as
// the last line on standard error. What this program takes itself is the least that it can tell.
//
// Usage: peak COMMAND [ARGUMENT]...

#include <stdio.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

int main(int argc, char** argv)
{
    if (argc < 2) {
        fprintf(stderr, "usage: peak COMMAND [ARGUMENT]...\n");
        return 64;
    }
    const pid_t child = fork();
    if (child == 0) {
        execvp(argv[1], argv + 1);
        perror(argv[1]);
        _exit(127);
    }
    int status = 1;
    struct rusage usage;
    if (child < 0 || wait4(child, &status, 0, &usage) != child) {
        perror("peak");
        return 1;
    }
    fprintf(stderr, "%ld\n", usage.ru_maxrss);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

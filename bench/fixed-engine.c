// An engine that adds little to the time of an exchange: it answers every request with the same
// reply, which it reads from a file when it starts. Prints one line when it listens.
//
// Usage: fixed-engine REPLY-FILE

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

static char* reply;
static size_t replySize;

static void Fail(const char* what)
{
    perror(what);
    exit(1);
}

static void ReadReply(const char* path)
{
    FILE* file = fopen(path, "rb");
    if (file == NULL || fseek(file, 0, SEEK_END) != 0) {
        Fail(path);
    }
    replySize = (size_t)ftell(file);
    rewind(file);
    reply = malloc(replySize + 1);
    if (reply == NULL || fread(reply, 1, replySize, file) != replySize) {
        Fail(path);
    }
    fclose(file);
}

static int Listen(void)
{
    const int on = 1;
    struct sockaddr_in address = {.sin_family = AF_INET, .sin_port = htons(7777)};
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    if (listener < 0 || setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0 ||
        bind(listener, (struct sockaddr*)&address, sizeof address) != 0 ||
        listen(listener, SOMAXCONN) != 0) {
        Fail("listen");
    }
    return listener;
}

// The first closing brace ends a request: it is a flat object without braces in its strings.
static int AwaitRequest(int client)
{
    char request[512];
    ssize_t size;
    while ((size = read(client, request, sizeof request)) > 0) {
        if (memchr(request, '}', (size_t)size) != NULL) {
            return 1;
        }
    }
    return 0;
}

static void SendReply(int client)
{
    size_t sent = 0;
    while (sent < replySize) {
        const ssize_t size = write(client, reply + sent, replySize - sent);
        if (size <= 0) {
            return;
        }
        sent += (size_t)size;
    }
}

int main(int argc, char** argv)
{
    if (argc != 2) {
        fprintf(stderr, "usage: fixed-engine REPLY-FILE\n");
        return 64;
    }
    ReadReply(argv[1]);
    signal(SIGPIPE, SIG_IGN);
    const int listener = Listen();
    puts("listening");
    fflush(stdout);
    for (;;) {
        const int client = accept(listener, NULL, NULL);
        if (client < 0) {
            Fail("accept");
        }
        if (AwaitRequest(client)) {
            SendReply(client);
        }
        close(client);
    }
}

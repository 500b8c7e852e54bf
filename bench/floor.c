// A minimal client of the engine: connects, sends the list request, and writes the reply as it
// comes until the engine closes. No client can be faster.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <stdio.h>
#include <sys/socket.h>
#include <unistd.h>

static int WriteAll(int descriptor, const char* data, size_t size)
{
    while (size > 0) {
        const ssize_t written = write(descriptor, data, size);
        if (written <= 0) {
            return -1;
        }
        data += written;
        size -= (size_t)written;
    }
    return 0;
}

static int Fail(const char* what)
{
    perror(what);
    return 1;
}

int main(void)
{
    static const char request[] = "{\"command\":\"list\"}";
    static char block[8192];
    struct sockaddr_in engine = {.sin_family = AF_INET, .sin_port = htons(7777)};
    engine.sin_addr.s_addr = htonl(INADDR_LOOPBACK);

    const int descriptor = socket(AF_INET, SOCK_STREAM, 0);
    if (descriptor < 0 || connect(descriptor, (struct sockaddr*)&engine, sizeof engine) != 0) {
        return Fail("connect");
    }
    if (WriteAll(descriptor, request, sizeof request - 1) != 0) {
        return Fail("send");
    }
    ssize_t size;
    while ((size = read(descriptor, block, sizeof block)) > 0) {
        if (WriteAll(STDOUT_FILENO, block, (size_t)size) != 0) {
            return Fail("write");
        }
    }
    return size == 0 ? 0 : Fail("receive");
}

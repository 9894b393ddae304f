/* The same rounds with nothing else: what the system itself takes for them. */
#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

enum { CHUNK = 8192, WORD = 13, ELEMENTS = 100000, LARGE = 100000000, ROUNDS = 2000 };

static void check(int done) {
    if (!done) {
        perror("limit");
        exit(1);
    }
}

static void out(int s, const void* data, size_t size) {
    check(send(s, data, size, 0) == (ssize_t)size);
}

static void in(int s, char* data, size_t size) {
    while (size > 0) {
        ssize_t got = recv(s, data, size, 0);
        check(got > 0);
        data += got;
        size -= got;
    }
}

static void send_count(int s, unsigned count) {
    char text[12];
    char length = sprintf(text, "%u", count);
    out(s, &length, 1);
    out(s, text, length);
}

static unsigned receive_count(int s) {
    char length, text[128];
    in(s, &length, 1);
    in(s, text, length);
    text[(int)length] = 0;
    return strtoul(text, NULL, 10);
}

static void send_string(int s, const char* data, unsigned size) {
    char word[WORD];
    send_count(s, size);
    for (unsigned at = 0; at < size; at += CHUNK) {
        out(s, data + at, size - at < CHUNK ? size - at : CHUNK);
        in(s, word, WORD);
        check(memcmp(word, "ACK__________", WORD) == 0);
    }
}

static char* receive_string(int s, unsigned* size) {
    *size = receive_count(s);
    char* data = malloc(*size + 1u);
    for (unsigned at = 0; at < *size; at += CHUNK) {
        in(s, data + at, *size - at < CHUNK ? *size - at : CHUNK);
        out(s, "ACK__________", WORD);
    }
    data[*size] = 0;
    return data;
}

static int new_socket(void) {
    int s = socket(AF_INET, SOCK_STREAM, 0), size = CHUNK;
    check(s >= 0);
    check(setsockopt(s, SOL_SOCKET, SO_SNDBUF, &size, sizeof size) == 0);
    check(setsockopt(s, SOL_SOCKET, SO_RCVBUF, &size, sizeof size) == 0);
    return s;
}

static int nodelay(int s) {
    int one = 1;
    check(s >= 0 && setsockopt(s, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one) == 0);
    return s;
}

static int connect_to(const struct sockaddr_in* address) {
    int s = new_socket();
    check(connect(s, (const struct sockaddr*)address, sizeof *address) == 0);
    return nodelay(s);
}

static void listens(const char* workload, int listener) {
    unsigned size, total = 0;
    if (strcmp(workload, "rounds") == 0) {
        for (int i = 0; i < ROUNDS; i++) {
            int s = nodelay(accept(listener, NULL, NULL));
            char answer[64], *request = receive_string(s, &size);
            send_string(s, answer, snprintf(answer, sizeof answer, "answer to %s", request));
            close(s);
            free(request);
            total += size;
        }
        printf("%u\n", total);
        return;
    }
    int s = nodelay(accept(listener, NULL, NULL));
    if (strcmp(workload, "sendlist") == 0) {
        check(strcmp(receive_string(s, &size), "@list") == 0);
        unsigned count = receive_count(s);
        char** elements = malloc(count * sizeof *elements);
        for (unsigned i = 0; i < count; i++) elements[i] = receive_string(s, &size);
        printf("%u %s\n", count, elements[77777]);
    } else {
        char* data = receive_string(s, &size);
        printf("%u %.10s\n", size, data + 77777777);
    }
    close(s);
}

static void calls(const char* workload, const struct sockaddr_in* address) {
    char text[64];
    unsigned size;
    if (strcmp(workload, "rounds") == 0) {
        for (int i = 0; i < ROUNDS; i++) {
            int s = connect_to(address);
            send_string(s, text, snprintf(text, sizeof text, "request %d", i));
            char* answer = receive_string(s, &size);
            snprintf(text, sizeof text, "answer to request %d", i);
            check(strcmp(answer, text) == 0);
            free(answer);
            close(s);
        }
        return;
    }
    int s = connect_to(address);
    if (strcmp(workload, "sendlist") == 0) {
        send_string(s, "@list", 5);
        send_count(s, ELEMENTS);
        for (int i = 0; i < ELEMENTS; i++)
            send_string(s, text, snprintf(text, sizeof text, "element %d", i));
    } else {
        char* data = malloc(LARGE);
        for (int at = 0; at < LARGE; at += 10) memcpy(data + at, "0123456789", 10);
        send_string(s, data, LARGE);
    }
    close(s);
}

int main(int argc, char** argv) {
    struct sockaddr_in address = {.sin_family = AF_INET};
    int one = 1;
    check(argc == 4);
    address.sin_port = htons(atoi(argv[3]));
    if (strcmp(argv[1], "listen") == 0) {
        int listener = new_socket();
        check(setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one) == 0);
        check(bind(listener, (struct sockaddr*)&address, sizeof address) == 0);
        check(listen(listener, 5) == 0);
        listens(argv[2], listener);
    } else {
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        calls(argv[2], &address);
    }
    return 0;
}

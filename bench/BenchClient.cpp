#include "BenchClient.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr size_t kReplyRoom = 64 << 20;

[[noreturn]] void fail(const char* what) {
    fprintf(stderr, "bench: %s\n", what);
    exit(1);
}

} // namespace

BenchClient::BenchClient(uint16_t port) : fSocket(socket(AF_INET, SOCK_STREAM, 0)), fReply(kReplyRoom) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(fSocket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
        fail("cannot connect");
}

BenchClient::~BenchClient() {
    close(fSocket);
}

std::string BenchClient::Request(const std::string& method, const std::string& params) {
    const std::string body = "<methodCall><methodName>" + method + "</methodName>" + params + "</methodCall>";
    return "POST / HTTP/1.1\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string_view BenchClient::RoundTrip(std::string_view request) {
    if (send(fSocket, request.data(), request.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(request.size()))
        fail("cannot send");
    size_t got = 0;
    size_t wanted = 0;
    while (wanted == 0 || got < wanted) {
        const ssize_t more = recv(fSocket, fReply.data() + got, fReply.size() - got, 0);
        if (more <= 0)
            fail("the reply broke off");
        got += static_cast<size_t>(more);
        if (wanted == 0)
            wanted = whole_length(got);
    }
    return {fReply.data(), wanted};
}

/// 0 while that isn't known.
size_t BenchClient::whole_length(size_t got) const {
    static constexpr char kName[] = "Content-Length: ";
    const char* end = static_cast<const char*>(memmem(fReply.data(), got, "\r\n\r\n", 4));
    const char* length = static_cast<const char*>(memmem(fReply.data(), got, kName, sizeof kName - 1));
    if (!end || !length)
        return 0;
    return static_cast<size_t>(end + 4 - fReply.data()) + strtoul(length + sizeof kName - 1, nullptr, 10);
}

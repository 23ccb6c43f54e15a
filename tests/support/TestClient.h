#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <strings.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

/// A blocking HTTP client for tests, written against the platform alone so that it shares no fault with the
/// server. Every wait ends after the time-out.
class TestClient {
  public:
    struct Reply {
        std::string head; ///< Status line and headers, with the blank line.
        std::string body;
        std::string Bytes() const { return head + body; }
    };

    explicit TestClient(uint16_t port, int timeoutMs = 30000) : TestClient(timeoutMs) { Connect(port); }
    /// Takes its descriptor and leaves the connection for `Connect`.
    explicit TestClient(int timeoutMs) : fDescriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const int on = 1;
        setsockopt(fDescriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        const timeval timeout = {timeoutMs / 1000, (timeoutMs % 1000) * 1000};
        setsockopt(fDescriptor, SOL_SOCKET, SO_SNDTIMEO, &timeout, sizeof timeout); // Holds for connect, too.
        SetReceiveTimeout(timeoutMs);
    }
    ~TestClient() { Close(); }
    TestClient(const TestClient&) = delete;
    TestClient& operator=(const TestClient&) = delete;

    bool Connect(uint16_t port, const char* address = "127.0.0.1") {
        sockaddr_in peer = {};
        peer.sin_family = AF_INET;
        peer.sin_port = htons(port);
        inet_pton(AF_INET, address, &peer.sin_addr);
        fConnected = connect(fDescriptor, reinterpret_cast<const sockaddr*>(&peer), sizeof peer) == 0;
        return fConnected;
    }
    bool IsConnected() const { return fConnected; }
    int Descriptor() const { return fDescriptor; }

    void SetReceiveTimeout(int timeoutMs) {
        const timeval timeout = {timeoutMs / 1000, (timeoutMs % 1000) * 1000};
        setsockopt(fDescriptor, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
    }

    bool Send(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t sent = send(fDescriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent <= 0)
                return false;
            bytes.remove_prefix(static_cast<size_t>(sent));
        }
        return true;
    }

    void Close() {
        if (fDescriptor >= 0)
            close(fDescriptor);
        fDescriptor = -1;
    }

    /// Reads one reply by its Content-Length; nothing if the time-out or the end of the stream comes first.
    std::optional<Reply> ReadReply() {
        size_t headEnd;
        while ((headEnd = fReceived.find("\r\n\r\n")) == std::string::npos)
            if (!receive_more())
                return std::nullopt;
        Reply reply;
        reply.head = fReceived.substr(0, headEnd + 4);
        const size_t size = reply.head.size() + content_length(reply.head);
        while (fReceived.size() < size)
            if (!receive_more())
                return std::nullopt;
        reply.body = fReceived.substr(reply.head.size(), size - reply.head.size());
        fReceived.erase(0, size);
        return reply;
    }

    std::optional<Reply> Post(std::string_view body, std::string_view url = "/") {
        Send(Request(body, url));
        return ReadReply();
    }
    /// Calls a method without parameters, or with the "params" element given.
    std::optional<Reply> Call(std::string_view method, std::string_view params = "") {
        return Post(MethodCall(method, params));
    }

    static std::string Request(std::string_view body, std::string_view url = "/") {
        std::string request = "POST ";
        request.append(url).append(" HTTP/1.1\r\nContent-Length: ").append(std::to_string(body.size()));
        return request.append("\r\n\r\n").append(body);
    }
    static std::string MethodCall(std::string_view method, std::string_view params = "") {
        std::string call = "<methodCall><methodName>";
        return call.append(method).append("</methodName>").append(params).append("</methodCall>");
    }

    /// True if the peer closes the connection before anything else arrives.
    bool WaitForClose() {
        char byte;
        return fReceived.empty() && recv(fDescriptor, &byte, 1, 0) == 0;
    }

  private:
    bool receive_more() {
        char bytes[65536];
        const ssize_t got = recv(fDescriptor, bytes, sizeof bytes, 0);
        if (got <= 0)
            return false;
        fReceived.append(bytes, static_cast<size_t>(got));
        return true;
    }

    static size_t content_length(const std::string& head) {
        const char* found = strcasestr(head.c_str(), "\r\nContent-Length:");
        return found == nullptr ? 0 : strtoul(found + sizeof "\r\nContent-Length:" - 1, nullptr, 10);
    }

    int fDescriptor;
    bool fConnected = false;
    std::string fReceived;
};

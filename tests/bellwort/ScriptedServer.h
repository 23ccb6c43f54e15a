#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <strings.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// An HTTP server that answers each request with the bytes that a test says, right or wrong.
class ScriptedServer {
  public:
    enum End { kKeepOpen, kClose, kReset };
    struct Answer {
        std::string bytes;
        End end = kKeepOpen;
        int pieces = 1; ///< With a pause between them.
    };
    using Script = std::function<Answer(const std::string& request)>;
    static constexpr auto kPause = std::chrono::milliseconds(100);

    explicit ScriptedServer(Script script)
        : fScript(std::move(script)), fListener(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        bind(fListener, reinterpret_cast<sockaddr*>(&address), size);
        getsockname(fListener, reinterpret_cast<sockaddr*>(&address), &size);
        listen(fListener, 16);
        fPort = ntohs(address.sin_port);
        fThread = std::jthread([this] { accept_all(); });
    }
    /// Clients have gone by now, or are cut off.
    ~ScriptedServer() {
        shutdown(fListener, SHUT_RDWR);
        fThread.join();
        for (const int connection : fOpen)
            shutdown(connection, SHUT_RDWR);
        fConnections.clear();
        for (const int connection : fOpen)
            close(connection);
        close(fListener);
    }

    std::string URL(const std::string& path = "/") const {
        return "http://127.0.0.1:" + std::to_string(fPort) + path;
    }
    int Port() const { return fPort; }
    int Connections() const { return fCount; }
    /// The request that came last.
    std::string Request() {
        const std::lock_guard lock(fMutex);
        return fRequest;
    }

  private:
    void accept_all() {
        for (int connection; (connection = accept(fListener, nullptr, nullptr)) >= 0;) {
            ++fCount;
            fOpen.push_back(connection);
            fConnections.emplace_back([this, connection] { serve(connection); });
        }
    }

    void serve(int connection) {
        for (std::string request; !(request = read_request(connection)).empty();) {
            {
                const std::lock_guard lock(fMutex);
                fRequest = request;
            }
            const Answer answer = fScript(request);
            const size_t piece = (answer.bytes.size() + static_cast<size_t>(answer.pieces) - 1) /
                                 static_cast<size_t>(answer.pieces);
            for (size_t at = 0; at < answer.bytes.size(); at += piece) {
                if (at > 0)
                    std::this_thread::sleep_for(kPause);
                const std::string part = answer.bytes.substr(at, piece);
                if (send(connection, part.data(), part.size(), MSG_NOSIGNAL) < 0)
                    return;
            }
            if (answer.end == kClose)
                shutdown(connection, SHUT_RDWR);
            if (answer.end == kReset) {
                const linger none = {1, 0};
                setsockopt(connection, SOL_SOCKET, SO_LINGER, &none, sizeof none);
                // Connecting to nowhere ends the connection by a reset, and leaves the descriptor.
                const sockaddr nowhere = {.sa_family = AF_UNSPEC, .sa_data = {}};
                connect(connection, &nowhere, sizeof nowhere);
            }
        }
    }

    /// Header and body; empty at the end of the connection.
    static std::string read_request(int connection) {
        std::string text;
        size_t size = std::string::npos;
        while (text.size() < size) {
            char bytes[65536];
            const ssize_t got = recv(connection, bytes, sizeof bytes, 0);
            if (got <= 0)
                return "";
            text.append(bytes, static_cast<size_t>(got));
            const size_t headEnd = text.find("\r\n\r\n");
            if (headEnd == std::string::npos)
                continue;
            const char* length = strcasestr(text.c_str(), "\r\nContent-Length:");
            size = headEnd + 4 + (length ? strtoul(length + 17, nullptr, 10) : 0);
        }
        return text;
    }

    Script fScript;
    int fListener;
    int fPort = 0;
    std::atomic<int> fCount = 0;
    std::mutex fMutex;
    std::string fRequest;
    std::vector<int> fOpen;
    std::list<std::jthread> fConnections;
    std::jthread fThread;
};

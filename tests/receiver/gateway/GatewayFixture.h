#pragma once

#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include <gmock/gmock.h>

#include "BuiltinHost.h"
#include "Gateway.h"
#include "Interruption.h"
#include "TestClient.h"

/// A gateway within the test, and clients for it.
class GatewayTest : public testing::Test {
  protected:
    using Clock = std::chrono::steady_clock;
    static constexpr auto kBound = std::chrono::seconds(20);

    ~GatewayTest() override { End(); }

    void Start(int serverPort, std::vector<std::string> allowedHosts = {}) {
        receiver::Gateway::Settings settings;
        settings.stream.server = {"127.0.0.1", static_cast<uint16_t>(serverPort)};
        settings.stream.withSound = true;
        settings.stream.limits.seconds = callSeconds;
        settings.listen.port = 0;
        settings.allowedHosts = std::move(allowedHosts);
        gateway = std::make_unique<receiver::Gateway>(settings, interruption);
        std::string reason;
        ASSERT_TRUE(gateway->Open(reason)) << reason;
        thread = std::thread([this] {
            std::string why;
            hasEndedWell = gateway->Run(why);
        });
    }
    void End() {
        interruption.Raise();
        if (thread.joinable())
            thread.join();
    }

    uint16_t Port() const { return gateway->Place().port; }

    /// Asks without waiting for the answer.
    void Ask(TestClient& client, const std::string& path, const std::string& headers = "") const {
        client.Send("GET " + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\n" + headers + "\r\n");
    }
    /// The head and the body; empty ones without an answer.
    TestClient::Reply Get(const std::string& path) const {
        TestClient client(Port());
        Ask(client, path);
        return client.ReadReply().value_or(TestClient::Reply());
    }
    TestClient::Reply Post(const std::string& body, const std::string& headers) const {
        TestClient client(Port());
        client.Send("POST /source HTTP/1.1\r\nHost: localhost\r\nContent-Length: " +
                    std::to_string(body.size()) + "\r\n" + headers + "\r\n" + body);
        return client.ReadReply().value_or(TestClient::Reply());
    }
    static int Status(const TestClient::Reply& reply) {
        return reply.head.size() > 12 ? std::stoi(reply.head.substr(9, 3)) : 0;
    }

    /// Asks again and again until it holds, or the bound has passed.
    static bool Eventually(const std::function<bool()>& holds) {
        for (const auto end = Clock::now() + kBound; Clock::now() < end;) {
            if (holds())
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return false;
    }

    double callSeconds = 1; ///< That a call of the server may take.
    host::BuiltinHost host;
    const host::HostScope scope{host};
    receiver::Interruption interruption;
    std::unique_ptr<receiver::Gateway> gateway;
    std::thread thread;
    bool hasEndedWell = false;
};

/// Reads a reply without an end piece by piece.
class LiveReader {
  public:
    explicit LiveReader(TestClient& client) : fClient(client) {}

    /// So many bytes; fewer when nothing more comes.
    std::string Take(size_t count) {
        while (fPending.size() < count && receive())
            continue;
        std::string taken = fPending.substr(0, count);
        fPending.erase(0, taken.size());
        return taken;
    }
    /// What comes before the mark, which is dropped; empty when it doesn't come.
    std::string TakeUntil(const std::string& mark) {
        size_t place;
        while ((place = fPending.find(mark)) == std::string::npos)
            if (!receive())
                return {};
        std::string taken = fPending.substr(0, place);
        fPending.erase(0, place + mark.size());
        return taken;
    }
    /// The next picture of a multipart stream.
    std::string TakePart() {
        const std::string head = TakeUntil("\r\n\r\n");
        const size_t length = head.find("Content-Length: ");
        return length == std::string::npos ? "" : Take(std::stoul(head.substr(length + 16)));
    }

  private:
    bool receive() {
        char bytes[65536];
        const ssize_t got = recv(fClient.Descriptor(), bytes, sizeof bytes, 0);
        if (got > 0)
            fPending.append(bytes, static_cast<size_t>(got));
        return got > 0;
    }

    TestClient& fClient;
    std::string fPending;
};

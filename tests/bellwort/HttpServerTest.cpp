#include "cHttpServer.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <string>
#include <vector>

#include "TestClient.h"
#include "cHttpHandler.h"

namespace {

using std::chrono::steady_clock;

constexpr int kReadSize = 4095;

/// Answers a POST with its URL, query and body. "/flood" sends more than any socket's buffers hold; its query
/// is the time-out of that in milliseconds.
class EchoHandler : public cHttpHandler {
  public:
    bool CanHandle(int method, const zString&, const zString&, const zString&, const char*) override {
        return method == kMethodPost;
    }
    int Handle(zSocket* socket, int, const zString& url, const zString&, const zString& query,
               const char* body) override {
        ++fCalls;
        fCalls.notify_all();
        if (url == "/flood")
            return socket->Send(std::string(64 << 20, 'x').data(), 64 << 20, nullptr, query.AsInt32());
        const std::string text = std::string(url) + "|" + std::string(query) + "|" + body;
        SendHeaders(socket, static_cast<int>(text.size()), "text/plain");
        return SendString(socket, text.c_str());
    }
    void WaitForCall() { fCalls.wait(0); }
    int Calls() const { return fCalls; }

  private:
    std::atomic<int> fCalls = 0;
};

class HttpServerTest : public testing::Test {
  protected:
    HttpServerTest() {
        fServer->InstallHandler(*fHandler);
        EXPECT_EQ(fServer->WaitUntilListening(), 0);
    }
    ~HttpServerTest() override {
        fServer.reset();
        fHandler->Release();
    }
    uint16_t Port() const { return fServer->Port(); }

    EchoHandler* fHandler = new EchoHandler;
    std::unique_ptr<cHttpServer> fServer = std::make_unique<cHttpServer>(0, kReadSize);
};

std::string echo_reply(const std::string& text) {
    return "HTTP/1.1 200 OK\r\nConnection: Keep-Alive\r\nServer: quillon_httpd/0.1.0\r\n"
           "Content-Type: text/plain\r\nContent-Length: " +
           std::to_string(text.size()) + "\r\n\r\n" + text;
}

std::string bytes_of(const std::optional<TestClient::Reply>& reply) {
    return reply ? reply->Bytes() : "no reply";
}

/// A limit of this process, put back at the end.
class ScopedFileLimit {
  public:
    explicit ScopedFileLimit(int limit) {
        getrlimit(RLIMIT_NOFILE, &fOld);
        const rlimit changed = {std::min(static_cast<rlim_t>(limit), fOld.rlim_max), fOld.rlim_max};
        setrlimit(RLIMIT_NOFILE, &changed);
    }
    ~ScopedFileLimit() { setrlimit(RLIMIT_NOFILE, &fOld); }

  private:
    rlimit fOld = {};
};

TEST_F(HttpServerTest, AnswersRequestAfterRequestOnOneConnection) {
    TestClient client(Port());
    EXPECT_EQ(bytes_of(client.Post("one", "/x?q")), echo_reply("/x|q|one"));
    for (const char byte : TestClient::Request("byte by byte"))
        client.Send({&byte, 1});
    EXPECT_EQ(bytes_of(client.ReadReply()), echo_reply("/||byte by byte"));
    const std::string large(1 << 20, 'x');
    EXPECT_EQ(bytes_of(client.Post(large)), echo_reply("/||" + large));
    client.Send("POST /close HTTP/1.0\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(bytes_of(client.ReadReply()), echo_reply("/close||"));
    EXPECT_EQ(bytes_of(client.Post("still open")), echo_reply("/||still open"));
}

TEST_F(HttpServerTest, DropsWhatFollowsARequestInTheSameRead) {
    TestClient client(Port());
    client.Send(TestClient::Request("first") + TestClient::Request("lost"));
    EXPECT_EQ(bytes_of(client.ReadReply()), echo_reply("/||first" + TestClient::Request("lost")));
    EXPECT_EQ(bytes_of(client.Post("third")), echo_reply("/||third"));
    EXPECT_EQ(fHandler->Calls(), 2);
}

TEST_F(HttpServerTest, ClientThatNeverReadsHoldsOthersUpForItsTimeOutOnly) {
    TestClient client(Port());
    client.Send(TestClient::Request("", "/flood?1000"));
    fHandler->WaitForCall();
    TestClient other(Port());
    EXPECT_EQ(bytes_of(other.Post("later")), echo_reply("/||later"));
}

TEST_F(HttpServerTest, FullDescriptorTableNeitherSpinsNorEndsService) {
    TestClient served(Port());
    EXPECT_TRUE(served.Post("before"));
    TestClient waiting(300);
    {
        const int lowestFree = dup(STDOUT_FILENO);
        close(lowestFree);
        const ScopedFileLimit limit(lowestFree);
        ASSERT_TRUE(waiting.Connect(Port()));
        waiting.Send(TestClient::Request("queued"));
        EXPECT_EQ(bytes_of(served.Post("meanwhile")), echo_reply("/||meanwhile"));
        const clock_t used = clock();
        EXPECT_FALSE(waiting.ReadReply()) << "there is no descriptor for it";
        EXPECT_LT(clock() - used, CLOCKS_PER_SEC / 10) << "a loop that spins uses all of the 300 ms";
    }
    waiting.SetReceiveTimeout(5000);
    EXPECT_EQ(bytes_of(waiting.ReadReply()), echo_reply("/||queued"));
}

TEST_F(HttpServerTest, ClosesConnectionsWhoseDescriptorFitsNoSet) {
    TestClient served(Port());
    EXPECT_TRUE(served.Post("before"));
    const ScopedFileLimit limit(4096);
    std::vector<int> fillers;
    while (fillers.empty() || (fillers.back() >= 0 && fillers.back() < FD_SETSIZE))
        fillers.push_back(dup(STDOUT_FILENO));
    ASSERT_GE(fillers.back(), FD_SETSIZE) << "this machine allows too few open files";
    for (int i = 0; i < 3; ++i) {
        TestClient excess(Port());
        EXPECT_TRUE(excess.IsConnected());
        EXPECT_TRUE(excess.WaitForClose());
        EXPECT_EQ(bytes_of(served.Post("during")), echo_reply("/||during"));
    }
    for (const int filler : fillers)
        close(filler);
    TestClient after(Port());
    EXPECT_EQ(bytes_of(after.Post("after")), echo_reply("/||after"));
}

TEST(HttpServerStartTest, StopBeforeTheThreadIsUpIsNotLost) {
    for (int i = 0; i < 50; ++i) {
        const auto start = steady_clock::now();
        {
            cHttpServer server(0, kReadSize);
            server.Stop();
        }
        EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(5));
    }
}

} // namespace

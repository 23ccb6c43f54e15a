#include "cHttpServer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <ctime>
#include <string>
#include <vector>

#include "TestClient.h"
#include "cHttpHandler.h"

namespace {

using std::chrono::steady_clock;

constexpr int kReadSize = 4095;

/// Answers a POST with its URL, query and body, and "/flood" with more than any socket's buffers hold.
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
            return flood(socket);
        if (url == "/missing")
            return Send404(socket);
        const std::string text = std::string(url) + "|" + std::string(query) + "|" + body;
        SendHeaders(socket, static_cast<int>(text.size()), "text/plain");
        return SendString(socket, text.c_str());
    }
    void WaitForCall() { fCalls.wait(0); }
    int Calls() const { return fCalls; }

  private:
    static int flood(zSocket* socket) {
        static const std::vector<char> bytes(4 << 20);
        int result = 0;
        for (int i = 0; i < 16 && result == 0; ++i)
            result = socket->Send(bytes.data(), static_cast<int>(bytes.size()), nullptr, kSendTimeoutMs);
        return result;
    }

    std::atomic<int> fCalls = 0;
};

class HttpServerTest : public testing::Test {
  protected:
    HttpServerTest() : fHandler(new EchoHandler), fServer(std::make_unique<cHttpServer>(0, kReadSize)) {
        fServer->InstallHandler(*fHandler);
        EXPECT_EQ(fServer->WaitUntilListening(), 0);
    }
    ~HttpServerTest() override {
        fServer.reset();
        fHandler->Release();
    }
    uint16_t Port() const { return fServer->Port(); }

    EchoHandler* fHandler;
    std::unique_ptr<cHttpServer> fServer;
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
    ScopedFileLimit() { getrlimit(RLIMIT_NOFILE, &fOld); }
    ~ScopedFileLimit() { setrlimit(RLIMIT_NOFILE, &fOld); }
    void Set(int limit) {
        rlimit changed = fOld;
        changed.rlim_cur = static_cast<rlim_t>(limit);
        setrlimit(RLIMIT_NOFILE, &changed);
    }
    int Max() const { return fOld.rlim_max > 4096 ? 4096 : static_cast<int>(fOld.rlim_max); }

  private:
    rlimit fOld = {};
};

int open_null() {
    return open("/dev/null", O_RDONLY | O_CLOEXEC);
}

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

TEST_F(HttpServerTest, SendsTheNotFoundPageUnderStatus200) {
    TestClient client(Port());
    EXPECT_EQ(
        bytes_of(client.Post("", "/missing")),
        "HTTP/1.1 200 OK\r\nConnection: Keep-Alive\r\nServer: quillon_httpd/0.1.0\r\n"
        "Content-Type: text/html\r\nContent-Length: 126\r\n\r\n"
        "<HTML><TITLE>Not Found</TITLE>\r\n\t<BODY><P>The server could not fulfill your request (Resource "
        "not found)</P>\r\n</BODY></HTML>\r\n");
}

TEST_F(HttpServerTest, DropsWhatFollowsARequestInTheSameRead) {
    TestClient client(Port());
    client.Send(TestClient::Request("first") + TestClient::Request("lost"));
    EXPECT_EQ(bytes_of(client.ReadReply()), echo_reply("/||first" + TestClient::Request("lost")));
    EXPECT_EQ(bytes_of(client.Post("third")), echo_reply("/||third"));
    EXPECT_EQ(fHandler->Calls(), 2);
}

TEST_F(HttpServerTest, RequestsThatNobodyTakesGetNoBytes) {
    TestClient client(Port());
    client.Send("GET /x HTTP/1.1\r\n\r\n");
    EXPECT_TRUE(TestClient(Port()).Post("behind it")) << "by now the first request is done with";
    EXPECT_EQ(bytes_of(client.Post("next")), echo_reply("/||next"));
    EXPECT_EQ(fHandler->Calls(), 2);
}

TEST_F(HttpServerTest, HostileClientsDisturbNobody) {
    using namespace std::literals;
    std::vector<std::unique_ptr<TestClient>> hostile;
    for (const std::string_view bytes :
         {"POST / HTTP/1.1\r\nContent-Length: 3\r\n\r\na\0b"sv, "BREW /pot HTTP/1.1\r\n\r\n"sv, "\0\0\0\0"sv,
          "POST / HTTP/1.1\r\nContent-Length: 2147483647\r\n\r\n"sv, "POST"sv,
          "POST / HTTP/1.1\r\nEndless: "sv}) {
        hostile.push_back(std::make_unique<TestClient>(Port()));
        hostile.back()->Send(bytes);
    }
    TestClient gone(Port());
    gone.Send("POST / HTTP/1.1\r\nContent-Length: 9\r\n\r\nhalf");
    gone.Close();
    TestClient good(Port());
    const std::string more(100000, 'e');
    for (int i = 0; i < 20; ++i) {
        hostile.back()->Send(more);
        EXPECT_EQ(bytes_of(good.Post("fine")), echo_reply("/||fine"));
    }
    EXPECT_EQ(fHandler->Calls(), 20);
}

TEST_F(HttpServerTest, StopCutsOffAReplyThatNobodyReads) {
    TestClient client(Port());
    client.Send(TestClient::Request("", "/flood"));
    fHandler->WaitForCall();
    const auto start = steady_clock::now();
    fServer->Stop();
    fServer.reset();
    EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(2));
}

TEST_F(HttpServerTest, ClientThatNeverReadsHoldsOthersUpForItsTimeOutOnly) {
    TestClient client(Port(), 20000);
    client.Send(TestClient::Request("", "/flood"));
    fHandler->WaitForCall();
    TestClient other(Port(), 20000);
    EXPECT_EQ(bytes_of(other.Post("later")), echo_reply("/||later"));
}

TEST_F(HttpServerTest, FullDescriptorTableNeitherSpinsNorEndsService) {
    TestClient served(Port());
    EXPECT_TRUE(served.Post("before"));
    TestClient waiting(300);
    {
        ScopedFileLimit limit;
        const int lowestFree = open_null();
        close(lowestFree);
        limit.Set(lowestFree);
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
    ScopedFileLimit limit;
    if (limit.Max() < 1100)
        GTEST_SKIP() << "this machine allows too few open files";
    limit.Set(limit.Max());
    std::vector<int> fillers;
    while (fillers.empty() || fillers.back() < FD_SETSIZE)
        fillers.push_back(open_null());

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

TEST(HttpServerStartTest, TellsWhyItCannotListen) {
    cHttpServer first(0, kReadSize, "127.0.0.1");
    ASSERT_EQ(first.WaitUntilListening(), 0);
    EXPECT_TRUE(first.ListenFailure().empty());
    cHttpServer second(first.Port(), kReadSize);
    EXPECT_EQ(second.WaitUntilListening(), zSocket::kAddressInUse);
    EXPECT_EQ(second.ListenFailure(), "Address already in use");
    EXPECT_EQ(second.Port(), 0);
    cHttpServer nowhere(0, kReadSize, "256.0.0.1");
    EXPECT_EQ(nowhere.WaitUntilListening(), zSocket::kUnknownHost);
    EXPECT_FALSE(nowhere.ListenFailure().empty());

    ScopedFileLimit limit;
    limit.Set(0);
    cHttpServer full(0, kReadSize);
    EXPECT_EQ(full.WaitUntilListening(), zSocket::kOtherError);
    EXPECT_EQ(full.ListenFailure(), "Too many open files");
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

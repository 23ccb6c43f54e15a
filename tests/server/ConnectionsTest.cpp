// What clients do with their connections.

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>

#include "ServerFixture.h"

namespace {

const std::string kCall = TestClient::MethodCall("CheckConnection");
const std::string kRequest = TestClient::Request(kCall);

class ConnectionsTest : public ServerFixture {
  protected:
    static bool IsAnswer(const std::optional<TestClient::Reply>& reply) {
        return reply && reply->body.find("1.0.5") != std::string::npos;
    }
    static bool Check(TestClient& client) { return IsAnswer(client.Post(kCall)); }
};

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

TEST_F(ConnectionsTest, StayOpenForRequestAfterRequest) {
    TestClient client(Port());
    EXPECT_TRUE(Check(client));
    for (const char byte : kRequest)
        client.Send({&byte, 1});
    EXPECT_TRUE(IsAnswer(client.ReadReply())) << "byte by byte";
    EXPECT_TRUE(IsAnswer(client.Post(kCall + std::string(1 << 20, ' ')))) << "in many reads";
    client.Send("POST / HTTP/1.0\r\nConnection: close\r\nContent-Length: " + std::to_string(kCall.size()) +
                "\r\n\r\n" + kCall);
    EXPECT_TRUE(IsAnswer(client.ReadReply()));
    EXPECT_TRUE(Check(client)) << "still open";
}

TEST_F(ConnectionsTest, LoseWhatFollowsARequestInTheSameRead) {
    TestClient client(Port());
    client.Send(kRequest + TestClient::Request(TestClient::MethodCall("Snapshot")));
    EXPECT_TRUE(IsAnswer(client.ReadReply()));
    EXPECT_TRUE(Check(client)) << "and nothing was left of it";
}

TEST_F(ConnectionsTest, FullDescriptorTableNeitherSpinsNorEndsService) {
    TestClient served(Port());
    EXPECT_TRUE(Check(served));
    TestClient waiting(300);
    {
        const int lowestFree = dup(STDOUT_FILENO);
        close(lowestFree);
        const ScopedFileLimit limit(lowestFree);
        ASSERT_TRUE(waiting.Connect(Port()));
        waiting.Send(kRequest);
        EXPECT_TRUE(Check(served));
        const clock_t used = clock();
        EXPECT_FALSE(waiting.ReadReply()) << "there is no descriptor for it";
        EXPECT_LT(clock() - used, CLOCKS_PER_SEC / 10) << "a loop that spins uses all of the 300 ms";
    }
    waiting.SetReceiveTimeout(30000);
    EXPECT_TRUE(IsAnswer(waiting.ReadReply()));
}

TEST_F(ConnectionsTest, ClosesConnectionsWhoseDescriptorFitsNoSet) {
    TestClient served(Port());
    EXPECT_TRUE(Check(served));
    const ScopedFileLimit limit(4096);
    std::vector<int> fillers;
    while (fillers.empty() || (fillers.back() >= 0 && fillers.back() < FD_SETSIZE))
        fillers.push_back(dup(STDOUT_FILENO));
    ASSERT_GE(fillers.back(), FD_SETSIZE) << "this machine allows too few open files";
    for (int i = 0; i < 3; ++i) {
        TestClient excess(Port());
        EXPECT_TRUE(excess.IsConnected());
        EXPECT_TRUE(excess.WaitForClose());
        EXPECT_TRUE(Check(served));
    }
    for (const int filler : fillers)
        close(filler);
    TestClient after(Port());
    EXPECT_TRUE(Check(after));
}

TEST_F(ConnectionsTest, StopBeforeTheThreadIsUpIsNotLost) {
    for (int i = 0; i < 50; ++i) {
        const auto start = std::chrono::steady_clock::now();
        {
            cHttpServer server(0, 4095);
            server.Stop();
        }
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    }
}

} // namespace

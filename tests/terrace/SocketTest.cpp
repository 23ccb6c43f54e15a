#include "zSocket.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace {

using Socket = std::unique_ptr<zSocket>;

/// A listening socket on an ephemeral port, and pairs of connected sockets.
class SocketTest : public testing::Test {
  protected:
    SocketTest() : fListener(zSocket::Factory()) {
        EXPECT_EQ(fListener->Create(0), 0);
        EXPECT_EQ(fListener->Bind(0, "127.0.0.1"), 0);
        EXPECT_EQ(fListener->Listen(3), 0);
        EXPECT_EQ(fListener->GetLocalPort(&fPort), 0);
    }
    Socket Connected() {
        Socket client(zSocket::Factory());
        client->Create(zSocket::kBlocking);
        EXPECT_EQ(client->Connect("127.0.0.1", static_cast<short>(fPort), 0), 0);
        return client;
    }
    Socket Accepted(unsigned int flags = 0) {
        EXPECT_EQ(fListener->SelectRead(20'000, nullptr), 0);
        zSocket* accepted = nullptr;
        EXPECT_EQ(fListener->Accept(&accepted, flags), 0);
        return Socket(accepted);
    }

    Socket fListener;
    unsigned short fPort = 0;
};

TEST_F(SocketTest, AcceptStoresThePeerAsAskedAndNeverBlocks) {
    zSocket* none = nullptr;
    EXPECT_EQ(fListener->Accept(&none, 0), zSocket::kWouldBlock);
    const Socket clients[] = {Connected(), Connected()};
    EXPECT_EQ(Accepted()->Address(), nullptr);
    const Socket accepted = Accepted(zSocket::kStoreNumericAddress);
    EXPECT_STREQ(accepted->Address(), "127.0.0.1");
    EXPECT_EQ(zSocket::ntoh_l(accepted->NumAddress()), 0x7F000001u);
    EXPECT_TRUE(fcntl(accepted->Descriptor(), F_GETFL) & O_NONBLOCK);
}

TEST_F(SocketTest, ReceiveTellsMoreFromEmptyFromClosed) {
    const Socket client = Connected();
    const Socket server = Accepted();
    client->Send("sixsix", 6, nullptr, 0);
    EXPECT_EQ(server->SelectRead(20'000, nullptr), 0);
    char bytes[4] = {};
    int got = 9;
    const std::pair<int, int> expected[] = {{0, 4}, {zSocket::kWouldBlock, 2}, {zSocket::kWouldBlock, 0}};
    for (const auto& [result, size] : expected) {
        EXPECT_EQ(server->Receive(bytes, 4, &got), result);
        EXPECT_EQ(got, size);
    }
    client->Abort();
    EXPECT_EQ(server->SelectRead(20'000, nullptr), 0);
    EXPECT_EQ(server->Receive(bytes, 4, &got), 0);
    EXPECT_EQ(got, 0);
}

TEST_F(SocketTest, SendToFullAndToGonePeersFailsWithoutASignal) {
    Socket client = Connected();
    const Socket server = Accepted();
    const std::vector<char> large(64 << 20);
    int sent = 7;
    EXPECT_EQ(server->Send(large.data(), static_cast<int>(large.size()), &sent, 999), zSocket::kWouldBlock);
    EXPECT_EQ(sent, 0) << "what has left is not reported";
    bool writable = true;
    EXPECT_EQ(server->SelectWrite(0, &writable), 0);
    EXPECT_FALSE(writable);
    client.reset();
    EXPECT_EQ(server->SelectWrite(20'000, &writable), 0);
    EXPECT_TRUE(writable);
    EXPECT_EQ(server->Send("x", 1, nullptr, 0), zSocket::kReset);
    EXPECT_EQ(server->Send("x", 1, nullptr, 0), zSocket::kOtherError);
    EXPECT_EQ(server->Send(nullptr, 0, &sent, 5000), 0);
}

TEST_F(SocketTest, WaitsCountWholeSecondsOnly) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 60; ++i) // which would take a minute
        EXPECT_EQ(fListener->SelectRead(i == 0 ? -5000 : 999, nullptr), zSocket::kTimedOut);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
    bool readable = true;
    EXPECT_EQ(fListener->SelectRead(1999, &readable), zSocket::kTimedOut);
    EXPECT_FALSE(readable);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(990));
}

TEST_F(SocketTest, SelectReportsReadersAndTakesWritersForGranted) {
    const Socket client = Connected();
    const Socket server = Accepted();
    _zSocket_select listener{fListener.get(), _zSocket_select::kRead, 0};
    _zSocket_select reader{server.get(), _zSocket_select::kRead, 0};
    _zSocket_select writer{client.get(), _zSocket_select::kWrite, 0};
    zHeap<_zSocket_select*> list;
    for (_zSocket_select* entry : {&listener, &reader, &writer})
        list.Append(entry);
    int ready = 7;
    EXPECT_EQ(zSocket::Select(list, 0, &ready), 0);
    EXPECT_EQ(ready, 0);
    EXPECT_EQ(writer.result, 0);
    client->Send("x", 1, nullptr, 0);
    EXPECT_EQ(zSocket::Select(list, 20'000, &ready), 0);
    EXPECT_EQ(ready, 1);
    EXPECT_EQ(listener.result, 0);
    EXPECT_EQ(reader.result, _zSocket_select::kRead);
    EXPECT_EQ(writer.result, _zSocket_select::kWrite);
}

TEST_F(SocketTest, NamesThatDoNotResolveConnectToNothing) {
    Socket client(zSocket::Factory());
    client->Create(zSocket::kBlocking);
    for (const char* name : {"256.1.1.1", "1.2.3.4.5", "", "no such host"})
        EXPECT_EQ(client->Connect(name, static_cast<short>(fPort), 0), zSocket::kUnknownHost) << name;
    EXPECT_EQ(client->Connect("localhost", static_cast<short>(fPort), 0), 0);
}

TEST_F(SocketTest, PlatformErrorsHaveTheirCodes) {
    const auto port = static_cast<short>(fPort);
    Socket second(zSocket::Factory());
    second->Create(0);
    EXPECT_EQ(second->Bind(port, "127.0.0.1"), zSocket::kAddressInUse);
    EXPECT_EQ(second->Connect("127.0.0.1", port, 0), zSocket::kInProgress);
    EXPECT_EQ(second->SelectWrite(20'000, nullptr), 0);
    EXPECT_EQ(second->Connect("127.0.0.1", port, 0), 0);
    EXPECT_EQ(second->Connect("127.0.0.1", port, 0), zSocket::kConnected);
    fListener.reset();
    Socket refused(zSocket::Factory());
    refused->Create(zSocket::kBlocking);
    EXPECT_EQ(refused->Connect("127.0.0.1", port, 0), zSocket::kRefused);
}

TEST_F(SocketTest, DescriptorsBeyondTheSetsAreNeverWaitedFor) {
    rlimit old = {};
    getrlimit(RLIMIT_NOFILE, &old);
    const rlimit raised = {std::min<rlim_t>(old.rlim_max, 4096), old.rlim_max};
    setrlimit(RLIMIT_NOFILE, &raised);
    std::vector<int> fillers;
    while (fillers.empty() || (fillers.back() >= 0 && fillers.back() < FD_SETSIZE))
        fillers.push_back(dup(STDOUT_FILENO));
    ASSERT_GE(fillers.back(), FD_SETSIZE) << "this machine allows too few open files";

    const Socket high = Connected();
    EXPECT_FALSE(high->IsSelectable());
    EXPECT_EQ(high->Send("x", 1, nullptr, 5000), 0);
    EXPECT_EQ(high->SelectRead(20'000, nullptr), zSocket::kOtherError);
    zSocket* accepted = nullptr;
    EXPECT_EQ(fListener->SelectRead(20'000, nullptr), 0);
    EXPECT_EQ(fListener->Accept(&accepted, 0), zSocket::kWouldBlock);
    for (const int filler : fillers)
        close(filler);
    setrlimit(RLIMIT_NOFILE, &old);
}

} // namespace

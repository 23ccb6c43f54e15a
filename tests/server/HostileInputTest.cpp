// Everything that a client can throw at the whole server. Each test ends with an ordinary client being
// served; the sanitizers watch over memory.

#include <random>
#include <string>
#include <thread>
#include <vector>

#include "ServerFixture.h"

namespace {

using HostileInputTest = ServerFixture;

TEST_F(HostileInputTest, AbsurdParametersGetNoPictureOrTheUsualOne) {
    const struct {
        std::string params;
        bool answered;
    } cases[] = {
        {"", true},
        {"<params></params>", true},
        {"<params><param><value>text</value></param></params>", true},
        {StructParam(Member("quality", "string", "worst") + Member("unknown", "int", "1")), true},
        {StructParam(Member("crop_left", "string", "not a number")), true},
        {StructParam(Member("crop_left", "int", "99999999999999999999999")), true},
        {StructParam(Member("crop_left", "int", "2147483648")), false},
        {StructParam(Member("crop_right", "int", "-2147483648")), false},
        {StructParam(Member("crop_left", "int", "-50000") + Member("crop_top", "int", "-50000")), false},
        {StructParam(Member("crop_left", "int", "65")), false},
        {StructParam(Member("crop_left", "double", "1e300") + Member("crop_top", "string", "nan")), true},
    };
    for (const auto& one : cases) {
        TestClient client(Port());
        client.SetReceiveTimeout(one.answered ? 10000 : 300);
        EXPECT_EQ(client.Call("Snapshot", one.params).has_value(), one.answered) << one.params;
        client.SetReceiveTimeout(10000);
        EXPECT_TRUE(client.Call("CheckConnection")) << "the connection stays usable after " << one.params;
    }
    EXPECT_TRUE(StillServes());
}

TEST_F(HostileInputTest, EntitiesDoNotMultiply) {
    std::string body = "<!DOCTYPE d [<!ENTITY e0 \"eeeeeeeeeeeeeeee\">";
    for (int i = 1; i < 12; ++i) {
        const std::string inner = "&e" + std::to_string(i - 1) + ";";
        body += "<!ENTITY e" + std::to_string(i) + " \"";
        for (int repeat = 0; repeat < 16; ++repeat)
            body += inner;
        body += "\">";
    }
    body += "]><methodCall><methodName>Snapshot</methodName><params>&e11;</params></methodCall>";
    TestClient client(Port());
    EXPECT_TRUE(client.Post(body));
    EXPECT_TRUE(StillServes());
}

TEST_F(HostileInputTest, DeepNestingDoesNotEndTheStack) {
    std::string body = "<methodCall>";
    for (int i = 0; i < 300000; ++i)
        body += "<a>";
    TestClient client(Port(), 30000);
    EXPECT_TRUE(client.Post(body));
    EXPECT_TRUE(StillServes());
}

TEST_F(HostileInputTest, NULsAndTruncatedRequestsHarmOnlyTheirOwnConnection) {
    const std::string call = TestClient::MethodCall("Snapshot");
    TestClient withNUL(Port(), 300);
    std::string body = call;
    body[5] = '\0';
    EXPECT_FALSE(withNUL.Post(body));

    const std::string request = TestClient::Request(call);
    for (size_t length = 0; length < request.size(); length += 7) {
        {
            TestClient client(Port());
            client.Send(std::string_view(request).substr(0, length));
        }
        // The server's queue of new connections is short: let it take this one before the next comes.
        EXPECT_TRUE(TestClient(Port()).Call("CheckConnection"));
    }
    TestClient endless(Port(), 300);
    std::string headers = "POST / HTTP/1.1\r\n";
    for (int i = 0; i < 100000; ++i)
        headers += "X-Header: value\r\n";
    endless.Send(headers);
    EXPECT_TRUE(StillServes());
    EXPECT_FALSE(endless.ReadReply());
}

TEST_F(HostileInputTest, MutatedCallsNeverHarm) {
    constexpr int kPatienceMs = 20; // Some of the calls fail, and those get no answer.
    std::mt19937 random(20240607);
    const std::string call = TestClient::MethodCall(
        "Snapshot", StructParam(Member("quality", "string", "high") + Member("crop_left", "int", "5")));
    for (int round = 0; round < 300; ++round) {
        std::string body = call;
        for (int change = 0; change < 1 + round % 4; ++change) {
            const size_t place = random() % body.size();
            switch (random() % 3) {
            case 0:
                body[place] = static_cast<char>(1 + random() % 255);
                break;
            case 1:
                body.erase(place, 1 + random() % 20);
                break;
            default:
                body.insert(place, body.substr(random() % body.size(), random() % 30));
                break;
            }
            if (body.empty())
                body = call;
        }
        TestClient client(Port(), kPatienceMs);
        client.Post(body);
    }
    EXPECT_TRUE(StillServes());
}

TEST_F(HostileInputTest, ManyClientsAtOnceAreAllServed) {
    std::vector<std::thread> clients;
    std::atomic<int> served = 0;
    for (int i = 0; i < 8; ++i) {
        clients.emplace_back([this, &served] {
            TestClient client(Port(), 30000);
            for (int call = 0; call < 10; ++call)
                served += client.Call("Snapshot").has_value();
        });
    }
    for (std::thread& client : clients)
        client.join();
    EXPECT_EQ(served, 80);
}

} // namespace

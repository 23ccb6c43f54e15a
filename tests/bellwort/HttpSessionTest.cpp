// The client against a server that does whatever it should not.

#include "cHttpSession.h"

#include <gmock/gmock.h>

#include "ScriptedServer.h"
#include "zBase64.h"
#include "zBuffer.h"
#include "zRecord.h"
#include "zSHA1.h"

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr double kPatient = 60; // Seconds.
constexpr double kShort = 1;

const std::string kHello = "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: 5\r\n\r\nhello";

std::string text_of(const zBuffer& buffer) {
    return {buffer.Data() ? buffer.Data() : "", buffer.Size()};
}

/// A session with what most tests ask of it.
struct Client {
    explicit Client(const std::string& url, double timeout = kPatient,
                    unsigned int method = cHttpSession::kGet) {
        session->Configure(method, url.c_str(), timeout);
    }
    /// One whole request; the result of the response.
    int Run(const zRecord* headers = nullptr, const std::string& body = "") {
        const int size = static_cast<int>(body.size());
        const int begun = session->Request_Begin(&response, headers, size ? body.data() : nullptr, size);
        const int waited = begun == 0 ? session->Request_BlockUntilComplete() : begun;
        const int status = session->Response_StatusCode(nullptr);
        // Waiting knows nothing of HTTP's own codes.
        EXPECT_EQ(waited, status <= cHttpSession::kHttpStatusBase ? 0 : status);
        session->Request_End();
        return status;
    }

    std::unique_ptr<cHttpSession> session{cHttpSession::Factory()};
    zBuffer response;
};

TEST(HttpSessionTest, TellsWhatIsWrongWithAResponse) {
    using Server = ScriptedServer;
    const std::string ok = "HTTP/1.1 200 OK\r\n";
    const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
    std::string lines = ok;
    while (lines.size() < 1 << 20)
        lines += "X-Endless: header\r\n";
    const struct {
        const char* what;
        Server::Answer answer;
        int code;
        const char* body;
        double timeout = kPatient;
    } cases[] = {
        {"closes at once", {"", Server::kClose}, -21302, ""},
        {"closes in the header", {ok + "Content-Le", Server::kClose}, -21302, ""},
        {"sends no length", {ok + "\r\nuntil the end", Server::kClose}, 0, "until the end"},
        {"sends more than its length", {ok + "Content-Length: 3\r\n\r\nabcdef", Server::kClose}, 0, "abc"},
        {"sends less than its length", {ok + "Content-Length: 9\r\n\r\nabc", Server::kClose}, -21302, "abc"},
        {"sends chunks", {chunked + "3\r\nabc\r\n2\r\nde\r\n0\r\n\r\n"}, 0, "abcde"},
        {"breaks off its chunks", {chunked + "3\r\nabc\r\n", Server::kClose}, -21302, "abc"},
        {"sends no chunks", {chunked + "xyz\r\n"}, -21303, ""},
        {"sends endless header lines", {lines}, -21302, ""},
        {"sends an endless header line", {ok + "X: " + std::string(1 << 20, 'x')}, -21302, ""},
        {"redirects in a circle",
         {"HTTP/1.1 302 Found\r\nLocation: /\r\nContent-Length: 0\r\n\r\n"},
         -21302,
         ""},
        {"redirects to a file",
         {"HTTP/1.1 302 Found\r\nLocation: file:///etc/hosts\r\nContent-Length: 0\r\n\r\n"},
         -21302,
         ""},
        {"speaks no HTTP", {"220 mail ready\r\n", Server::kClose}, -21302, ""},
        {"resets", {ok + "Content-Length: 9\r\n\r\nabc", Server::kReset}, -21303, nullptr},
        {"has no such thing", {"HTTP/1.1 404 No\r\nContent-Length: 2\r\n\r\nno"}, -29404, "no"},
        {"has nothing to say", {"HTTP/1.1 204 No\r\n\r\n"}, 0, ""},
        {"is silent", {""}, -14, "", kShort},
        {"falls silent", {ok + "Content-Length: 9\r\n\r\nabc"}, -14, "abc", kShort},
    };
    for (const auto& one : cases) {
        ScriptedServer server([&](const std::string&) { return one.answer; });
        Client client(server.URL(), one.timeout);
        EXPECT_EQ(client.Run(), one.code) << one.what;
        if (one.body) {
            EXPECT_EQ(text_of(client.response), one.body) << one.what;
        }
    }
}

TEST(HttpSessionTest, TimeOutLimitsSilenceOnly) {
    constexpr int kPieces = 25;
    constexpr double kLimit = 2; // Twenty pauses, and less than all of them.
    ScriptedServer server([](const std::string&) {
        return ScriptedServer::Answer{"HTTP/1.0 200 OK\r\n\r\n" + std::string(150, 'x'),
                                      ScriptedServer::kClose, kPieces};
    });
    EXPECT_EQ(Client(server.URL(), kLimit).Run(), 0);

    ScriptedServer silent([](const std::string&) { return ScriptedServer::Answer{}; });
    setenv("http_proxy", silent.URL().c_str(), 1);
    EXPECT_EQ(Client("http://192.0.2.1/", kShort).Run(), -21308);
    unsetenv("http_proxy");
    EXPECT_THAT(silent.Request(), HasSubstr("GET http://192.0.2.1/ HTTP/1.1\r\n"));
}

TEST(HttpSessionTest, TellsHowFarItIsAndCanBeStopped) {
    ScriptedServer server([](const std::string&) {
        return ScriptedServer::Answer{
            "HTTP/1.1 200 OK\r\nContent-Type: a/b\r\nContent-Length: 8\r\n\r\nhalf"};
    });
    Client client(server.URL(), kPatient, cHttpSession::kPost);
    EXPECT_EQ(client.session->Request_BlockUntilComplete(), -1) << "there is no request";
    const std::string body(100000, 'b');
    ASSERT_EQ(client.session->Request_Begin(&client.response, nullptr, body.data(), 100000), 0);
    while (client.session->Request_ContentBytesRead() < 4)
        ASSERT_FALSE(client.session->Request_IsComplete());
    float written = 0;
    float read = 0;
    EXPECT_EQ(client.session->Request_Status(&written, &read), 0);
    EXPECT_EQ(written, 1);
    EXPECT_EQ(read, 0.5);
    EXPECT_EQ(client.session->Response_StatusCode(nullptr), -1);
    client.session->Request_Stop();
    EXPECT_TRUE(client.session->Request_IsComplete());
    EXPECT_EQ(client.session->Response_StatusCode(nullptr), -21306);
    EXPECT_EQ(text_of(client.response), "half");
}

TEST(HttpSessionTest, FailuresEndKeepAliveAndThreeInARowBringItBack) {
    std::atomic<bool> fails = false;
    ScriptedServer server([&](const std::string&) {
        return fails ? ScriptedServer::Answer{"", ScriptedServer::kClose} : ScriptedServer::Answer{kHello};
    });
    Client client(server.URL());
    const struct {
        bool fails;
        int connections; ///< That the request takes.
    } steps[] = {{false, 1},
                 {false, 0},
                 // On a kept connection the transport takes a failure for its end, and tries a new one.
                 {true, 1},
                 {false, 1},
                 {false, 1},
                 {true, 1},
                 {true, 1},
                 {true, 1},
                 {false, 1},
                 {false, 1},
                 {false, 0}};
    int expected = 0;
    int number = 0;
    for (const auto& step : steps) {
        fails = step.fails;
        expected += step.connections;
        EXPECT_EQ(client.Run(), step.fails ? -21302 : 0) << "step " << number;
        EXPECT_EQ(server.Connections(), expected) << "step " << number;
        ++number;
    }
}

TEST(HttpSessionTest, SendsTheHeadersAndTheBody) {
    ScriptedServer server([](const std::string&) { return ScriptedServer::Answer{kHello}; });
    Client client(server.URL("/path?query"), kPatient, cHttpSession::kPost);
    client.session->SetBasicHTTPAuthentication("user", "pass");
    zRecord headers;
    cHttpSession::SetContentTypeHeader(headers, "text/xml");
    headers.SetCString("X-Forged", "a\r\nX-Evil: b");
    headers.SetCString("X-Empty", "");
    EXPECT_EQ(client.Run(&headers, std::string(3000000, 'y')), 0);
    const std::string request = server.Request();
    const std::string head = request.substr(0, request.find("\r\n\r\n") + 2);
    EXPECT_THAT(head, HasSubstr("POST /path?query HTTP/1.1\r\n"));
    for (const char* line : {"Content-Type: text/xml", "Content-Length: 3000000",
                             "X-Empty:", "Authorization: Basic dXNlcjpwYXNz"})
        EXPECT_THAT(head, HasSubstr("\r\n" + std::string(line) + "\r\n"));
    EXPECT_THAT(head, Not(HasSubstr("Evil")));
    EXPECT_EQ(request.size(), head.size() + 2 + 3000000);
    EXPECT_EQ(client.Run(), 0);
    EXPECT_THAT(server.Request(), HasSubstr("\r\nContent-Length: 0\r\n")) << "nothing of the request before";
}

TEST(HttpSessionTest, ProvesWhoAsksByWSSE) {
    ScriptedServer server([](const std::string&) { return ScriptedServer::Answer{kHello}; });
    Client client(server.URL());
    client.session->SetWSSEAuthorization(true, "user", "pass");
    ASSERT_EQ(client.Run(), 0);
    const std::string request = server.Request();
    EXPECT_THAT(request, HasSubstr("\r\nAuthorization: WSSE profile=\"UsernameToken\"\r\n"));
    EXPECT_THAT(request, HasSubstr("\r\nX-WSSE: UsernameToken Username=\"user\", PasswordDigest=\""));
    EXPECT_THAT(request, HasSubstr("\r\nAccept: text/xml\r\n"));
    const auto part = [&](const std::string& name) {
        const size_t start = request.find(name + "=\"") + name.size() + 2;
        return request.substr(start, request.find('"', start) - start);
    };
    std::string nonce(64, 0);
    nonce.resize(static_cast<size_t>(Base64decode(nonce.data(), part("Nonce").c_str())));
    EXPECT_EQ(nonce.size(), 32);
    EXPECT_EQ(nonce.find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_THAT(part("Created"), testing::MatchesRegex("....-..-..T..:..:..Z"));
    const std::string hashed = nonce + part("Created") + "pass";
    SHA1Context context;
    SHA1Reset(&context);
    SHA1Input(&context, reinterpret_cast<const unsigned char*>(hashed.data()),
              static_cast<unsigned int>(hashed.size()));
    char digest[20];
    SHA1Result(&context, reinterpret_cast<unsigned char*>(digest));
    char encoded[64];
    Base64encode(encoded, digest, sizeof digest);
    EXPECT_EQ(part("PasswordDigest"), encoded);
}

} // namespace

// The client against a server that nobody here wrote: Python's own, with a few files in a fresh folder.

#include <gtest/gtest.h>

#include "Program.h"
#include "SkipOrFail.h"
#include "TestFolder.h"
#include "cHttpSession.h"
#include "zBuffer.h"

namespace {

constexpr double kTimeout = 60; // Seconds.
constexpr size_t kLarge = 3 << 20;

/// The port that the server's first line tells of: "Serving HTTP on 127.0.0.1 port 41234 ...".
std::string port_of(const std::string& line) {
    const std::string word = " port ";
    const size_t start = line.find(word);
    return start == std::string::npos
               ? ""
               : line.substr(start + word.size(), line.find(' ', start + word.size()) - start - word.size());
}

TEST(RealServerTest, OrdinaryRequestsOnOneConnection) {
    TestFolder folder;
    folder.Write("large.bin", std::string(kLarge, 'x'));
    folder.Write("below/index.html", "known");
    Program server({"python3", "-u", "-m", "http.server", "0", "--bind", "127.0.0.1", "--protocol",
                    "HTTP/1.1", "--directory", folder.Path().string()});
    const std::string port = port_of(server.ReadLine());
    if (port.empty())
        SKIP_OR_FAIL("no server: is python3 installed?");
    const std::unique_ptr<cHttpSession> session(cHttpSession::Factory());
    const struct {
        const char* path;
        int status;
        size_t size;
        const char* type;
    } cases[] = {{"/large.bin", 0, kLarge, "application/octet-stream"},
                 {"/below/", 0, 5, "text/html"},
                 {"/below", 0, 5, "text/html"}, // By way of a redirect.
                 {"/none", -29404, 0, ""},
                 {"/large.bin", 0, kLarge, "application/octet-stream"}};
    for (const auto& one : cases) {
        SCOPED_TRACE(one.path);
        zBuffer response;
        session->Configure(cHttpSession::kGet, ("http://127.0.0.1:" + port + one.path).c_str(), kTimeout);
        ASSERT_EQ(session->Request_Begin(&response, nullptr, nullptr, 0), 0);
        session->Request_BlockUntilComplete();
        ASSERT_EQ(session->Response_StatusCode(nullptr), one.status);
        if (one.status != 0)
            continue;
        unsigned int length = 0;
        zString type;
        EXPECT_EQ(session->Response_ContentLength(&length), 0);
        EXPECT_EQ(session->Response_ContentType(type), 0);
        EXPECT_EQ(length, one.size);
        EXPECT_EQ(response.Size(), one.size);
        EXPECT_STREQ(type, one.type);
    }
}

} // namespace

#include "cHttpRequest.h"

#include <gtest/gtest.h>

#include "cHttpHandler.h"

namespace {

using State = cHttpRequest::State;

State append(cHttpRequest& request, std::string_view bytes) {
    return request.Append(bytes.data(), bytes.size());
}

State state_of(std::string_view bytes) {
    cHttpRequest request;
    return append(request, bytes);
}

TEST(HttpRequestTest, IsCompleteAtItsLastByteHoweverItIsCut) {
    const std::string text = "POST /a.b/c?x=1 HTTP/1.1\r\nHost: h\r\ncontent-LENGTH:\t 5\r\n\r\nhello";
    for (size_t cut = 0; cut < text.size(); ++cut) {
        cHttpRequest request;
        EXPECT_EQ(append(request, std::string_view(text).substr(0, cut)), State::kIncomplete) << cut;
        EXPECT_EQ(append(request, std::string_view(text).substr(cut)), State::kComplete) << cut;
        EXPECT_STREQ(request.Body(), "hello");
        EXPECT_EQ(request.Text(), text);
    }
}

TEST(HttpRequestTest, CompletenessFollowsTheFirstContentLengthInTheText) {
    for (const char* text :
         {"post /\r\n\r\n", "GETX /\r\n\r\n", "POST /\r\nContent-Length: 0\r\n\r\n",
          "POST /\r\nContent-Length: +2\r\n\r\nab", "POST /\r\nContent-Length: x\r\n\r\n",
          "POST /\r\nContent-Length: -7\r\n\r\n", "POST /\r\nContent-Length:\r\n\r\n1",
          "POST /\r\nX: content-length: 1\r\nContent-Length: 9\r\n\r\na", "POST /\r\n\r\nContent-Length: 10"})
        EXPECT_EQ(state_of(text), State::kComplete) << text;
    for (const char* text :
         {"", "PO", "POST / HTTP/1.1\r\n", "POST /\r\nContent-Length: 3\r\n\r\nab",
          "POST /\r\nContent-Length: 99999999999999999999\r\n\r\nab",
          "POST /\r\nX: content-length: 9\r\nContent-Length: 1\r\n\r\na", "POST /\r\n\r\nContent-Length: 50"})
        EXPECT_EQ(state_of(text), State::kIncomplete) << text;
    for (const char* text : {"HEAD / HTTP/1.1\r\n\r\n", "\r\nPOST /\r\n\r\n"})
        EXPECT_EQ(state_of(text), State::kMalformed) << text;
}

TEST(HttpRequestTest, ReadsANumberThatArrivesInPiecesBehindTheHeaders) {
    cHttpRequest request;
    EXPECT_EQ(append(request, "POST /\r\n\r\nContent-Length: 19"), State::kIncomplete);
    EXPECT_EQ(append(request, "5"), State::kIncomplete);
    EXPECT_EQ(append(request, std::string(175, 'x')), State::kIncomplete);
    EXPECT_EQ(append(request, "xx"), State::kComplete);
}

TEST(HttpRequestTest, TakesTheRequestLineApart) {
    const struct {
        const char* line;
        int method;
        const char *url, *extension, *query;
    } cases[] = {
        {"GET /index.html?a=b.c HTTP/1.1", cHttpHandler::kMethodGet, "/index.html", "html", "a=b.c"},
        {"pOsT \t /a.b/c HTTP/1.1", cHttpHandler::kMethodPost, "/a.b/c", "b/c", ""},
        {"GETX / HTTP/1.1", cHttpHandler::kMethodGet, "/", "", ""},
        {"POST /%20?", cHttpHandler::kMethodPost, "/%20", "", "\r\n\r\n"},
        {"GET.x /y HTTP/1.1", cHttpHandler::kMethodGet, "/y", "x /y", ""},
        {"GET", cHttpHandler::kMethodGet, "", "", ""},
        {"GET ? ?", cHttpHandler::kMethodGet, "", "", ""},
    };
    for (const auto& [line, method, url, extension, query] : cases) {
        cHttpRequest request;
        ASSERT_EQ(append(request, std::string(line) + "\r\n\r\n"), State::kComplete) << line;
        const cHttpRequest::Target target = request.ParseTarget();
        EXPECT_EQ(request.Method(), method) << line;
        EXPECT_EQ(target.url, url) << line;
        EXPECT_EQ(target.extension, extension) << line;
        EXPECT_EQ(target.query, query) << line;
    }
}

TEST(HttpRequestTest, LosesWhatLiesBehindANulInOneRead) {
    using namespace std::literals;
    cHttpRequest request;
    EXPECT_EQ(append(request, "POST /\r\nContent-Length: 4\r\n\r\na\0bc"sv), State::kIncomplete);
    EXPECT_EQ(append(request, "xyz"), State::kComplete);
    EXPECT_STREQ(request.Body(), "axyz");
}

TEST(HttpRequestTest, BytesThatCanNeverBeAnsweredTakeNoMemory) {
    cHttpRequest request;
    for (const char* text : {"PUT / HTTP/1.1\r\n\r\n", "GET / HTTP/1.1\r\n\r\n"})
        EXPECT_EQ(append(request, text), State::kMalformed);
    EXPECT_STREQ(request.Text(), "");
}

// With a search from the start at each read this would take hours.
TEST(HttpRequestTest, EndlessHeadersCostTheirBytesOnce) {
    for (const std::string_view filler :
         {"X-Header: value\r\n", "::::::::", "Content-Length:                "}) {
        std::string read;
        while (read.size() < 4095)
            read += filler;
        cHttpRequest request;
        append(request, "POST / HTTP/1.1\r\nContent-Length:");
        for (int i = 0; i < 8192; ++i)
            ASSERT_EQ(append(request, read), State::kIncomplete);
        EXPECT_EQ(append(request, "\r\n\r\n"), State::kComplete);
    }
}

} // namespace

#include "cHttpHandlerFile.h"

#include <gmock/gmock.h>

#include "TestClient.h"
#include "TestFolder.h"
#include "cHttpServer.h"

namespace {

TEST(HttpHandlerFileTest, ServesFilesBelowItsRoot) {
    const TestFolder root;
    const std::string bytes("binary\0bytes", 12);
    root.Write("a.zip", bytes);
    root.Write("b.txt", "text");
    root.Write("empty", "");

    cHttpServer server(0, 4095, "127.0.0.1");
    auto* handler = new cHttpHandlerFile(root.Path().c_str());
    EXPECT_FALSE(handler->CanHandle(cHttpHandler::kMethodPost, "/a.zip", "zip", "", ""));
    server.InstallHandler(*handler);
    handler->Release();
    ASSERT_EQ(server.WaitUntilListening(), 0);

    TestClient client(server.Port());
    const struct {
        const char* url;
        const char* type;
        std::string body; ///< Or how it begins.
    } cases[] = {{"/a.zip?query", "application/zip", bytes},
                 {"/b.txt", "text/html", "text"},
                 {"/empty", "text/html", ""},
                 {"/c.txt", "text/html", "<HTML><TITLE>Not Found"},
                 {"/", "text/html", "<HTML><TITLE>Not Found"}};
    for (const auto& one : cases) {
        client.Send("GET " + std::string(one.url) + " HTTP/1.1\r\n\r\n");
        const auto reply = client.ReadReply();
        ASSERT_TRUE(reply) << one.url;
        EXPECT_THAT(reply->head, testing::HasSubstr("\r\nContent-Type: " + std::string(one.type) + "\r\n"));
        EXPECT_THAT(reply->body, testing::StartsWith(one.body));
        EXPECT_TRUE(one.body.starts_with("<HTML>") || reply->body.size() == one.body.size()) << one.url;
    }
}

} // namespace

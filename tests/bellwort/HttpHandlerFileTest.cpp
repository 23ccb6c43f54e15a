#include "cHttpHandlerFile.h"

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "TestClient.h"
#include "cHttpServer.h"

namespace {

TEST(HttpHandlerFileTest, ServesFilesBelowItsRoot) {
    std::string pattern = (std::filesystem::temp_directory_path() / "glasspane-files-XXXXXX").string();
    const std::filesystem::path root = mkdtemp(pattern.data());
    const std::string bytes("binary\0bytes", 12);
    std::ofstream(root / "a.zip") << bytes;
    std::ofstream(root / "b.txt") << "text";
    std::ofstream(root / "empty").flush();

    cHttpServer server(0, 4095, "127.0.0.1");
    auto* handler = new cHttpHandlerFile(root.c_str());
    EXPECT_FALSE(handler->CanHandle(cHttpHandler::kMethodPost, "/a.zip", "zip", "", ""));
    server.InstallHandler(*handler);
    handler->Release();
    ASSERT_EQ(server.WaitUntilListening(), 0);

    TestClient client(server.Port());
    const struct {
        const char* url;
        const char* type;
        std::string body;
    } cases[] = {{"/a.zip?query", "application/zip", bytes},
                 {"/b.txt", "text/html", "text"},
                 {"/empty", "text/html", ""}};
    for (const auto& one : cases) {
        client.Send("GET " + std::string(one.url) + " HTTP/1.1\r\n\r\n");
        const auto reply = client.ReadReply();
        ASSERT_TRUE(reply) << one.url;
        EXPECT_THAT(reply->head, testing::HasSubstr("\r\nContent-Type: " + std::string(one.type) + "\r\n"));
        EXPECT_EQ(reply->body, one.body);
    }
    for (const char* missing : {"/c.txt", "/"}) {
        client.Send("GET " + std::string(missing) + " HTTP/1.1\r\n\r\n");
        const auto reply = client.ReadReply();
        ASSERT_TRUE(reply) << missing;
        EXPECT_THAT(reply->body, testing::HasSubstr("Resource not found"));
    }
    std::filesystem::remove_all(root);
}

} // namespace

#include "cHttpHandlerRPC.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "TestClient.h"
#include "cBuffer.h"
#include "cHttpServer.h"
#include "cMultipartRecord.h"
#include "cRPCExecutor.h"
#include "zRecord.h"
#include "zXMLRPC.h"

namespace {

class Bytes : public cBuffer {
  public:
    explicit Bytes(const std::string& bytes) : fBytes(bytes) { ++fAlive; }
    ~Bytes() override { --fAlive; }
    uint8_t* Data() override { return reinterpret_cast<uint8_t*>(fBytes.data()); }
    int Size() override { return static_cast<int>(fBytes.size()); }

    inline static std::atomic<int> fAlive = 0;

  private:
    std::string fBytes;
};

/// What an executor works on in one call.
struct Call {
    const zRecord& request;
    zRecord& reply;
    zRecord& multipart;
    zList<cBuffer*>& attachments;

    void Attach(const std::string& bytes, const char* id, int declaredSize) {
        cMultipartRecord message(multipart);
        const int section = message.AddSection(declaredSize, "image/jpg");
        message.AddSectionHeader(section, "Content-ID", id);
        attachments.Append(new Bytes(bytes));
    }
    void Attach(const std::string& bytes, const char* id) {
        Attach(bytes, id, static_cast<int>(bytes.size()));
    }
};

/// Runs one method by a function of the test.
class ScriptedExecutor : public cRPCExecutor {
  public:
    using Script = std::function<int(Call)>;
    ScriptedExecutor(const char* method, Script script) : fMethod(method), fScript(std::move(script)) {}

    bool RPC_ImplementsMethod(const char* method) override { return zString::string_equal(method, fMethod); }
    int RPC_ExecuteMethod(const char*, const zRecord& request, zRecord& reply, zRecord& multipart,
                          zList<cBuffer*>& attachments) override {
        return fScript({request, reply, multipart, attachments});
    }
    void RPC_DataSent() override { ++fSent; }
    int Sent() const { return fSent; }

  private:
    const char* fMethod;
    Script fScript;
    std::atomic<int> fSent = 0;
};

class RpcHandlerTest : public testing::Test {
  protected:
    RpcHandlerTest() : fServer(std::make_unique<cHttpServer>(0, 4095)) {
        Install("Version", [](Call call) {
            zXMLRPC response(call.reply);
            response.MakeResponse();
            response.AppendStringParam("1.0.5");
            return 0;
        });
    }
    ~RpcHandlerTest() override {
        StopServer();
        for (ScriptedExecutor* executor : fExecutors)
            executor->Release();
        EXPECT_EQ(Bytes::fAlive, 0);
    }

    ScriptedExecutor* Install(const char* method, ScriptedExecutor::Script script) {
        fExecutors.push_back(new ScriptedExecutor(method, std::move(script)));
        return fExecutors.back();
    }
    /// Opens the server to a client that is new at the first call.
    TestClient& Client() {
        if (fClient)
            return *fClient;
        auto* handler = new cHttpHandlerRPC("");
        for (ScriptedExecutor* executor : fExecutors)
            handler->InstallExecutor(*executor);
        fServer->InstallHandler(*handler);
        handler->Release();
        EXPECT_EQ(fServer->WaitUntilListening(), 0);
        fClient = std::make_unique<TestClient>(fServer->Port());
        return *fClient;
    }
    void StopServer() { fServer.reset(); }
    void ExpectUsableConnection() {
        const auto reply = Client().Call("vErSiOn");
        ASSERT_TRUE(reply);
        EXPECT_NE(reply->body.find("1.0.5"), std::string::npos) << reply->Bytes();
    }

    std::unique_ptr<cHttpServer> fServer;
    std::vector<ScriptedExecutor*> fExecutors;
    std::unique_ptr<TestClient> fClient;
};

TEST_F(RpcHandlerTest, PlainReplyIsXmlByteForByte) {
    const auto reply = Client().Call("Version");
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->Bytes(), "HTTP/1.1 200 OK\r\nConnection: Keep-Alive\r\nServer: quillon_httpd/0.1.0\r\n"
                              "Content-Type: text/xml\r\nContent-Length: 127\r\n\r\n"
                              "<methodResponse>\n\t<params>\n\t\t<param>\n\t\t\t<value>\n"
                              "\t\t\t\t<string>1.0.5</string>\n"
                              "\t\t\t</value>\n\t\t</param>\n\t</params>\n</methodResponse>\n");
}

TEST_F(RpcHandlerTest, ReplyWithAttachmentsIsMultipartByteForByte) {
    const std::string picture("\xFF\xD8\0\r\n--jpeg", 11);
    ScriptedExecutor* executor = Install("Picture", [&](Call call) {
        call.reply.SetCString(zRecord::kXMLTag, "response", 0);
        call.reply.SetCString("picture", "cid:one", 0);
        call.Attach(picture, "<one>");
        call.Attach("", "<two>");
        return 0;
    });
    const auto reply = Client().Call("Picture");
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->Bytes(),
              "HTTP/1.1 200 OK\r\nConnection: Keep-Alive\r\nServer: quillon_httpd/0.1.0\r\n"
              "MIME-Version: 1.0\r\n"
              "Content-Type: multipart/related;boundary=MimeBoundary_8923gr836bidfb3i\r\n"
              "Content-Length: " +
                  std::to_string(reply->body.size()) +
                  "\r\n\r\n"
                  "--MimeBoundary_8923gr836bidfb3i\r\nContent-Type: text/xml; charset=UTF-8\r\n\r\n"
                  "<response picture=\"cid:one\" />\n\r\n"
                  "--MimeBoundary_8923gr836bidfb3i\r\nContent-Type: image/jpg\r\nContent-ID: <one>\r\n\r\n" +
                  picture +
                  "\r\n"
                  "--MimeBoundary_8923gr836bidfb3i\r\nContent-Type: image/jpg\r\nContent-ID: <two>\r\n\r\n"
                  "\r\n"
                  "--MimeBoundary_8923gr836bidfb3i--");
    ExpectUsableConnection();
    StopServer();
    EXPECT_EQ(executor->Sent(), 1);
}

TEST_F(RpcHandlerTest, FailingMethodGetsNoBytesAndLeavesTheConnectionUsable) {
    ScriptedExecutor* executor = Install("Fails", [](Call call) {
        zXMLRPC(call.reply).MakeResponse();
        call.Attach("dropped", "<x>");
        return -1;
    });
    Client().Send(TestClient::Request(TestClient::MethodCall("Fails")));
    Client().SetReceiveTimeout(100);
    EXPECT_FALSE(Client().ReadReply());
    Client().SetReceiveTimeout(5000);
    ExpectUsableConnection();
    StopServer();
    EXPECT_EQ(executor->Sent(), 1);
}

TEST_F(RpcHandlerTest, SectionsThatDisagreeWithAttachmentsGiveTheEmptyFault) {
    Install("Mismatch", [](Call call) {
        call.Attach("one", "<one>");
        cMultipartRecord(call.multipart).AddSection(3, "image/jpg");
        return 0;
    });
    const auto reply = Client().Call("Mismatch");
    ASSERT_TRUE(reply);
    EXPECT_NE(reply->head.find("Content-Type: text/xml\r\n"), std::string::npos);
    EXPECT_EQ(reply->body,
              "<methodResponse><fault><value><struct><member><name></name><value><int></int></value>"
              "</member><member><name></name><value><string></string></value></member></struct>"
              "</value></fault></methodResponse>");
    ExpectUsableConnection();
}

TEST_F(RpcHandlerTest, SectionsWithoutAttachmentsAreIgnored) {
    Install("NoAttachment", [](Call call) {
        zXMLRPC(call.reply).MakeResponse();
        cMultipartRecord(call.multipart).AddSection(3, "image/jpg");
        return 0;
    });
    const auto reply = Client().Call("NoAttachment");
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->body, "<methodResponse />\n");
}

TEST_F(RpcHandlerTest, CallsWithoutAKnownMethodGetTheNotFoundPage) {
    for (const std::string_view body :
         {"<methodCall><methodName>Nobody</methodName></methodCall>", "<methodCall></methodCall>",
          "<methodCall>", "<methodCall><methodName></methodName></methodCall>", "<methodCall><methodNam"}) {
        const auto reply = Client().Post(body);
        ASSERT_TRUE(reply) << body;
        EXPECT_EQ(reply->body.size(), 126u) << body;
        EXPECT_NE(reply->body.find("Not Found"), std::string::npos) << body;
    }
    ExpectUsableConnection();
    StopServer();
    EXPECT_EQ(fExecutors.front()->Sent(), 1) << "only for the one method that ran";
}

TEST_F(RpcHandlerTest, BodyThatBreaksOffBehindItsMethodIsExecuted) {
    for (const std::string_view body : {"<methodCall><methodName>Version</methodName>",
                                        "<methodCall><methodName>Version</methodName><params><",
                                        "<?xml version=\"1.0\"?>\n<methodCall>\n "
                                        "<methodName>Version</methodName>\n</methodCall>\n trailing"}) {
        const auto reply = Client().Post(body, "/any/url");
        ASSERT_TRUE(reply) << body;
        EXPECT_NE(reply->body.find("1.0.5"), std::string::npos) << body;
    }
}

TEST_F(RpcHandlerTest, TakesOnlyPostsThatHoldACall) {
    const auto takes = [](int method, const char* text) {
        return cHttpHandlerRPC("").CanHandle(method, "/", "", "", text);
    };
    EXPECT_TRUE(takes(cHttpHandler::kMethodPost, "POST /<methodCall> HTTP/1.1"));
    EXPECT_FALSE(takes(cHttpHandler::kMethodPost, "POST / HTTP/1.1\r\n\r\n<methodcall>"));
    EXPECT_FALSE(takes(cHttpHandler::kMethodGet, "GET / HTTP/1.1\r\n\r\n<methodCall>"));
    EXPECT_FALSE(takes(cHttpHandler::kMethodPost, ""));
}

TEST_F(RpcHandlerTest, EachCallSeesItsOwnRequestOnly) {
    Install("Count", [](Call call) {
        zXMLRPC response(call.reply);
        response.MakeResponse();
        response.AppendInt32Param(call.request.ChildCount());
        return 0;
    });
    Client().Call("Count", "<params></params>");
    const auto reply = Client().Call("Count");
    ASSERT_TRUE(reply);
    EXPECT_NE(reply->body.find("<int>1</int>"), std::string::npos) << reply->body;
}

} // namespace

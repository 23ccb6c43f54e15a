#include "cHttpHandlerRPC.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "TestClient.h"
#include "cBuffer.h"
#include "cHttpServer.h"
#include "cMultipartRecord.h"
#include "cRPCExecutor.h"
#include "zRecord.h"
#include "zXMLRPC.h"

namespace {

const std::string kPicture("\xFF\xD8\0\r\n--jpeg", 11);
const std::string kXml = "<methodResponse>\n\t<params>\n\t\t<param>\n\t\t\t<value>\n\t\t\t\t<int>1</int>\n"
                         "\t\t\t</value>\n\t\t</param>\n\t</params>\n</methodResponse>\n";

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

/// Replies with the number of the request's children. All methods but "Version" send a picture and an empty
/// one, too.
class TestExecutor : public cRPCExecutor {
  public:
    bool RPC_ImplementsMethod(const char* method) override {
        const char* const known[] = {"Version", "Pictures", "OneTooMany", "Fails"};
        return std::any_of(std::begin(known), std::end(known),
                           [method](const char* name) { return zString::string_equal(method, name); });
    }
    int RPC_ExecuteMethod(const char* method, const zRecord& request, zRecord& reply, zRecord& multipart,
                          zList<cBuffer*>& attachments) override {
        zXMLRPC response(reply);
        response.MakeResponse();
        response.AppendInt32Param(request.ChildCount());
        if (zString::string_equal(method, "Version"))
            return 0;
        cMultipartRecord message(multipart);
        for (const std::string& picture : {kPicture, std::string()}) {
            const int section = message.AddSection(static_cast<int>(picture.size()), "image/jpg");
            message.AddSectionHeader(section, "Content-ID", picture.empty() ? "<two>" : "<one>");
            attachments.Append(new Bytes(picture));
        }
        if (zString::string_equal(method, "OneTooMany"))
            attachments.Append(new Bytes("third"));
        return zString::string_equal(method, "Fails") ? -1 : 0;
    }
    void RPC_DataSent() override { ++fSent; }
    int Sent() const { return fSent; }

  private:
    std::atomic<int> fSent = 0;
};

class RpcHandlerTest : public testing::Test {
  protected:
    RpcHandlerTest() {
        auto* handler = new cHttpHandlerRPC("");
        handler->InstallExecutor(*fExecutor);
        fServer->InstallHandler(*handler);
        handler->Release();
        EXPECT_EQ(fServer->WaitUntilListening(), 0);
        fClient = std::make_unique<TestClient>(fServer->Port());
    }
    ~RpcHandlerTest() override {
        fServer.reset();
        fExecutor->Release();
        EXPECT_EQ(Bytes::fAlive, 0);
    }
    std::string Call(const char* method, const char* params = "") {
        return Post(TestClient::MethodCall(method, params));
    }
    std::string Post(std::string_view body) {
        const auto reply = fClient->Post(body, "/any/url");
        return reply ? reply->Bytes() : "no reply";
    }

    TestExecutor* fExecutor = new TestExecutor;
    std::unique_ptr<cHttpServer> fServer = std::make_unique<cHttpServer>(0, 4095);
    std::unique_ptr<TestClient> fClient;
};

const std::string kHead = "HTTP/1.1 200 OK\r\nConnection: Keep-Alive\r\nServer: quillon_httpd/0.1.0\r\n";
const std::string kPlainReply = kHead + "Content-Type: text/xml\r\nContent-Length: 117\r\n\r\n" + kXml;

TEST_F(RpcHandlerTest, PlainReplyIsXmlByteForByte) {
    EXPECT_EQ(Call("vErSiOn"), kPlainReply);
    Call("Version", "<params></params>");
    EXPECT_EQ(Call("Version"), kPlainReply) << "nothing is left of the call before";
}

TEST_F(RpcHandlerTest, ReplyWithAttachmentsIsMultipartByteForByte) {
    const std::string body =
        "--MimeBoundary_8923gr836bidfb3i\r\nContent-Type: text/xml; charset=UTF-8\r\n\r\n" + kXml +
        "\r\n--MimeBoundary_8923gr836bidfb3i\r\nContent-Type: image/jpg\r\nContent-ID: <one>\r\n\r\n" +
        kPicture +
        "\r\n--MimeBoundary_8923gr836bidfb3i\r\nContent-Type: image/jpg\r\nContent-ID: <two>\r\n\r\n"
        "\r\n--MimeBoundary_8923gr836bidfb3i--";
    EXPECT_EQ(Call("Pictures"),
              kHead +
                  "MIME-Version: 1.0\r\n"
                  "Content-Type: multipart/related;boundary=MimeBoundary_8923gr836bidfb3i\r\n"
                  "Content-Length: " +
                  std::to_string(body.size()) + "\r\n\r\n" + body);
    EXPECT_EQ(Call("Version"), kPlainReply);
    fServer.reset();
    EXPECT_EQ(fExecutor->Sent(), 2);
}

TEST_F(RpcHandlerTest, FailingMethodGetsNoBytesAndLeavesTheConnectionUsable) {
    fClient->SetReceiveTimeout(100);
    EXPECT_EQ(Call("Fails"), "no reply");
    fClient->SetReceiveTimeout(5000);
    EXPECT_EQ(Call("Version"), kPlainReply);
    fServer.reset();
    EXPECT_EQ(fExecutor->Sent(), 2);
}

TEST_F(RpcHandlerTest, SectionsThatDisagreeWithAttachmentsGiveTheEmptyFault) {
    EXPECT_EQ(Call("OneTooMany"),
              kHead + "Content-Type: text/xml\r\nContent-Length: 198\r\n\r\n"
                      "<methodResponse><fault><value><struct><member><name></name><value><int></int></value>"
                      "</member><member><name></name><value><string></string></value></member></struct>"
                      "</value></fault></methodResponse>");
    EXPECT_EQ(Call("Version"), kPlainReply);
}

TEST_F(RpcHandlerTest, CallsWithoutAKnownMethodGetTheNotFoundPageUnderStatus200) {
    for (const char* body :
         {"<methodCall><methodName>Nobody</methodName></methodCall>", "<methodCall></methodCall>",
          "<methodCall>", "<methodCall><methodName></methodName></methodCall>", "<methodCall><methodNam",
          "<methodCall><methodName>Ver<sion/></methodName></methodCall>",
          "<methodCall>&undefined;<methodName>Version</methodName></methodCall>",
          "<methodCall><a></b><methodName>Version</methodName></methodCall>", "\xFF\xFE<methodCall>\x01",
          "<!DOCTYPE d [<!ENTITY a \"aa\">]><methodCall><methodName>&a;</methodName></methodCall>"})
        EXPECT_EQ(Post(body), kHead +
                                  "Content-Type: text/html\r\nContent-Length: 126\r\n\r\n"
                                  "<HTML><TITLE>Not Found</TITLE>\r\n\t<BODY><P>The server could not fulfill "
                                  "your request (Resource not found)</P>\r\n</BODY></HTML>\r\n")
            << body;
    EXPECT_EQ(Call("Version"), kPlainReply);
    fServer.reset();
    EXPECT_EQ(fExecutor->Sent(), 1) << "only for the one method that ran";
}

TEST_F(RpcHandlerTest, BodyThatBreaksOffBehindItsMethodIsExecuted) {
    for (const char* body :
         {"<methodCall><methodName>Version</methodName>", "<methodCall><methodName>Version</methodName><",
          "<?xml version=\"1.0\"?>\n<methodCall>\n <methodName>Version</methodName>\n</methodCall>\n "
          "trailing"})
        EXPECT_EQ(Post(body), kPlainReply) << body;
}

} // namespace

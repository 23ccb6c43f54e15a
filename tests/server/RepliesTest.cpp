// Replies byte for byte, as clients in the field expect them.

#include "ServerFixture.h"

namespace {

const std::string kHead = "HTTP/1.1 200 OK\r\nConnection: Keep-Alive\r\nServer: quillon_httpd/0.1.0\r\n";
const std::string kVersion =
    "<methodResponse>\n\t<params>\n\t\t<param>\n\t\t\t<value>\n\t\t\t\t<string>1.0.5</string>\n"
    "\t\t\t</value>\n\t\t</param>\n\t</params>\n</methodResponse>\n";

std::string with_length(const std::string& head, const std::string& body) {
    return head + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

const std::string kPlainReply = with_length(kHead + "Content-Type: text/xml\r\n", kVersion);

class RepliesTest : public ServerFixture {
  protected:
    std::string Call(const char* method, const std::string& params = "") {
        return Post(TestClient::MethodCall(method, params));
    }
    std::string Post(const std::string& body) {
        const auto reply = client.Post(body, "/any/url");
        return reply ? reply->Bytes() : "no reply";
    }

    TestClient client{Port()};
};

TEST_F(RepliesTest, OneValueIsPlainXML) {
    EXPECT_EQ(Call("cHECKcONNECTION"), kPlainReply);
    Call("CheckConnection", "<params></params>");
    EXPECT_EQ(Call("CheckConnection"), kPlainReply) << "nothing is left of the call before";
}

TEST_F(RepliesTest, WithAnAttachmentIsMultipart) {
    Call("Snapshot"); // Looks at the pointer, which is of 4 by 3 pixels of sevens.
    const std::string body =
        "--MimeBoundary_8923gr836bidfb3i\r\nContent-Type: text/xml; charset=UTF-8\r\n\r\n"
        "<response instance=\"0\" width=\"4\" height=\"3\" rowbytes=\"16\" colorspace=\"1650946657\" "
        "section_rect_1=\"0,0,3,2\" mouse_shape=\"cid:id_mouse_shape\" error=\"0\" />\n"
        "\r\n--MimeBoundary_8923gr836bidfb3i\r\nContent-Type: application/cursor-binary\r\n"
        "Content-ID: <id_mouse_shape>\r\n\r\n" +
        std::string(4 * 3 * 4, 7) + "\r\n--MimeBoundary_8923gr836bidfb3i--";
    EXPECT_EQ(Call("SnapshotMouse", StructParam(Member("mouse_id", "int", "1"))),
              with_length(kHead +
                              "MIME-Version: 1.0\r\n"
                              "Content-Type: multipart/related;boundary=MimeBoundary_8923gr836bidfb3i\r\n",
                          body));
    EXPECT_EQ(Call("CheckConnection"), kPlainReply);
}

TEST_F(RepliesTest, AFailingMethodGetsNoBytesAndLeavesTheConnectionUsable) {
    client.SetReceiveTimeout(100);
    EXPECT_EQ(Call("SnapshotMouse", StructParam(Member("mouse_id", "int", "99"))), "no reply");
    client.SetReceiveTimeout(30000);
    EXPECT_EQ(Call("CheckConnection"), kPlainReply);
}

TEST_F(RepliesTest, CallsWithoutAKnownMethodGetTheNotFoundPageUnderStatus200) {
    const std::string notFound = "<HTML><TITLE>Not Found</TITLE>\r\n\t<BODY><P>The server could not fulfill "
                                 "your request (Resource not found)</P>\r\n</BODY></HTML>\r\n";
    for (const char* body :
         {"<methodCall><methodName>Nobody</methodName></methodCall>", "<methodCall></methodCall>",
          "<methodCall>", "<methodCall><methodName></methodName></methodCall>", "<methodCall><methodNam",
          "<methodCall><methodName>Snap<shot/></methodName></methodCall>",
          "<methodCall>&undefined;<methodName>Snapshot</methodName></methodCall>",
          "<methodCall><a></b><methodName>Snapshot</methodName></methodCall>", "\xFF\xFE<methodCall>\x01",
          "<!DOCTYPE d [<!ENTITY a \"aa\">]><methodCall><methodName>&a;</methodName></methodCall>"})
        EXPECT_EQ(Post(body), with_length(kHead + "Content-Type: text/html\r\n", notFound)) << body;
    EXPECT_EQ(Call("CheckConnection"), kPlainReply);
}

TEST_F(RepliesTest, ABodyThatBreaksOffBehindItsMethodIsExecuted) {
    for (const char* body :
         {"<methodCall><methodName>CheckConnection</methodName>",
          "<methodCall><methodName>CheckConnection</methodName><params><par",
          "<?xml version=\"1.0\"?>\n<methodCall>\n <methodName>CheckConnection</methodName>\n"
          "</methodCall>\n trailing"})
        EXPECT_EQ(Post(body), kPlainReply) << body;
}

} // namespace

#include "cXMLRPC.h"

#include <gmock/gmock.h>

#include "ScriptedServer.h"
#include "TestFolder.h"
#include "cLogger.h"
#include "zBuffer.h"
#include "zRecord.h"
#include "zXMLRPC.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;

const std::string kReply =
    "<methodResponse><params><param><value><string>yes</string></value></param></params>"
    "</methodResponse>";

std::string head(const std::string& type, size_t length) {
    return "HTTP/1.1 200 OK\r\nContent-Type: " + type + "\r\nContent-Length: " + std::to_string(length) +
           "\r\n\r\n";
}

/// What one call gives, and what it found.
int call(cXMLRPC& client, zRecord& reply, bool escape = false) {
    zRecord request;
    zXMLRPC(request).SetMethod("ask");
    zXMLRPC(request).AppendStringParam("h\u00e9");
    zBuffer response;
    const int begun = client.Request_Begin(&response, request, escape);
    if (begun != 0)
        return begun;
    client.Request_BlockForResponse();
    const int result = client.Request_ResponseAsXML(reply);
    client.Request_End();
    return result;
}

TEST(XmlRpcClientTest, CallsAndReadsResponses) {
    ScriptedServer::Answer answer{head("text/xml", kReply.size()) + kReply};
    ScriptedServer server([&](const std::string&) { return answer; });
    cXMLRPC client(server.URL().c_str(), 60);
    EXPECT_TRUE(client.IsConfigured());
    zRecord none;
    EXPECT_EQ(client.Request_ResponseAsXML(none), -1) << "nothing was asked";

    zRecord reply;
    zString text;
    ASSERT_EQ(call(client, reply), 0);
    EXPECT_EQ(zXMLRPC(reply).GetStringParam(0, text), 0);
    EXPECT_STREQ(text, "yes");
    const std::string body = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"
                             "<methodCall><methodName>ask</methodName><params><param><value><string>h\u00e9</"
                             "string></value></param>"
                             "</params></methodCall>";
    EXPECT_THAT(server.Request(), HasSubstr("POST / HTTP/1.1\r\n"));
    EXPECT_THAT(server.Request(), HasSubstr("\r\nContent-Type: text/xml\r\n"));
    EXPECT_THAT(server.Request(), EndsWith("\r\n\r\n" + body));
    call(client, none, true);
    EXPECT_THAT(server.Request(), HasSubstr("<string>h&amp;#x00E9;</string>"));

    const struct {
        ScriptedServer::Answer answer;
        int result;
    } cases[] = {
        {{"HTTP/1.1 200 OK\r\nContent-Type: multipart/x\r\n\r\n" + kReply, ScriptedServer::kClose}, 0},
        {{head("Multipart/related; boundary=x", kReply.size()) + kReply}, cXMLRPC::kMultipartResponse},
        {{head("text/xml", 4) + "text"}, -1},
        {{"HTTP/1.1 500 No\r\nContent-Length: 0\r\n\r\n"}, -29500},
        {{"", ScriptedServer::kClose}, -21302},
    };
    for (const auto& one : cases) {
        answer = one.answer;
        zRecord found;
        EXPECT_EQ(call(client, found), one.result) << one.answer.bytes;
    }
}

TEST(XmlRpcClientTest, EscapesWhatIsNoASCII) {
    zString text;
    EXPECT_EQ(cXMLRPC::convert_utf8_to_escapes(text, "a<\u00e9\u20ac\U0001f600\0z", 13), 0);
    EXPECT_STREQ(text, "a<&amp;#x00E9;&amp;#x20AC;&amp;#xD83D;&amp;#xDE00;");
    EXPECT_EQ(cXMLRPC::convert_utf8_to_escapes(text, "\xff", 1), -1);
    zRecord record;
    EXPECT_EQ(cXMLRPC::MakeErrorResponse(record, -14), -14);
    int code = 0;
    EXPECT_TRUE(zXMLRPC(record).FaultInfo(text, code));
    EXPECT_STREQ(text, "transport fault");
    EXPECT_EQ(code, -14);
}

} // namespace

#include "zXMLRPC.h"

#include <gtest/gtest.h>

#include <string>

#include "zBuffer.h"
#include "zRect.h"
#include "zString.h"
#include "zXML.h"

namespace {

std::string Written(const zRecord& record) {
    zBuffer buffer;
    EXPECT_EQ(zXML::RecordToBuffer(&buffer, record, zXML::kAll, false, false), 0);
    return std::string(buffer.Data(), buffer.Size());
}

int Parse(zRecord& root, const std::string& text) {
    return zXML::ParseBuffer(zXML::kAll, &root, text.c_str(), -1);
}

/// A call with one parameter, as a client sends it.
std::string CallWith(const std::string& param) {
    return "<?xml version=\"1.0\"?>\n<methodCall>\n <methodName>Snapshot</methodName>\n <params>\n  <param>" +
           param + "</param>\n </params>\n</methodCall>\n";
}

std::string Member(const std::string& name, const std::string& value) {
    return "<member><name>" + name + "</name><value>" + value + "</value></member>\n";
}

} // namespace

TEST(XMLRPC, FaultsCarryCodeAndMessage) {
    zRecord reply;
    zXMLRPC(reply).SetFault("M", -1);
    EXPECT_EQ(Written(reply), "<methodResponse>\n\t<fault>\n\t\t<value>\n\t\t\t<struct>\n"
                              "\t\t\t\t<member>\n\t\t\t\t\t<name>faultCode</name>\n\t\t\t\t\t<value>\n"
                              "\t\t\t\t\t\t<int>-1</int>\n\t\t\t\t\t</value>\n\t\t\t\t</member>\n"
                              "\t\t\t\t<member>\n\t\t\t\t\t<name>faultString</name>\n\t\t\t\t\t<value>\n"
                              "\t\t\t\t\t\t<string>M</string>\n\t\t\t\t\t</value>\n\t\t\t\t</member>\n"
                              "\t\t\t</struct>\n\t\t</value>\n\t</fault>\n</methodResponse>\n");
    zRecord again;
    ASSERT_EQ(Parse(again, Written(reply)), 0);
    zString message;
    int code = 5;
    EXPECT_TRUE(zXMLRPC(again).IsFault());
    EXPECT_TRUE(zXMLRPC(again).FaultInfo(message, code));
    EXPECT_STREQ(message, "M");
    EXPECT_EQ(code, -1);
    EXPECT_FALSE(zXMLRPC(*again.Child(0)).IsFault());
}

TEST(XMLRPC, ParametersComeBackByIndexAndType) {
    zRecord call;
    zXMLRPC rpc(call);
    zRecord array;
    array.AddChild(new zRecord("item"));
    array.Child(0)->SetInt32("n", 3);
    array.SetCString("note", "in the tree only");
    rpc.SetMethod("Old");
    rpc.SetMethod("New");
    rpc.AppendStringParam("text & more");
    rpc.AppendInt32Param(-1); // goes out unsigned
    rpc.AppendBoolParam(true);
    rpc.AppendStructArrayParam(array);
    rpc.AppendZRecordParam(array);
    EXPECT_NE(Written(call).find("<int>4294967295</int>"), std::string::npos);
    zRecord parsed;
    ASSERT_EQ(Parse(parsed, Written(call)), 0);

    const zXMLRPC view(static_cast<const zRecord&>(parsed));
    EXPECT_STREQ(view.GetMethod(), "New");
    zString text;
    int number = 7;
    bool truth = false;
    EXPECT_EQ(view.GetStringParam(0, text), 0);
    EXPECT_STREQ(text, "text &more") << "an entity ends a piece, and the next one loses its blank";
    for (const int index : {0, -1, 99}) // another type, and no parameter
        EXPECT_EQ(view.GetInt32Param(index, &number), -1) << index;
    EXPECT_EQ(number, 7);
    EXPECT_EQ(view.GetBoolParam(2, truth), 0);
    EXPECT_TRUE(truth);
    zRecord rows;
    EXPECT_EQ(view.GetStructArrayParam(3, rows), 0);
    ASSERT_EQ(rows.ChildCount(), 1);
    EXPECT_EQ(rows.Child(0)->AsInt32("n", -1), 3);
    zRecord tree;
    EXPECT_EQ(view.GetZRecordParam(4, tree), 0);
    EXPECT_STREQ(tree.AsCString("note", ""), "in the tree only");
    EXPECT_EQ(tree.Child(0)->AsInt32("n", -1), 3);
    EXPECT_EQ(view.GetZRecordParam(3, tree), -1);
}

TEST(XMLRPC, StructsTakeKindsFromTheirTexts) {
    zRecord call;
    ASSERT_EQ(Parse(call, CallWith("<value><struct>" + Member("quality", "<string>normal</string>") +
                                   Member("n", "<string>12</string>") + Member("bare", "text") +
                                   Member("rect", "<string>1,2,3,4</string>") +
                                   Member("empty", "<string></string>") +
                                   Member("nested", "<struct>" + Member("x", "1") + "</struct>") +
                                   Member("twice", "1") + Member("twice", "2") + Member("none", "") +
                                   "<other/><member><name>lonely</name></member></struct></value>")),
              0);
    zRecord out;
    ASSERT_EQ(zXMLRPC(call).GetStructParam(0, out), 0);
    EXPECT_STREQ(out.AsCString("quality", ""), "normal");
    EXPECT_EQ(out.VariableTypeByID(static_cast<unsigned int>(zStringID::ID("n"))), zVariable::kInt32);
    EXPECT_STREQ(out.AsCString("bare", ""), "text");
    EXPECT_EQ(out.AsRect("rect", zRect()), zRect(1, 2, 3, 4));
    EXPECT_STREQ(out.AsCString("empty", "absent"), "");
    EXPECT_STREQ(out.AsCString("nested", "absent"), "") << "the reader does not go down";
    EXPECT_EQ(out.AsInt32("twice", 0), 2);
    EXPECT_FALSE(out.ExistsName("none"));
    EXPECT_FALSE(out.ExistsName("lonely"));
    EXPECT_EQ(zXMLRPC(call).GetStructParam(1, out), -1);
}

TEST(XMLRPC, StructsNameTheirMembersByKind) {
    zRecord source("ignored");
    source.SetBool("flag", true);
    source.SetInt64("wide", 8);
    source.SetCString("bits", "QUJD");
    source.AddChild(new zRecord("inner"));
    source.Child(0)->SetInt32("x", 1);
    zRecord call;
    zXMLRPC(call).AppendStructParam(source);
    const std::string text = Written(call);
    for (const char* part : {"<int>1</int>", "<string>8</string>", "<base64>QUJD</base64>",
                             "<name>inner</name>", "<name>x</name>"})
        EXPECT_NE(text.find(part), std::string::npos) << part;
}

TEST(XMLRPC, BooleansGoByTheirFirstCharacter) {
    const std::pair<const char*, int> cases[] = {{"1", 1},     {"true", 1}, {"T", 1},  {"0", 0},
                                                 {"false", 0}, {"F", 0},    {"2", -1}, {"", -1}};
    for (const auto& [text, expected] : cases) {
        zRecord node("boolean");
        zXML::AddTextChild(node, text, -1);
        bool value = expected != 1;
        EXPECT_EQ(zXMLRPC::xmlrpc_to_boolean(&node, value), expected < 0 ? -1 : 0) << text;
        EXPECT_EQ(value, expected != 0) << text;
    }
}

TEST(XMLRPC, EveryPrefixOfACallIsReadWithoutHarm) {
    const std::string call = CallWith("<value><struct>" + Member("a&amp;b", "<int>12</int>") +
                                      Member("c", "<![CDATA[1]]>") + "</struct></value>");
    const size_t nameEnd = call.find("</methodName>") + std::string("</methodName>").size();
    const size_t nameStart = call.find("<methodName>") + std::string("<methodName>").size();
    for (size_t length = 0; length <= call.size(); ++length) {
        zRecord root;
        Parse(root, call.substr(0, length));
        const char* method = zXMLRPC(root).GetMethod();
        zRecord out;
        zXMLRPC(root).GetStructParam(0, out);
        if (length < nameStart) {
            ASSERT_EQ(method, nullptr) << length;
        } else if (length >= nameEnd) {
            ASSERT_STREQ(method, "Snapshot") << length;
        }
    }
}

TEST(XMLRPC, StructsWithAbsurdlyManyMembersAreRefused) {
    std::string members;
    for (int i = 0; i <= zXMLRPC::kMaxMembers; ++i)
        members += Member("m", "1");
    zRecord call;
    ASSERT_EQ(Parse(call, CallWith("<value><struct>" + members + "</struct></value>")), 0);
    zRecord out;
    EXPECT_EQ(zXMLRPC(call).GetStructParam(0, out), -1);
    EXPECT_TRUE(out.IsEmpty());
}

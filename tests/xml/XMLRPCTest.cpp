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

/// A call with a struct, as a client sends it.
std::string CallWith(const std::string& members) {
    return "<?xml version=\"1.0\"?>\n<methodCall>\n <methodName>Snapshot</methodName>\n <params>\n  <param>"
           "<value><struct>" +
           members + "</struct></value></param>\n </params>\n</methodCall>\n";
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
    EXPECT_TRUE(zXMLRPC(again).FaultInfo(message, code));
    EXPECT_STREQ(message, "M");
    EXPECT_EQ(code, -1);
}

TEST(XMLRPC, ParametersComeBackByIndexAndType) {
    zRecord call, array, parsed;
    zXMLRPC rpc(call);
    array.AddChild(new zRecord("item"));
    array.Child(0)->SetInt32("n", 3);
    array.SetCString("note", "in the tree only");
    rpc.SetMethod("Old");
    rpc.SetMethod("New");
    rpc.AppendStringParam("text & more");
    rpc.AppendInt32Param(-1);
    rpc.AppendBoolParam(true);
    rpc.AppendStructArrayParam(array);
    rpc.AppendZRecordParam(array);
    EXPECT_NE(Written(call).find("<int>4294967295</int>"), std::string::npos) << "numbers go out unsigned";
    ASSERT_EQ(Parse(parsed, Written(call)), 0);

    const zXMLRPC view(static_cast<const zRecord&>(parsed));
    EXPECT_STREQ(view.GetMethod(), "New");
    zString text;
    EXPECT_EQ(view.GetStringParam(0, text), 0);
    EXPECT_STREQ(text, "text &more") << "an entity ends a piece, and the next one loses its blank";
    int number = 7;
    for (const int index : {0, -1, 99}) // another type, and no parameter
        EXPECT_EQ(view.GetInt32Param(index, &number), -1) << index;
    EXPECT_EQ(number, 7);
    bool truth = false;
    EXPECT_EQ(view.GetBoolParam(2, truth), 0);
    EXPECT_TRUE(truth);
    zRecord rows, tree;
    EXPECT_EQ(view.GetStructArrayParam(3, rows), 0);
    EXPECT_EQ(view.GetZRecordParam(4, tree), 0);
    EXPECT_EQ(view.GetZRecordParam(3, tree), -1);
    EXPECT_STREQ(tree.AsCString("note", ""), "in the tree only");
    for (const zRecord* parent : {&rows, &tree}) {
        ASSERT_EQ(parent->ChildCount(), 1);
        EXPECT_EQ(parent->Child(0)->AsInt32("n", -1), 3);
    }
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

TEST(XMLRPC, StructsTakeKindsFromTheirTexts) {
    const struct {
        const char *name, *value, *text;
    } cases[] = {
        {"quality", "<string>normal</string>", "normal"},
        {"n", "<string>12</string>", "12"},
        {"bare", "text", "text"},
        {"rect", "<string>1,2,3,4</string>", "1,2,3,4"},
        {"empty", "<string></string>", ""},
        {"nested", "<struct><member/></struct>", ""}, // the reader does not go down
        {"twice", "1", "2"},
        {"twice", "2", "2"},
        {"none", "", "absent"},
    };
    std::string members = "<other/><member><name>lonely</name></member>";
    for (const auto& c : cases)
        members += Member(c.name, c.value);
    zRecord call, out;
    ASSERT_EQ(Parse(call, CallWith(members)), 0);
    ASSERT_EQ(zXMLRPC(call).GetStructParam(0, out), 0);
    for (const auto& c : cases)
        EXPECT_STREQ(out.AsCString(c.name, "absent"), c.text);
    EXPECT_EQ(out.VariableTypeByID(static_cast<unsigned int>(zStringID::ID("n"))), zVariable::kInt32);
    EXPECT_FALSE(out.ExistsName("lonely"));
    EXPECT_EQ(zXMLRPC(call).GetStructParam(1, out), -1);
}

TEST(XMLRPC, BooleansGoByTheirFirstCharacter) {
    for (const auto& [text, expected] :
         {std::pair{"1", 1}, {"true", 1}, {"0", 0}, {"F", 0}, {"2", -1}, {"", -1}}) {
        zRecord node("boolean");
        zXML::AddTextChild(node, text, -1);
        bool value = expected != 1;
        EXPECT_EQ(zXMLRPC::xmlrpc_to_boolean(&node, value), expected < 0 ? -1 : 0) << text;
        EXPECT_EQ(value, expected != 0) << text;
    }
}

TEST(XMLRPC, EveryPrefixOfACallIsReadWithoutHarm) {
    const std::string call = CallWith(Member("a&amp;b", "<int>12</int>") + Member("c", "<![CDATA[1]]>"));
    for (size_t length = 0; length <= call.size(); ++length) {
        zRecord root, out;
        Parse(root, call.substr(0, length));
        zXMLRPC(root).GetStructParam(0, out);
        const char* method = zXMLRPC(root).GetMethod();
        if (length < call.find("Snapshot")) {
            ASSERT_EQ(method, nullptr) << length;
        } else if (length >= call.find("<params>")) {
            ASSERT_STREQ(method, "Snapshot") << length;
        }
    }
}

TEST(XMLRPC, StructsWithAbsurdlyManyMembersAreRefused) {
    std::string members;
    for (int i = 0; i <= zXMLRPC::kMaxMembers; ++i)
        members += Member("m", "1");
    zRecord call, out;
    ASSERT_EQ(Parse(call, CallWith(members)), 0);
    EXPECT_EQ(zXMLRPC(call).GetStructParam(0, out), -1);
    EXPECT_TRUE(out.IsEmpty());
}

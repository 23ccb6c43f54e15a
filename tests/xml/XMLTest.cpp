#include "zXML.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "TestFolder.h"
#include "zBuffer.h"
#include "zString.h"

namespace {

std::string Written(const zRecord& record, unsigned int options = zXML::kAll) {
    zBuffer buffer;
    EXPECT_EQ(zXML::RecordToBuffer(&buffer, record, options, false, false), 0);
    return std::string(buffer.Data(), buffer.Size());
}

int Parse(zRecord& root, const std::string& text, unsigned int options = zXML::kAll) {
    return zXML::ParseBuffer(options, &root, text.c_str(), -1);
}

std::string Again(const std::string& text, unsigned int readOptions = zXML::kAll,
                  unsigned int writeOptions = zXML::kAll) {
    zRecord root;
    EXPECT_EQ(Parse(root, text, readOptions), 0) << text;
    return Written(root, writeOptions);
}

std::string Repeat(const std::string& text, int count) {
    std::string result;
    while (count-- > 0)
        result += text;
    return result;
}

} // namespace

TEST(XML, DocumentsComeBackAsTheyWere) {
    const char* const kDocuments[] = {
        "<a b=\"1\" />\n",
        "<a>\n\t<b>text</b>\n\t<c x=\"1,2,3,4\" y=\"word\" />\n</a>\n",
        "<a>text<b />more</a>", // mixed content gets no white space, and no line end as the outermost element
        "<a>\n\t<b>&lt;&amp;&gt;&quot;&apos;\xC3\xA4</b>\n</a>\n",
    };
    for (const char* document : kDocuments)
        EXPECT_EQ(Again(document), document);
    EXPECT_EQ(Again("<?xml version=\"1.0\"?><!-- no --><a><![CDATA[1<2]]></a>"), "<a>1&lt;2</a>");
    EXPECT_EQ(Again("<!DOCTYPE a SYSTEM 'a.dtd'><a />"), "<a />\n");
    EXPECT_EQ(Again("<a b='1.50' c='+1'/>"), "<a b=\"1.5\" c=\"+1\" />\n");
}

TEST(XML, OptionsSelectWhatIsReadAndWritten) {
    const char* const kDocument = "<a x=\"1\"><b>text</b></a>";
    EXPECT_EQ(Again(kDocument, zXML::kAll, zXML::kAttributes), "<a x=\"1\"><b></b></a>");
    EXPECT_EQ(Again(kDocument, zXML::kText, zXML::kAttributes | zXML::kText), "<a><b>text</b></a>");
}

TEST(XML, WhiteSpaceGoesFromTheStartOfEachPiece) {
    zRecord joined;
    EXPECT_EQ(Parse(joined, "<a>\n\t one \n\t two\n<b/> \n</a>"), 0);
    EXPECT_STREQ(zXML::GetText(joined, 0), "one two");
    EXPECT_EQ(joined.ChildCount(), 2) << "a run of white space only is dropped";
    zRecord kept;
    EXPECT_EQ(Parse(kept, "<a>\n one\r\ntwo<b/> </a>", zXML::kAttributes | zXML::kText), 0);
    EXPECT_STREQ(zXML::GetText(kept, 0), "\n one\ntwo");
    EXPECT_STREQ(zXML::GetText(kept, 1), " ");
}

TEST(XML, MalformedDocumentsKeepWhatWasRead) {
    zRecord root;
    EXPECT_EQ(Parse(root, "<a><b>text</b><c>"), -1);
    EXPECT_EQ(root.ChildCount(), 2);
    EXPECT_STREQ(zXML::GetText(*root.Child(0), 0), "text");
    for (const char* text :
         {"", "no angle", "<a></b>", "<a>&undefined;</a>", "<a b='1' b='2'/>", "<a>\xFF</a>", ">"}) {
        zRecord other;
        EXPECT_EQ(Parse(other, text), -1) << text;
    }
    zRecord trailing;
    EXPECT_EQ(Parse(trailing, "<a/> trailing bytes"), 0);
    EXPECT_EQ(zXML::ParseBuffer(zXML::kAll, &trailing, "<a/></a>", 4), 0) << "the length counts";
}

TEST(XML, ANonEmptyRootIsAddedTo) {
    zRecord root;
    EXPECT_EQ(Parse(root, "<a x='1'>one</a>"), 0);
    EXPECT_EQ(Parse(root, "<b y='2'>two<c/></b>"), 0);
    EXPECT_EQ(Written(root), "<b x=\"1\" y=\"2\">onetwo<c /></b>");
}

TEST(XML, HostileDocumentsAreRefusedCheaply) {
    zRecord deep;
    EXPECT_EQ(Parse(deep, Repeat("<a b='1'>text", 100000)), -1);
    EXPECT_EQ(zXML::LocateTag(deep, zRecord::kXMLTag, "none"), nullptr);
    EXPECT_GT(Written(deep).size(), zXML::kMaxDepth);
    zRecord balanced;
    EXPECT_EQ(Parse(balanced, Repeat("<a>", zXML::kMaxDepth) + Repeat("</a>", zXML::kMaxDepth)), 0);

    for (const char* declarations : {"<!ENTITY e '<b/>'>", "<!ATTLIST a b CDATA '1'>"}) {
        zRecord declared;
        EXPECT_EQ(Parse(declared, std::string("<!DOCTYPE a [") + declarations + "]><a>text</a>"), -1);
        EXPECT_TRUE(declared.IsEmpty()) << declarations;
    }

    std::string attributes = "<a";
    for (unsigned int i = 0; i <= zXML::kMaxAttributes; ++i)
        attributes += " a" + std::to_string(i) + "=''";
    zRecord crowded;
    EXPECT_EQ(Parse(crowded, attributes + "/>"), -1);

    zRecord pieces; // 400,000 pieces of one run
    EXPECT_EQ(Parse(pieces, "<a>" + Repeat("x\n", 200000) + "</a>", zXML::kText), 0);
    EXPECT_EQ(std::strlen(zXML::GetText(pieces, 0)), 400000u);
}

TEST(XML, ValuesThatCannotBeWrittenAreLeftOutAlone) {
    zRecord root("a");
    root.SetCString("bad", "bell\x07");
    root.SetInt32("good", 1);
    root.SetCString("long", Repeat("&", 2000).c_str());
    EXPECT_EQ(Written(root), "<a good=\"1\" long=\"" + Repeat("&amp;", 2000) + "\" />\n");
    zXML::AddTextChild(root, "also \x01 bad", -1);
    EXPECT_EQ(Written(root, zXML::kText), "<a></a>");
}

TEST(XML, BuffersAndFilesCarryDocuments) {
    zRecord root;
    EXPECT_EQ(Parse(root, "<a><b c='d'>" + Repeat("word", 3000) + "</b></a>"), 0);
    zBuffer buffer;
    EXPECT_EQ(zXML::RecordToBuffer(&buffer, root, zXML::kAll, true, true), 0);
    EXPECT_EQ(std::string(buffer.Data()), kXML_Header + Written(root)) << "ends in a zero byte";
    EXPECT_EQ(std::strlen(buffer.Data()) + 1, buffer.Size());

    const TestFolder folder;
    const std::string path = folder / "document.xml";
    EXPECT_EQ(zXML::WriteFile(zXML::kAll, &root, path.c_str(), "\r\n", 1), 0);
    zRecord again;
    EXPECT_EQ(zXML::ParseFile(zXML::kAll, &again, path.c_str()), 0);
    EXPECT_TRUE(zXML::AreRecordsEqualUsingXMLBuffers(root, again));
    again.Child(0)->SetInt32("c", 1);
    EXPECT_FALSE(zXML::AreRecordsEqualUsingXMLBuffers(root, again));
    EXPECT_EQ(zXML::ParseFile(zXML::kAll, &again, (path + ".none").c_str()), -1);
}

TEST(XML, EncodesIntoLimitedRoom) {
    char target[99];
    for (unsigned int room = 0; room <= 8; ++room) {
        std::memset(target, 'X', sizeof target);
        unsigned int size = room;
        EXPECT_EQ(zXML::EncodeString("ab&", target, &size, nullptr), room > 7 ? 0 : -1);
        EXPECT_EQ(size, 7u);
        EXPECT_EQ(target[8], 'X') << "nothing beyond the room";
    }
    zString lines;
    EXPECT_EQ(zXML::EncodeString("a\r\nb\n\rc\rd\ne\tf", lines), 0);
    EXPECT_STREQ(lines, "a\nb\nc\nd\ne\tf");

    unsigned int size = sizeof target;
    zXML::EncodeStringHTML("<\xC3\x84\xC3\xBC\xC3\x85>\xC2\xA1\xC2\xA9 \xE2\t~\r\n\xC3", target, &size);
    EXPECT_STREQ(target, "&lt;&Auml;&uuml;&#197;&gt;&iexcl;&???; &#226;&#9;~\n&#195;");
}

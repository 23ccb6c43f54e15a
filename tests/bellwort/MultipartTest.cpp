#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "cBoyerMoore.h"
#include "cMultipartReader.h"
#include "cMultipartRecord.h"
#include "cMultipartWriter.h"
#include "cUtils.h"
#include "zRecord.h"

namespace {

using Section = cMultipartRecord::Section;

/// The whole message as a sender puts it on the wire.
std::string write_message(zRecord& record, const std::vector<std::string>& data) {
    cMultipartWriter writer(record);
    zString text;
    std::string message = writer.GetHttpHeader(text, true);
    const size_t head = message.size();
    for (size_t i = 0; i < data.size(); ++i) {
        message += i > 0 ? "\r\n" : "";
        message += writer.GetSectionHeader(text, static_cast<int>(i));
        message += data[i];
    }
    message += "\r\n";
    message += writer.GetMessageFooter(text);
    EXPECT_EQ(static_cast<long>(message.size() - head), writer.ContentLength());
    return message;
}

int parse(cMultipartReader& reader, const std::string& message) {
    return reader.Parse_WithHeaders(message.data(), static_cast<int>(message.size()));
}

std::string section_data(cMultipartReader& reader, const Section& section, const std::string& message) {
    const char* data = nullptr;
    int size = 0;
    EXPECT_EQ(reader.GetSectionData(section, message.data(), static_cast<int>(message.size()), &data, &size),
              0);
    return {data, static_cast<size_t>(size)};
}

TEST(MultipartTest, WritesTheMessageByteForByte) {
    zRecord record;
    cMultipartRecord message(record);
    EXPECT_EQ(message.AddSection(5, "text/xml; charset=UTF-8"), 0);
    EXPECT_EQ(message.AddSection(3, "image/jpg"), 1);
    message.AddSectionHeader(1, "Content-ID", "<id>");
    message.AddSectionHeader(2, "Content-ID", "<none>");
    EXPECT_EQ(write_message(record, {"<xml>", "jpg"}),
              "MIME-Version: 1.0\r\n"
              "Content-Type: multipart/related;boundary=MimeBoundary_8923gr836bidfb3i\r\n"
              "Content-Length: 197\r\n\r\n"
              "--MimeBoundary_8923gr836bidfb3i\r\nContent-Type: text/xml; charset=UTF-8\r\n\r\n<xml>\r\n"
              "--MimeBoundary_8923gr836bidfb3i\r\nContent-Type: image/jpg\r\nContent-ID: <id>\r\n\r\njpg\r\n"
              "--MimeBoundary_8923gr836bidfb3i--");
    zString text;
    EXPECT_STREQ(cMultipartWriter(record).GetSectionHeader(text, 7),
                 "--MimeBoundary_8923gr836bidfb3i\r\n\r\n");
}

TEST(MultipartTest, RoundTripKeepsEverySection) {
    for (unsigned int seed = 1; seed <= 60; ++seed) {
        std::mt19937 random(seed);
        zRecord sent;
        cMultipartRecord message(sent);
        if (seed % 3 == 0)
            sent.SetCString("__quillon_mime_boundry", "--b=?'", 0);
        std::vector<std::string> data(random() % 6);
        for (size_t i = 0; i < data.size(); ++i) {
            data[i].resize(random() % 3000);
            // Few letters, so that beginnings of the boundary are frequent.
            std::generate(data[i].begin(), data[i].end(), [&] { return "\r\n-Mb\0\xFF"[random() % 7]; });
            message.AddSection(static_cast<int>(data[i].size()), random() % 2 ? "a/b" : nullptr);
            for (int headers = static_cast<int>(random() % 3); headers > 0; --headers)
                message.AddSectionHeader(static_cast<int>(i), ("X-" + std::to_string(headers)).c_str(),
                                         "v: w");
        }
        const std::string bytes = write_message(sent, data);

        zRecord received;
        cMultipartReader reader(received);
        // The reader takes its first section on trust, so that only a message without any is refused.
        ASSERT_EQ(parse(reader, bytes), data.empty() ? -1 : 0) << seed;
        if (data.empty())
            continue;
        ASSERT_EQ(received.ChildCount(), static_cast<int>(data.size())) << seed;
        for (int i = 0; i < received.ChildCount(); ++i) {
            Section from;
            Section to;
            message.GetSection(from, i);
            cMultipartRecord(received).GetSection(to, i);
            EXPECT_EQ(section_data(reader, to, bytes), data[static_cast<size_t>(i)]) << seed;
            ASSERT_EQ(to.HeaderCount(), from.HeaderCount()) << seed;
            zString name, value;
            for (int header = 0; from.HeaderByIndex(header, name, value) == 0; ++header)
                EXPECT_STREQ(to.HeaderByName(name, "missing"), value) << seed;
        }
    }
}

TEST(MultipartTest, ReaderRefusesMessagesCutShortAndSurvivesAnyBytes) {
    zRecord sent;
    cMultipartRecord message(sent);
    message.AddSection(3, "a/b");
    message.AddSection(4, nullptr);
    const std::string bytes = write_message(sent, {"abc", "defg"});
    for (size_t size = 0; size < bytes.size(); ++size) {
        const std::vector<char> cut(bytes.begin(),
                                    bytes.begin() + static_cast<long>(size)); // Exact, for ASan.
        zRecord record;
        const int result = cMultipartReader(record).Parse_WithHeaders(cut.data(), static_cast<int>(size));
        // Deliberate: a message may end one byte behind any delimiter.
        const std::string delimiter = "\r\n--MimeBoundary_8923gr836bidfb3i";
        const bool ended = size > delimiter.size() &&
                           bytes.compare(size - 1 - delimiter.size(), delimiter.size(), delimiter) == 0;
        EXPECT_EQ(result, ended ? 0 : -1) << size;
    }
    std::mt19937 random(7);
    for (int i = 0; i < 3000; ++i) {
        std::vector<char> hostile(bytes.begin(), bytes.end());
        for (int change = static_cast<int>(random() % 6); change >= 0; --change)
            hostile[random() % hostile.size()] = "\r\n-: ;=\0M\xFF"[random() % 10];
        hostile.resize(random() % (hostile.size() + 1));
        const int size = static_cast<int>(hostile.size());
        zRecord record;
        cMultipartReader reader(record);
        reader.Parse_WithHeaders(hostile.data(), size);
        Section section;
        for (int index = 0; cMultipartRecord(record).GetSection(section, index) == 0; ++index) {
            const char* data = nullptr;
            int length = 0;
            if (reader.GetSectionData(section, hostile.data(), size, &data, &length) == 0) {
                EXPECT_LE(data + length, hostile.data() + size);
            }
        }
    }
}

TEST(MultipartTest, ReaderRefusesAbsurdArgumentsAndOffsets) {
    zRecord record;
    cMultipartReader reader(record);
    const std::string body = "--B\r\nX: y\r\n\r\ndata\r\n--B--";
    const int size = static_cast<int>(body.size());
    EXPECT_EQ(reader.Parse_BodyOnly(body.data(), size, "B", 1, 0), 0);
    Section section;
    ASSERT_EQ(cMultipartRecord(record).GetSection(section, 0), 0);
    EXPECT_EQ(section_data(reader, section, body), "data");
    EXPECT_STREQ(section.HeaderByName("X", ""), "y");

    const char* data = body.data();
    int length = 99;
    EXPECT_EQ(reader.GetSectionData(section, body.data(), size - 1, &data, &length), -1);
    EXPECT_EQ(length, 99) << "another size leaves the outputs alone";
    for (const auto& [offset, bytes] : {std::pair{0, 4}, {13, -1}, {-5, 4}, {13, size}, {INT_MAX, INT_MAX}}) {
        section.SetDataOffset(offset);
        section.SetDataSize(bytes);
        EXPECT_EQ(reader.GetSectionData(section, body.data(), size, &data, &length), -1) << offset;
        EXPECT_EQ(data, nullptr);
    }
    for (const int offset : {-1, size - 3, size, INT_MAX})
        EXPECT_EQ(reader.Parse_BodyOnly(body.data(), size, "B", 1, offset), -1) << offset;
    EXPECT_EQ(reader.Parse_BodyOnly(body.data(), size, "B", INT_MAX, 0), -1);
    EXPECT_EQ(reader.Parse_BodyOnly(nullptr, size, "B", 1, 0), -1);
    EXPECT_EQ(reader.Parse_BodyOnly(body.data(), size, "", 0, 0), -1);
}

TEST(MultipartTest, ReadsEdgesOfMessagesAsDocumented) {
    const auto body_only = [](const std::string& body) {
        zRecord record;
        const int result =
            cMultipartReader(record).Parse_BodyOnly(body.data(), static_cast<int>(body.size()), "B", 1, 0);
        return std::pair(result, record.ChildCount());
    };
    EXPECT_EQ(body_only("--B--"), std::pair(0, 0)) << "no sections";
    EXPECT_EQ(body_only("--Bx"), std::pair(0, 0)) << "one byte behind a delimiter";
    EXPECT_EQ(body_only("--B\r\n\r\n\r\n--B"), std::pair(-1, 1)) << "no closing dashes";
    EXPECT_EQ(body_only("--B\r\n\r\n\r\n--B-"), std::pair(0, 1));
    EXPECT_EQ(body_only("--B\r\n\r\n\r\n--B\r\n"), std::pair(-1, 1));
    EXPECT_EQ(body_only("--B\r\n"), std::pair(-1, 0));
}

TEST(MultipartTest, FindsSectionsAndTheirHeaders) {
    zRecord record;
    cMultipartRecord message(record);
    message.AddSection(1, "a/b");
    message.AddSection(2, nullptr);
    message.AddSectionHeader(1, "Content-ID", "<two>");
    Section section;
    EXPECT_EQ(message.FindSectionBySectionHeaderValue(section, "Content-ID", "<two>"), 0);
    EXPECT_EQ(section.GetDataSize(), 2);
    EXPECT_EQ(section.HeaderCount(), 1);
    int name = 0;
    EXPECT_EQ(section.HeaderSizeByIndex(0, &name, nullptr), 0);
    EXPECT_EQ(name, 10);
    EXPECT_EQ(section.HeaderSizeByIndex(1, &name, nullptr), -1);
    EXPECT_EQ(message.FindSectionBySectionHeaderValue(section, "Content-ID", "<TWO>"), -1);
    EXPECT_EQ(section.HeaderCount(), -1) << "a search that fails leaves an empty section";
    EXPECT_EQ(section.AddHeader("a", "b"), -1);
    EXPECT_EQ(section.GetDataSize(), 0);
    EXPECT_STREQ(section.HeaderByName("a", "missing"), "missing");
    EXPECT_EQ(message.GetSection(section, -1), -1);
}

TEST(HeaderTest, ParsesBlocksLineByLine) {
    const std::string longName(255, 'n');
    const std::string block =
        "Name: value\r\nFolded: a\r\n b\r\n\tc: d\r\nno colon\r\nEmpty:\r\nShort: \r\n" + longName +
        ": dropped\r\n" + longName.substr(1) + ": kept\r\n\r\nBody: x\r\n";
    zRecord record;
    EXPECT_EQ(cUtils::HeaderParse(block.data(), static_cast<int>(block.size()), record),
              static_cast<int>(block.find("\r\n\r\n") + 2));
    EXPECT_EQ(record.VariableCount(), 5);
    EXPECT_STREQ(record.AsCString("Name", ""), "value");
    EXPECT_STREQ(record.AsCString("Folded", ""), "a\r\n b\r\n\tc: d");
    EXPECT_STREQ(record.AsCString("Empty", "-"), "");
    EXPECT_STREQ(record.AsCString("Short", "-"), "");
    EXPECT_STREQ(record.AsCString(longName.substr(1).c_str(), ""), "kept");

    zRecord open;
    EXPECT_EQ(cUtils::HeaderParse("A: 123", 6, open), 6);
    EXPECT_STREQ(open.AsCString("A", ""), "1") << "a last line without its end loses two bytes";
    EXPECT_EQ(cUtils::HeaderParse("A:", 2, open), 2);
}

TEST(HeaderTest, FindsEntriesByWholeNameIgnoringCase) {
    const struct {
        const char *text, *name, *value; // A null value: not found.
    } cases[] = {
        {"multipart/related;boundary=b", "Boundary", "b"},
        {"a ; \t x = 1 2 \r\n; BOUNDARY = \"q\" ;", "boundary", "\"q\""},
        {"bound=1; boundaryx=2", "boundary", nullptr},
        {"boundary", "boundary", nullptr},
        {"=v", "", nullptr},
        {"x=a=b", "x", "a=b"},
        {"x=;y", "x", ""},
        {"", "x", nullptr},
    };
    for (const auto& [text, name, expected] : cases) {
        const char* value = nullptr;
        int length = 0;
        const int result = cUtils::HeaderEntry_FindByName(text, name, &value, &length);
        EXPECT_EQ(result, expected == nullptr ? -1 : 0) << text;
        if (expected != nullptr) {
            EXPECT_EQ(std::string(value, static_cast<size_t>(length)), expected) << text;
        }
    }
}

TEST(HeaderTest, MakesContentIds) {
    zString text;
    cUtils::XOP_MakeReference(text, "id_1");
    EXPECT_STREQ(text, "cid:id_1");
    cUtils::XOP_MakeContentIDHeaderString(text, "id_1");
    EXPECT_STREQ(text, "<id_1>");
}

TEST(BoyerMooreTest, FindsWhatAPlainSearchFinds) {
    std::mt19937 random(3);
    for (int i = 0; i < 3000; ++i) {
        std::string text(random() % 60, 0);
        std::string pattern(1 + random() % 5, 0);
        for (char& c : text)
            c = "ab\xFF"[random() % 3];
        for (char& c : pattern)
            c = "ab\xFF"[random() % 3];
        const cBoyerMoore search(pattern.data(), static_cast<int>(pattern.size()));
        const size_t found = text.find(pattern);
        EXPECT_EQ(search.FindIn(text.data(), static_cast<int>(text.size())),
                  found == std::string::npos ? -1 : static_cast<int>(found));
    }
    const std::string longest(256, 'x');
    EXPECT_EQ(cBoyerMoore(longest.data(), 255).FindIn(longest.data(), 256), 0);
    EXPECT_EQ(cBoyerMoore(longest.data(), 256).FindIn(longest.data(), 256), -1);
    EXPECT_EQ(cBoyerMoore("", 0).FindIn("x", 1), -1);
    EXPECT_EQ(cBoyerMoore(nullptr, 1).FindIn("x", 1), -1);
    EXPECT_EQ(cBoyerMoore("x", 1).FindIn(nullptr, 1), -1);
}

} // namespace

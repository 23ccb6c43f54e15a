#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

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

std::string two_sections() {
    zRecord record;
    cMultipartRecord message(record);
    message.AddSection(5, nullptr);
    message.AddSection(3, "image/jpg");
    message.AddSectionHeader(1, "Content-ID", "<id>");
    return write_message(record, {"<xml>", "jpg"});
}

std::string section_data(cMultipartReader& reader, const Section& section, const std::string& message) {
    const char* data = nullptr;
    int size = 0;
    EXPECT_EQ(reader.GetSectionData(section, message.data(), static_cast<int>(message.size()), &data, &size),
              0);
    return {data, static_cast<size_t>(size)};
}

TEST(MultipartTest, RoundTripKeepsEverySection) {
    for (unsigned int seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        zRecord sent;
        cMultipartRecord message(sent);
        if (seed % 3 == 0)
            sent.SetCString("__quillon_mime_boundry", "--b=?'", 0);
        std::vector<std::string> data(1 + random() % 5);
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
        ASSERT_EQ(reader.Parse_WithHeaders(bytes.data(), static_cast<int>(bytes.size())), 0);
        ASSERT_EQ(received.ChildCount(), static_cast<int>(data.size()));
        for (int i = 0; i < received.ChildCount(); ++i) {
            Section from, to;
            message.GetSection(from, i);
            cMultipartRecord(received).GetSection(to, i);
            EXPECT_EQ(section_data(reader, to, bytes), data[static_cast<size_t>(i)]);
            ASSERT_EQ(to.HeaderCount(), from.HeaderCount());
            zString name, value;
            for (int header = 0; from.HeaderByIndex(header, name, value) == 0; ++header)
                EXPECT_STREQ(to.HeaderByName(name, "missing"), value);
        }
    }
}

TEST(MultipartTest, AMessageCutShortIsRefusedUnlessItEndsOneByteBehindADelimiter) {
    const std::string bytes = two_sections();
    for (size_t size = 0; size < bytes.size(); ++size) {
        const std::vector<char> cut(bytes.begin(),
                                    bytes.begin() + static_cast<long>(size)); // Exact, for ASan.
        zRecord record;
        const int result = cMultipartReader(record).Parse_WithHeaders(cut.data(), static_cast<int>(size));
        const bool ended =
            size > 0 && bytes.substr(0, size - 1).ends_with("\r\n--MimeBoundary_8923gr836bidfb3i");
        EXPECT_EQ(result, ended ? 0 : -1) << size;
    }
}

TEST(MultipartTest, ReaderSurvivesAnyBytes) {
    const std::string bytes = two_sections();
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
            const char* data = hostile.data();
            int length = 0;
            reader.GetSectionData(section, hostile.data(), size, &data, &length);
            EXPECT_LE(data + length, hostile.data() + size);
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
    for (const int boundarySize : {0, INT_MAX})
        EXPECT_EQ(reader.Parse_BodyOnly(body.data(), size, "B", boundarySize, 0), -1);
}

TEST(HeaderTest, FindsEntriesByWholeNameIgnoringCase) {
    const struct {
        const char *text, *value;
    } cases[] = {
        {"multipart/related;Boundary=b", "b"},
        {"a ; \t boundary = 1 2 \r\n; x = y", "1 2"},
        {"a; BOUNDARY = \"q\" ;", "\"q\""},
        {"boundary=a=b", "a=b"},
        {"boundary=;y", ""},
        {"bound=1; boundaryx=2", nullptr},
        {"boundary", nullptr},
    };
    for (const auto& one : cases) {
        const char* value = nullptr;
        int length = 0;
        const int result = cUtils::HeaderEntry_FindByName(one.text, "boundary", &value, &length);
        EXPECT_EQ(result == 0, one.value != nullptr) << one.text;
        if (result == 0 && one.value) {
            EXPECT_EQ(std::string(value, static_cast<size_t>(length)), one.value);
        }
    }
}

} // namespace

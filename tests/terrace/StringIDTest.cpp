#include "zStringID.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "zIDGenerator.h"
#include "zPackedUniqueID.h"
#include "zString.h"

TEST(StringID, NamesAndIdsAreTiedForGood) {
    zStringID ids;
    EXPECT_EQ(ids.IDForString("speed", true), 0);
    EXPECT_EQ(ids.Add(0x73000001, "first", false), 0);
    const int speed = ids.IDForString("speed", false);
    EXPECT_EQ(speed, 0x73000002) << "made up from the letter, past the taken one";
    EXPECT_EQ(ids.IDForString("speed", false), speed);
    EXPECT_STREQ(ids.StringForID(speed, "none"), "speed");
    EXPECT_STREQ(ids.StringForID(speed + 1, "none"), "none");
    EXPECT_EQ(ids.IDForString(nullptr, false), 0);
    for (const auto& [id, text, expected] :
         {std::tuple{-5, "mass", 0}, {-5, "mass", 0}, {-5, "weight", -1}, {6, "mass", -1}})
        EXPECT_EQ(ids.Add(id, text, false), expected) << id << text;
    EXPECT_EQ(ids.IDForString("weight", true), 0);
}

TEST(StringID, NamesFromOutsideFillOnlyTheirShare) {
    zStringID ids;
    std::string name(1u << 20, 'x');
    int fromDocuments = 0;
    int own = 0;
    for (int i = 1; i <= 200; ++i) {
        name[0] = static_cast<char>(i);
        if (i <= 100)
            fromDocuments += ids.IDForDocumentString(name.c_str()) != 0;
        else
            own += ids.IDForString(name.c_str(), false) != 0;
    }
    EXPECT_EQ(fromDocuments, 31);
    EXPECT_EQ(own, 32);
    EXPECT_NE(ids.IDForString("a short one", false), 0) << "there is room for it";
    EXPECT_EQ(ids.IDForDocumentString("another"), 0);
    EXPECT_NE(ids.IDForDocumentString("a short one"), 0) << "a known name is always found";
}

TEST(StringID, ThreadsAgreeOnNewNames) {
    constexpr size_t kNames = 300;
    zStringID ids;
    std::vector<std::vector<int>> seen(4, std::vector<int>(kNames));
    std::vector<std::jthread> threads;
    for (auto& mine : seen) {
        threads.emplace_back([&ids, &mine] {
            for (size_t i = 0; i < kNames; ++i)
                mine[i] = ids.IDForString(("name" + std::to_string(i)).c_str(), false);
        });
    }
    threads.clear();
    EXPECT_THAT(seen, testing::Each(seen[0]));
    EXPECT_EQ(std::set<int>(seen[0].begin(), seen[0].end()).size(), kNames);
}

TEST(PackedUniqueID, LendsTheLowestFreeNumber) {
    zPackedUniqueID ids(256);
    for (int expected = 0; expected < 256; ++expected)
        ASSERT_EQ(ids.BorrowID(), expected);
    for (const int returned : {1, 1, -1, 256})
        ids.ReturnID(returned);
    EXPECT_EQ(ids.BorrowID(), 1);
    EXPECT_EQ(ids.BorrowID(), 256);
}

TEST(IDGenerator, UuidsHaveTheirFormAndDiffer) {
    zString uuid, another;
    zIDGenerator::GenerateUUID(uuid);
    zIDGenerator::GenerateUUID(another);
    EXPECT_STRNE(uuid, another);
    const std::string text(uuid);
    EXPECT_EQ(text.size(), 36U);
    EXPECT_EQ(text.find_first_not_of("0123456789ABCDEF-"), std::string::npos) << text;
    EXPECT_EQ(text[14], '4') << text;
}

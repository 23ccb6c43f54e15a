// What is made of a server's replies: real ones, and real ones that were tampered with.

#include <gmock/gmock.h>

#include "Address.h"
#include "PointerShapes.h"
#include "RealReply.h"
#include "SourceMenu.h"

namespace {

using namespace receiver;
using testing::HasSubstr;

TEST(ReplyTest, RefusesMoreThanAReplyCanNeed) {
    RealReply whole("whole");
    const size_t start = whole.body.find("\r\n--MimeBoundary_8923gr836bidfb3i\r\nContent-Type: image/jpg");
    const std::string picture = whole.body.substr(start, whole.body.rfind("\r\n--") - start);
    std::string pictures, places;
    for (int i = 2; i < 40; ++i) {
        pictures += picture;
        places += "section_rect_" + std::to_string(i) + "=\"1488,50,1687,159\" ";
    }
    Reply reply;
    StreamReply update;
    std::string reason;
    whole.Replace("section_rect_1", places + "section_rect_1").Replace(picture, picture + pictures);
    ASSERT_TRUE(whole.Parse(reply, reason)) << reason;
    EXPECT_FALSE(update.Read(reply, reason));
    EXPECT_THAT(reason, HasSubstr("too many pictures"));

    RealReply menus("menus");
    menus.Replace("<record>", "<record>" + std::string(2'000'000, ' '));
    EXPECT_FALSE(menus.Parse(reply, reason));
}

TEST(ReplyTest, ReadsPicturesSoundAndPointer) {
    Reply reply;
    StreamReply update;
    std::string reason;
    ASSERT_TRUE(RealReply("diff-sound").Parse(reply, reason)) << reason;
    ASSERT_TRUE(update.Read(reply, reason)) << reason;
    EXPECT_EQ(update.frame, zRect(1617, 50, 1818, 159));
    ASSERT_EQ(update.pictures.size(), 1U);
    EXPECT_TRUE(update.frame.Contains(update.pictures[0].place));
    EXPECT_FALSE(update.IsWholeFrame());
    EXPECT_EQ(update.pictures[0].jpeg[0], 0xFF);
    ASSERT_TRUE(update.sound);
    EXPECT_EQ(update.sound->rate, 44100);
    EXPECT_EQ(update.sound->FrameCount() * 4, update.sound->samples.size());
    EXPECT_GT(update.sound->endTime, 0);
    EXPECT_GT(update.nextSequence, 0U);
    ASSERT_TRUE(update.pointer);
    EXPECT_EQ(update.pointer->shape, 1U);

    ASSERT_TRUE(RealReply("snapshot").Parse(reply, reason) && update.Read(reply, reason)) << reason;
    EXPECT_TRUE(update.IsWholeFrame()) << "a single picture tells its place by the frame";
    ASSERT_TRUE(RealReply("muted").Parse(reply, reason) && update.Read(reply, reason)) << reason;
    EXPECT_TRUE(update.isMuted);
}

TEST(ReplyTest, RefusesWhatMakesNoSense) {
    const RealReply diff("diff-sound");
    const size_t attribute = diff.body.find("section_rect_1=\"");
    const std::string place =
        diff.body.substr(attribute, diff.body.find('"', attribute + 16) + 1 - attribute);
    const std::string frame = "rect=\"1617,50,1818,159\"";
    const struct {
        std::string from, to;
    } cases[] = {
        {place, ""},
        {place, "section_rect_1=\"0,0,15,15\""},
        {place, "section_rect_1=\"1627,60,1620,80\""},
        {place, "section_rect_1=\"1617,50,2147483648,159\""},
        {place, "section_rect_1=\"-2147483648,50,2147483647,159\""},
        {place, "section_rect_1=\"elsewhere\""},
        {frame, ""},
        {frame, "rect=\"0,0,20000,20000\""},
        {frame, "rect=\"-2147483648,-2147483648,2147483647,2147483647\""},
        {"error=\"0\"", "error=\"-1\""},
        {"section_rate_2=\"44100\"", ""},
        {"section_channels_2=\"2\"", "section_channels_2=\"-2\""},
        {"<response", "<request"},
        {"/>", ">"},
    };
    for (const auto& [from, to] : cases) {
        SCOPED_TRACE(to.empty() ? "without " + from : to);
        Reply reply;
        StreamReply update;
        std::string reason;
        ASSERT_NE(diff.body.find(from), std::string::npos) << from;
        EXPECT_FALSE(RealReply(diff).Replace(from, to).Parse(reply, reason) && update.Read(reply, reason));
        EXPECT_FALSE(reason.empty());
    }
}

TEST(ReplyTest, TakesMessagesApartThatAreCutOrHostile) {
    const RealReply whole("whole");
    Reply reply;
    std::string reason;
    for (size_t size = 0; size + 1 < whole.body.size(); size += 7) {
        RealReply cut = whole;
        cut.body.resize(size);
        EXPECT_FALSE(cut.Parse(reply, reason)) << size;
    }
    for (const char* type :
         {"multipart/related", "multipart/related;boundary=", "multipart/related;boundary=x"}) {
        RealReply odd = whole;
        odd.type = type;
        EXPECT_FALSE(odd.Parse(reply, reason)) << type;
    }
    RealReply headers = whole;
    std::string many;
    for (int i = 0; i < 200'000; ++i)
        many += "h" + std::to_string(i) + ": v\r\n";
    headers.Replace("Content-Type", many + "Content-Type");
    EXPECT_TRUE(headers.Parse(reply, reason)) << "those beyond a bound are dropped";
    EXPECT_EQ(reply.Sections().size(), 2U);

    RealReply sound("idle-sound");
    sound.Replace("\r\n--MimeBoundary_8923gr836bidfb3i--", "xyz\r\n--MimeBoundary_8923gr836bidfb3i--");
    StreamReply update;
    ASSERT_TRUE(sound.Parse(reply, reason) && update.Read(reply, reason)) << reason;
    EXPECT_EQ(update.sound->samples.size() % 4, 0U) << "what is no whole sample frame is left out";
}

TEST(ReplyTest, DrawsAPointerThatHangsOverTheEdge) {
    Reply reply;
    std::string reason;
    PointerShape shape;
    ASSERT_TRUE(RealReply("pointer").Parse(reply, reason)) << reason;
    ASSERT_TRUE(shape.Read(reply));
    EXPECT_EQ(shape.pixels.size(), static_cast<size_t>(shape.width * shape.height * 4));
    EXPECT_EQ(shape.pixels[3], 255) << "an arrow's tip is at its left top corner";
    for (const zPoint corner : {zPoint(-5, -5), zPoint(5, 5), zPoint(100, 0), zPoint(0, -100),
                                zPoint(2147483647, -2147483647 - 1)}) {
        std::vector<uint8_t> canvas(8 * 8 * 4, 77);
        shape.DrawInto(canvas.data(), 8, 8, corner.x, corner.y);
        const bool isHit = corner.x < 8 && corner.y > -100;
        EXPECT_EQ(canvas == std::vector<uint8_t>(8 * 8 * 4, 77), !isHit) << corner.x;
    }
    RealReply tall("pointer");
    tall.Replace("height=\"", "height=\"9");
    ASSERT_TRUE(tall.Parse(reply, reason)) << reason;
    EXPECT_FALSE(shape.Read(reply)) << "there are fewer pixels than that";
}

TEST(ReplyTest, ListsSourcesAndFindsThem) {
    Reply reply;
    std::string reason;
    SourceMenu menu;
    ASSERT_TRUE(RealReply("menus").Parse(reply, reason) && menu.Read(reply)) << reason;
    ASSERT_TRUE(menu.FindScreen(1, false));
    EXPECT_EQ(menu.FindScreen(0, true)->kind, SourceMenu::Item::Kind::kRegion);
    EXPECT_EQ(menu.FindScreen(2, false), nullptr);
    EXPECT_EQ(menu.FindWindow("window 1", reason), menu.FindWindow("WINDOW 1", reason));
    EXPECT_EQ(menu.FindWindow("slide", reason)->title, "WINDOW 2") << "by its application";
    EXPECT_EQ(menu.FindWindow("window", reason), nullptr);
    EXPECT_THAT(reason, HasSubstr("several"));
    EXPECT_EQ(menu.FindWindow("browser", reason), nullptr);
}

TEST(AddressTest, TakesHostsWithAndWithoutPorts) {
    const struct {
        const char* text;
        const char* whole; ///< Null for one that is refused.
    } cases[] = {{"studio", "studio:7272"},
                 {"10.0.0.7:80", "10.0.0.7:80"},
                 {"[::1]", "[::1]:7272"},
                 {"[fe80::1]:90", "[fe80::1]:90"},
                 {"", nullptr},
                 {":80", nullptr},
                 {"a b", nullptr},
                 {"host/path", nullptr},
                 {"user@host", nullptr},
                 {"host:", nullptr},
                 {"host:0", nullptr},
                 {"host:65536", nullptr},
                 {"host:8o", nullptr},
                 {"::1", nullptr},
                 {"[::1", nullptr},
                 {"[::1]80", nullptr}};
    for (const auto& [text, whole] : cases) {
        const auto address = Address::Parse(text);
        EXPECT_EQ(address ? address->Text() : "", whole ? whole : "") << text;
    }
}

} // namespace

// glasspane-client as scripts and people call it, with a real server.

#include <csignal>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "Daemon.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class ClientTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_NE(daemon.Port(), 0) << daemon.ReadyLine();
        std::string pattern = (std::filesystem::temp_directory_path() / "glasspane-client-XXXXXX").string();
        folder = mkdtemp(pattern.data());
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    std::string Server() const { return "127.0.0.1:" + std::to_string(daemon.Port()); }

    /// Runs it with these arguments; the first two lines that it prints go to `line` and `second`.
    int Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), GLASSPANE_CLIENT);
        Program program(arguments);
        line = program.ReadLine();
        second = program.ReadLine();
        return program.WaitForExit().value_or(-1);
    }
    /// The start of a file.
    static std::string Head(const std::filesystem::path& path) {
        std::string head(24, '\0');
        std::ifstream(path, std::ios::binary).read(head.data(), static_cast<std::streamsize>(head.size()));
        return head;
    }

    Daemon daemon{{"--host", "builtin"}};
    std::filesystem::path folder;
    std::string line;
    std::string second;
};

TEST_F(ClientTest, AsksAndChooses) {
    EXPECT_EQ(Run({"info", Server()}), 0);
    EXPECT_THAT(line, HasSubstr("protocol 1.0.5, 1280 x 720"));
    EXPECT_EQ(Run({"source", Server(), "--window", "window 2"}), 0);
    EXPECT_EQ(Run({"info", Server(), "--json"}), 0);
    EXPECT_THAT(line, StartsWith("{\"server\":\"" + Server()));
    EXPECT_THAT(line, HasSubstr("\"source\":\"WINDOW 2\""));
    EXPECT_EQ(Run({"menus", Server(), "--json"}), 0);
    EXPECT_THAT(line, HasSubstr("{\"kind\":\"window\",\"title\":\"WINDOW 2\",\"checked\":true"));
    EXPECT_EQ(Run({"source", Server(), "--screen", "1"}), 0);
    EXPECT_EQ(Run({"menus", Server()}), 0);
    EXPECT_THAT(line, StartsWith("* screen 1"));
}

TEST_F(ClientTest, SavesPictures) {
    EXPECT_EQ(Run({"snapshot", Server(), "-o", folder / "whole.jpg"}), 0);
    EXPECT_THAT(Head(folder / "whole.jpg"), StartsWith("\xFF\xD8\xFF"));
    EXPECT_EQ(Run({"snapshot", Server(), "--crop", "100,50,180,70", "-o", folder / "part.png"}), 0);
    const std::string head = Head(folder / "part.png");
    EXPECT_THAT(head, StartsWith("\x89PNG"));
    EXPECT_EQ(head.substr(16), std::string("\0\0\x03\xE8\0\0\x02\x58", 8)) << "1000 x 600";
    EXPECT_EQ(Run({"snapshot", Server(), "-o", folder / "none/x.png"}), 1);
    EXPECT_THAT(line, HasSubstr("can't be written: No such file"));
    EXPECT_EQ(Run({"snapshot", Server(), "--crop", "0,0,1280,0", "-o", folder / "x.png"}), 1);
    EXPECT_FALSE(std::filesystem::exists(folder / "x.png"));
}

TEST_F(ClientTest, Measures) {
    EXPECT_EQ(Run({"bench", Server(), "--duration", "0.5", "--sound", "--json"}), 0);
    EXPECT_THAT(line, HasSubstr("\"failures\":0,"));
    EXPECT_THAT(line, HasSubstr("\"delay_ms\":{\"median\":"));

    Program watch({GLASSPANE_CLIENT, "watch", Server()});
    EXPECT_THAT(watch.ReadLine(), HasSubstr("1280 x 720"));
    daemon.Process().Signal(SIGKILL);
    std::string told;
    while (!(told = watch.ReadLine()).empty() && told.find("no connection") == told.npos) {
    }
    EXPECT_THAT(told, HasSubstr("firewall")) << "it says what may be wrong, and tries again";
    watch.Signal(SIGINT);
    EXPECT_EQ(watch.WaitForExit(), 0);
}

TEST_F(ClientTest, TellsInOneLineWhatIsWrong) {
    const struct {
        std::vector<std::string> arguments;
        int status;
        const char* words;
    } cases[] = {
        {{}, 2, "subcommand"},
        {{"info"}, 2, "HOST"},
        {{"info", "no host"}, 2, "'no host' is neither"},
        {{"source", Server()}, 2, "--screen or --window"},
        {{"source", Server(), "--window", "nowhere"}, 1, "the command menus lists them"},
        {{"source", Server(), "--screen", "7"}, 1, "no screen 7"},
        {{"snapshot", Server(), "-o", "picture.gif"}, 2, "neither .jpg nor .png"},
        {{"info", "127.0.0.1:1"}, 1, "no connection to 127.0.0.1:1"},
        {{"bench", "127.0.0.1:1"}, 1, "is Glasspane running there"},
        {{"bench", Server(), "--duration", "nan"}, 2, "nan is no number from 0.1"},
    };
    for (const auto& [arguments, status, words] : cases) {
        SCOPED_TRACE(words);
        EXPECT_EQ(Run(arguments), status);
        EXPECT_THAT(line, StartsWith("glasspane-client: "));
        EXPECT_THAT(line, HasSubstr(words));
        EXPECT_THAT(second, IsEmpty());
    }
}

} // namespace

// glasspaned as its user meets it: the command line, the line it prints, its exit status.

#include <chrono>
#include <csignal>
#include <thread>

#include <gtest/gtest.h>

#include "Daemon.h"
#include "TestClient.h"

namespace {

using namespace std::chrono_literals;

const std::vector<std::string> kNoDisplay = {"DISPLAY"};

TEST(Daemon, AnswersItsUserWithOneLineAndAStatus) {
    Daemon first({"--host", "builtin"});
    const std::string taken = std::to_string(first.Port());
    const struct {
        std::vector<std::string> arguments;
        int status;
        std::string says;
    } cases[] = {
        {{"--version"}, 0, "glasspaned "},
        {{"--help"}, 0, "Serves"},
        {{"--host", "mainframe"}, 2, "--host"},
        {{"--port", "65536"}, 2, "--port"},
        {{"--port", "http"}, 2, "--port"},
        {{"--bind", "localhost"}, 2, "--bind"},
        {{"--frobnicate"}, 2, "--frobnicate"},
        {{"leftover"}, 2, "leftover"},
        {{"--host", "builtin", "--display", ":1"}, 2, "--display"},
        {{"--host", "builtin", "--bind", "127.0.0.1", "--port", taken}, 1, taken},
        {{"--host", "builtin", "--bind", "192.0.2.1", "--port", "0"}, 1, "192.0.2.1"},
        {{"--host", "x11", "--port", "0"}, 1, "display"},
        {{"--display", ":9999", "--port", "0"}, 1, ":9999"},
    };
    for (const auto& one : cases) {
        std::vector<std::string> command{GLASSPANED};
        command.insert(command.end(), one.arguments.begin(), one.arguments.end());
        Program program(command, kNoDisplay);
        const std::string line = program.ReadLine();
        EXPECT_NE(line.find(one.says), std::string::npos) << line;
        if (one.status != 0) {
            EXPECT_NE(line.find("glasspaned: "), std::string::npos) << line;
        }
        EXPECT_EQ(program.WaitForExit(), one.status) << one.says;
    }
}

TEST(Daemon, ServesTheTestCardWhereThereIsNoDisplay) {
    Program program({GLASSPANED, "--port", "0"}, kNoDisplay);
    const std::string line = program.ReadLine();
    EXPECT_NE(line.find("listening on 0.0.0.0:"), std::string::npos) << line;
    EXPECT_NE(line.find("host builtin, 2 displays"), std::string::npos) << line;
    EXPECT_NE(line.find("1280 x 720"), std::string::npos) << line;
}

/// What the mixer is shown after it chose an entry of the menus by one of its items.
std::string rect_after_choosing(TestClient& client, const std::string& menus, const std::string& entry,
                                const std::string& item) {
    const size_t at = menus.find("<xml_tag title=\"" + entry);
    const size_t below = menus.find("<xml_tag title=\"" + item, at);
    const auto element = [&menus](size_t from, const std::string& name) {
        const size_t attributes = from + std::string("<xml_tag").size();
        return "<" + name + menus.substr(attributes, menus.find_first_of("/>", attributes) - attributes);
    };
    EXPECT_TRUE(client.Call("SetSourceFromMenuItem", "<params><param>" + element(at, "record") + ">" +
                                                         element(below, "xml_tag") +
                                                         "/></record></param></params>"));
    client.Call("Snapshot"); // On its way since before.
    const auto reply = client.Call("Snapshot");
    const size_t rect = reply ? reply->body.find("rect=\"") : std::string::npos;
    return rect == std::string::npos ? ""
                                     : reply->body.substr(rect, reply->body.find('"', rect + 6) + 1 - rect);
}

TEST(Daemon, LetsTheMixerChooseTheSource) {
    Daemon daemon({"--host", "builtin"});
    TestClient client(daemon.Port());
    const auto reply = client.Call("GetMenus");
    ASSERT_TRUE(reply);
    const auto choose = [&](const char* entry, const char* item) {
        return rect_after_choosing(client, reply->body, entry, item);
    };
    EXPECT_EQ(choose("Screen &apos;Test Card 2", "Full Screen"), "rect=\"1280,0,2303,767\"");
    const std::string window = choose("Test Lift", "WINDOW 1");
    EXPECT_EQ(window.find("rect=\"70,"), 0U) << window;
    EXPECT_EQ(choose("Screen &apos;Test Card 1", "Full Screen"), "rect=\"0,0,1279,719\"");
}

TEST(Daemon, EndsCleanlyWithinTwoSecondsOfASignal) {
    for (const int signal : {SIGINT, SIGTERM}) {
        Daemon daemon({"--host", "builtin"});
        TestClient idle(daemon.Port());
        TestClient busy(daemon.Port());
        ASSERT_TRUE(busy.Call("Snapshot"));
        daemon.Process().Signal(signal);
        EXPECT_EQ(daemon.Process().WaitForExit(2s), 0) << "signal " << signal;
    }
}

TEST(Daemon, EndsWithinTwoSecondsThoughAClientDoesNotReadItsReply) {
    Daemon daemon({"--host", "builtin"});
    TestClient deaf(daemon.Port());
    const std::string request = TestClient::Request(TestClient::MethodCall("Snapshot"));
    // Fill the connection with replies that nobody reads, until one of them is stuck.
    const auto end = std::chrono::steady_clock::now() + 20s;
    bool stuck = false;
    while (!stuck && std::chrono::steady_clock::now() < end) {
        deaf.Send(request);
        TestClient other(daemon.Port(), 500);
        stuck = !other.Call("CheckConnection");
    }
    ASSERT_TRUE(stuck);
    daemon.Process().Signal(SIGTERM);
    EXPECT_EQ(daemon.Process().WaitForExit(2s), 0);
}

TEST(Daemon, RunsWithoutStandardDescriptors) {
    Program program(
        {"/bin/sh", "-c", "exec " GLASSPANED " --host builtin --bind 127.0.0.1 --port 0 0<&- 2>&-"});
    const uint16_t port = Daemon::PortOf(program.ReadLine());
    ASSERT_NE(port, 0);
    EXPECT_TRUE(TestClient(port).Call("Snapshot"));
    program.Signal(SIGTERM);
    EXPECT_EQ(program.WaitForExit(), 0);
}

} // namespace

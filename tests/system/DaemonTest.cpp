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

TEST(Daemon, HelpAndVersionSucceedAndWrongUsageIs2) {
    const struct {
        std::vector<std::string> arguments;
        int status;
        const char* says;
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
    };
    for (const auto& one : cases) {
        std::vector<std::string> command{GLASSPANED};
        command.insert(command.end(), one.arguments.begin(), one.arguments.end());
        Program program(command);
        EXPECT_NE(program.ReadLine().find(one.says), std::string::npos) << one.arguments[0];
        EXPECT_EQ(program.WaitForExit(), one.status) << one.arguments[0];
    }
}

TEST(Daemon, ServesTheTestCardWhereThereIsNoDisplay) {
    Program program({GLASSPANED, "--port", "0"}, kNoDisplay);
    const std::string line = program.ReadLine();
    EXPECT_NE(line.find("listening on 0.0.0.0:"), std::string::npos) << line;
    EXPECT_NE(line.find("host builtin, 2 displays"), std::string::npos) << line;
    EXPECT_NE(line.find("1280 x 720"), std::string::npos) << line;
}

TEST(Daemon, FailsWithOneLineOfReason) {
    Daemon first({"--host", "builtin"});
    ASSERT_NE(first.Port(), 0);
    const struct {
        std::vector<std::string> command;
        std::string says;
    } cases[] = {
        {{GLASSPANED, "--host", "builtin", "--bind", "127.0.0.1", "--port", std::to_string(first.Port())},
         std::to_string(first.Port())},
        {{GLASSPANED, "--host", "builtin", "--bind", "192.0.2.1", "--port", "0"}, "192.0.2.1"},
        {{GLASSPANED, "--host", "x11", "--port", "0"}, "display"},
        {{GLASSPANED, "--display", ":9999", "--port", "0"}, ":9999"},
    };
    for (const auto& one : cases) {
        Program program(one.command, kNoDisplay);
        const std::string line = program.ReadLine();
        EXPECT_NE(line.find("glasspaned: "), std::string::npos) << line;
        EXPECT_NE(line.find(one.says), std::string::npos) << line;
        EXPECT_EQ(program.ReadLine(), "");
        EXPECT_EQ(program.WaitForExit(), 1);
    }
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

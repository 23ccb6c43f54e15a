#include "zTrace.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "TestFolder.h"
#include "zBoot.h"
#include "zString.h"
#include "zTerrace.h"

namespace {

namespace fs = std::filesystem;

/// A fresh folder for the log, and as many runs of the library as a test wants.
class Trace : public testing::Test {
  protected:
    void SetUp() override { zTrace::Initialize((fFolder.Path().filename() / "log").c_str()); }
    void TearDown() override { zTrace::SetReportOnShutdown(false); }

    /// Ends the run and begins another.
    static void Restart() {
        zBoot::Shutdown();
        zBoot(zTerrace::Startup, zTerrace::Shutdown, zTerrace::kModuleID);
        zBoot::Startup();
    }
    std::string Text() const { return fFolder.Read("log"); }

    const TestFolder fFolder;
    const fs::path fLog = fFolder / "log";
};

} // namespace

TEST_F(Trace, LinesCarryThreadAndIndent) {
    Restart();
    zTrace& trace = *zTrace::Default();
    trace.TraceNote("%s %d\n", "one", 1);
    trace.Indent(2);
    trace.TraceNote("two\n");
    trace.TraceNoteIf(false, "never\n");
    trace.Indent(-2);
    { const zTraceStack stack("/a/b/file.cpp", 12, "function"); }
    EXPECT_EQ(trace.SetThreadOptions(0), zTrace::kGlobalOptions);
    trace.TraceNote("bare\n");
    std::thread([] { zTrace::Default()->Trace(7, "other\n"); }).join();
    EXPECT_EQ(trace.SetThreadOptions(zTrace::kGlobalOptions), 0u);
    EXPECT_THAT(Text(), testing::MatchesRegex("   1: one 1\n   1:     two\n   1: \\+function\n"
                                              "   1: -function\nbare\n *[0-9]+: other\n"));
}

TEST_F(Trace, RunsFollowEachOther) {
    Restart();
    EXPECT_TRUE(zTrace::IsFirstTime());
    zTrace::Default()->TraceNote("first\n");
    Restart();
    EXPECT_FALSE(zTrace::IsFirstTime());
    EXPECT_EQ(Text(), "   1: first\n   1: ------\n\n");
    zTrace::SetReportOnShutdown(false);
    Restart();
    EXPECT_EQ(Text(), "   1: first\n   1: ------\n\n") << "the option counts for one run";

    zString base64;
    EXPECT_EQ(zTrace::Default()->GetCurrentLogAsBase64(base64), 0);
    EXPECT_STREQ(base64, "ICAgMTogZmlyc3QKICAgMTogLS0tLS0tCgo=");
    fs::resize_file(fLog, 0);
    EXPECT_EQ(zTrace::Default()->GetCurrentLogAsBase64(base64), -1);
}

TEST_F(Trace, ALongLogStartsAnew) {
    for (const size_t size : {size_t{262144}, size_t{262145}}) {
        zTrace::SetReportOnShutdown(false);
        fFolder.Write("log", std::string(size, 'x'));
        Restart();
        zTrace::Default()->TraceNote("new\n");
        EXPECT_EQ(Text().size(), size == 262144 ? size + 10 : 10);
    }
}

TEST_F(Trace, TooMuchIsCut) {
    Restart();
    const std::string text(5000, 'x');
    zTrace& trace = *zTrace::Default();
    trace.TraceNote("%s", text.c_str());
    EXPECT_EQ(Text(), "   1: " + text.substr(0, 4088));
    fs::resize_file(fLog, 0);
    trace.Indent(0x7FFFFFFF); // no room for text any more
    trace.TraceNote("z\n");
    EXPECT_EQ(Text(), "   1: z\n");
}

TEST_F(Trace, TheFileIsTheUsersAlone) {
    fFolder.Write("log", "");
    fs::permissions(fLog, fs::perms(0644));
    Restart();
    EXPECT_EQ(fs::status(fLog).permissions(), fs::perms(0600));
}

TEST_F(Trace, WhatAnotherMayHavePutThereIsLeftAlone) {
    const fs::path victim = fFolder / "victim";
    const std::string treasure(300'000, 't');
    fFolder.Write("victim", treasure);
    std::vector<std::function<void()>> traps{
        [&] { fs::create_symlink(victim, fLog); },
        [&] { fs::create_hard_link(victim, fLog); },
        [&] { fs::create_symlink(fFolder / "missing", fLog); },
        [&] { fs::create_directory(fLog); },
        [&] { ASSERT_EQ(mkfifo(fLog.c_str(), 0600), 0); },
    };
    if (geteuid() == 0) {
        traps.emplace_back([&] {
            fFolder.Write("log", "foreign");
            ASSERT_EQ(chown(fLog.c_str(), 65534, 65534), 0);
        });
    }
    for (size_t i = 0; i < traps.size(); ++i) {
        zTrace::SetReportOnShutdown(false);
        fs::remove(fLog);
        traps[i]();
        Restart();
        testing::internal::CaptureStdout();
        zTrace::Default()->TraceNote("on the terminal\n");
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "   1: on the terminal\n") << i;
        EXPECT_EQ(fFolder.Read("victim"), treasure) << i;
        EXPECT_FALSE(fs::exists(fFolder / "missing")) << i;
    }
}

TEST_F(Trace, ThreadsDontMixTheirLines) {
    Restart();
    std::vector<std::jthread> threads;
    for (const char name : {'a', 'b', 'c', 'd'}) {
        threads.emplace_back([name] {
            for (int line = 0; line < 200; ++line)
                zTrace::Default()->TraceNote("%s\n", std::string(50, name).c_str());
        });
    }
    threads.clear();
    std::istringstream lines(Text());
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count)
        ASSERT_EQ(line.substr(line.find(':')), ": " + std::string(50, line.back()));
    EXPECT_EQ(count, 800);
}

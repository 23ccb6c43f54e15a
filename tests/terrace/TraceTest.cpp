#include "zTrace.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "zBase64.h"
#include "zBoot.h"
#include "zBuffer.h"
#include "zMemoryStream.h"
#include "zString.h"
#include "zTerrace.h"

namespace {

namespace fs = std::filesystem;

/// A fresh folder for the log, and as many runs of the library as a test wants.
class Trace : public testing::Test {
  protected:
    void SetUp() override {
        char name[] = "/tmp/glasspane_trace_XXXXXX";
        ASSERT_NE(mkdtemp(name), nullptr);
        fFolder = name;
        fLog = fFolder / "log";
        zTrace::Initialize((fFolder.filename() / "log").c_str());
    }
    void TearDown() override {
        zTrace::SetReportOnShutdown(false);
        fs::remove_all(fFolder);
    }

    /// Ends the run and begins another.
    static void Restart() {
        zBoot::Shutdown();
        zBoot(zTerrace::Startup, zTerrace::Shutdown, zTerrace::kModuleID);
        zBoot::Startup();
    }

    void Put(const std::string& text) const { std::ofstream(fLog) << text; }
    static std::string Text(const fs::path& path) {
        std::ostringstream text;
        text << std::ifstream(path).rdbuf();
        return text.str();
    }
    std::string Text() const { return Text(fLog); }

    fs::path fFolder;
    fs::path fLog;
};

std::string StreamText(zMemoryStream& stream) {
    zBuffer bytes;
    EXPECT_EQ(stream.ReadAll(&bytes), 0);
    return std::string(bytes.Data(), bytes.Size());
}

} // namespace

TEST_F(Trace, LinesCarryThreadAndIndent) {
    Restart();
    zTrace& trace = *zTrace::Default();
    trace.TraceNote("%s %d\n", "one", 1);
    trace.Indent(2);
    trace.TraceNoteIf(true, "two\n");
    trace.TraceNoteIf(false, "never\n");
    trace.Indent(-2);
    EXPECT_EQ(trace.SetThreadOptions(0), zTrace::kGlobalOptions);
    trace.TraceNote("bare\n");
    std::thread([] { zTrace::Default()->Trace(7, "other\n"); }).join();
    EXPECT_EQ(trace.SetThreadOptions(zTrace::kGlobalOptions), 0u);
    EXPECT_EQ(zTrace::SetGlobalOptions(0), zTrace::kThreadPrefix);
    trace.TraceNote("all bare\n");
    EXPECT_EQ(zTrace::SetGlobalOptions(zTrace::kThreadPrefix), 0u);
    EXPECT_THAT(Text(),
                testing::MatchesRegex("   1: one 1\n   1:     two\nbare\n *[0-9]+: other\nall bare\n"));
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

    zBuffer log;
    EXPECT_EQ(zTrace::Default()->GetCurrentLog(log), 0);
    EXPECT_EQ(std::string(log.Data(), log.Size()), Text());
    zString base64;
    EXPECT_EQ(zTrace::Default()->GetCurrentLogAsBase64(base64), 0);
    std::string decoded(static_cast<size_t>(Base64decode_len(base64)), '\0');
    decoded.resize(static_cast<size_t>(Base64decode(decoded.data(), base64)));
    EXPECT_EQ(decoded, Text());
    fs::resize_file(fLog, 0);
    EXPECT_EQ(zTrace::Default()->GetCurrentLogAsBase64(base64), -1);
    fs::remove(fLog);
    EXPECT_EQ(zTrace::Default()->GetCurrentLog(log), -1);
}

TEST_F(Trace, ALongLogStartsAnew) {
    zTrace::SetReportOnShutdown(false);
    for (const size_t size : {size_t{262144}, size_t{262145}}) {
        Put(std::string(size, 'x'));
        Restart();
        zTrace::SetReportOnShutdown(false);
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
    trace.Indent(2000);
    trace.TraceNote("%s", text.c_str());
    EXPECT_EQ(Text(), "   1: " + std::string(4000, ' ') + text.substr(0, 88));
    fs::resize_file(fLog, 0);
    trace.Indent(500); // no room for text any more
    trace.TraceNote("y\n");
    trace.Indent(0x7FFFFFFF);
    trace.TraceNote("z\n");
    EXPECT_EQ(Text(), "   1: y\n   1: z\n");
}

TEST_F(Trace, TheFileIsTheUsersAlone) {
    Restart();
    EXPECT_EQ(fs::status(fLog).permissions(), fs::perms(0600));
    fs::permissions(fLog, fs::perms(0644));
    Restart();
    EXPECT_EQ(fs::status(fLog).permissions(), fs::perms(0600));
}

TEST_F(Trace, WhatAnotherMayHavePutThereIsLeftAlone) {
    const fs::path victim = fFolder / "victim";
    const std::string treasure(300'000, 't');
    std::ofstream(victim) << treasure;
    std::vector<std::function<void()>> traps{
        [&] { fs::create_symlink(victim, fLog); },
        [&] { fs::create_hard_link(victim, fLog); },
        [&] { fs::create_symlink(fFolder / "missing", fLog); },
        [&] { fs::create_directory(fLog); },
        [&] { ASSERT_EQ(mkfifo(fLog.c_str(), 0600), 0); },
    };
    if (geteuid() == 0) {
        traps.emplace_back([&] {
            Put("foreign");
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
        EXPECT_EQ(Text(victim), treasure) << i;
        EXPECT_FALSE(fs::exists(fFolder / "missing")) << i;
    }
}

TEST_F(Trace, AScopeMaySendItElsewhere) {
    Restart();
    zMemoryStream stream;
    const fs::path file = fFolder / "elsewhere";
    {
        const zTraceToFile toStream("unused", &stream);
        zTrace::Default()->TraceNote("stream\n");
        {
            const zTraceToFile toFile(file.c_str(), nullptr);
            zTrace::Default()->TraceNote("file\n");
            const zTraceToFile nowhere("/nowhere/file", nullptr);
            zTrace::Default()->TraceNote("file still\n");
            std::thread([] { zTrace::Default()->TraceNote("log\n"); }).join();
        }
        zTrace::Default()->TraceNote("stream again\n");
    }
    EXPECT_EQ(StreamText(stream), "   1: stream\n   1: stream again\n");
    EXPECT_EQ(Text(file), "   1: file\n   1: file still\n");
    EXPECT_EQ(Text().substr(6), "log\n");

    fs::resize_file(fLog, 0);
    {
        const zTraceToFile toStream(nullptr, &stream);
        zTrace::Default()->set_stream(nullptr);
    }
    EXPECT_EQ(Text(), "   1: zTraceToFile::~zTraceToFile -- inernal error\n");
}

TEST_F(Trace, TheStackIsSeen) {
    Restart();
    {
        const zTraceStack outer("/a/b/file.cpp", 12, "outer");
        EXPECT_STREQ(outer.File(), "file.cpp");
        EXPECT_EQ(outer.Line(), 12);
        const zTraceStack inner("file.cpp", 13, "inner");
        zTrace::Default()->TraceNote("note\n");
    }
    EXPECT_EQ(Text(), "   1: +outer\n   1:   +inner\n   1:     note\n   1:   -inner\n   1: -outer\n");
}

TEST_F(Trace, ThreadsDontMixTheirLines) {
    Restart();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([i] {
            for (int line = 0; line < 200; ++line)
                zTrace::Default()->TraceNote("%s\n", std::string(50, static_cast<char>('a' + i)).c_str());
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    std::istringstream lines(Text());
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        const std::string text = line.substr(line.find(':'));
        ASSERT_EQ(text, ": " + std::string(50, text.back()));
    }
    EXPECT_EQ(count, 800);
}

#include "zOS.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include "FakeHost.h"
#include "z4CCCC.h"
#include "zDebug_posix_signal.h"
#include "zString.h"
#include "zrelease.h"

namespace {

/// A machine with one resource.
class ReporterHost : public FakeHost {
  public:
    explicit ReporterHost(std::string path) : fDesktop(std::move(path)) {}
    host::Desktop& DesktopPort() override { return fDesktop; }

  private:
    class OneResource : public host::Desktop {
      public:
        explicit OneResource(std::string path) : fPath(std::move(path)) {}
        std::string ResourcePath(const std::string& name) override {
            return name == "Crash Reporter.app" ? fPath : std::string();
        }

      private:
        std::string fPath;
    };
    OneResource fDesktop;
};

constexpr int kCrashes[] = {SIGILL, SIGFPE, SIGBUS, SIGSEGV};

/// Sanitizers come with handlers of their own, which would win.
void LeaveCrashesToTheSystem() {
    for (const int signal : kCrashes)
        std::signal(signal, SIG_DFL);
}

void Say(const char* text, char*) {
    [[maybe_unused]] const auto written = write(STDERR_FILENO, text, std::strlen(text));
}

} // namespace

TEST(OS, ReleasesAndTheirUpdates) {
    struct Case {
        const char (&code)[5];
        uint32_t id;
        uint32_t first, last; ///< Versions that are this release.
    };
    static constexpr Case kReleases[] = {
        {"jagr", z4CCCC("jagr"), 0x1020, 0x102F}, {"pnth", z4CCCC("pnth"), 0x1030, 0x103F},
        {"tigr", z4CCCC("tigr"), 0x1040, 0x104F}, {"tig7", z4CCCC("tig7"), 0x1047, 0x1047},
        {"leop", z4CCCC("leop"), 0x1050, 0x105F}, {"snow", z4CCCC("snow"), 0x1060, 0x106F},
        {"lion", z4CCCC("lion"), 0x1070, 0x107F}, {"mntn", z4CCCC("mntn"), 0x1080, 0x108F},
    };
    FakeHost machine;
    const host::HostScope scope(machine);
    for (uint32_t version = 0x1010; version < 0x10A0; ++version) {
        machine.systemVersion = version;
        for (const Case& c : kReleases) {
            EXPECT_EQ(zOS::IsVersion(c.id), version >= c.first && version <= c.last) << c.code << version;
            EXPECT_EQ(zOS::IsVersionOrLater(c.id), version >= c.first) << c.code << version;
        }
        EXPECT_FALSE(zOS::IsVersion(z4CCCC("none")) || zOS::IsVersionOrLater(z4CCCC("none")));
    }
}

TEST(OS, DescribesItself) {
    FakeHost machine;
    const host::HostScope scope(machine);
    EXPECT_EQ(zOS::GetFamily(), 12);
    EXPECT_STREQ(zOS::GetFamilyName(), "mac");
    EXPECT_STREQ(zOS::GetShortName(), "macosx");
    EXPECT_GE(zOS::GetCPUCount(), 1);
    zString text("left alone");
    EXPECT_STREQ(zOS::ErrorAsString(-43, text), "left alone");
    zOS::GetDetailedOSVersion(text);
    EXPECT_THAT(std::string(text),
                testing::MatchesRegex("MacOS 0x1080 with [0-9]+ CPUs \\(QuickTime 0x0\\)\\.  "
                                      "(No Vector Unit\\.|Vector Caps:( MMX)?( SSE)?( SSE2)?( Altivec)?)\n"));
}

TEST(Crash, TheHookIsToldAndTheProcessDiesOfTheSignal) {
    const char* const kTexts[] = {"Illegal Instruction", "Floating Point Exception", "Bus Error",
                                  "Segment Fault"};
    for (int i = 0; i < 4; ++i)
        EXPECT_EXIT(
            {
                LeaveCrashesToTheSystem();
                const zDebug_posix_signal debug(Say);
                std::raise(kCrashes[i]);
            },
            testing::KilledBySignal(kCrashes[i]), std::string("^") + kTexts[i] + " detected.\n$");
    EXPECT_EXIT(
        {
            LeaveCrashesToTheSystem();
            { const zDebug_posix_signal debug(Say); }
            std::raise(SIGSEGV);
        },
        testing::KilledBySignal(SIGSEGV), "^$")
        << "no hook any more";
}

TEST(Crash, AHandlerThatIsThereStays) {
    EXPECT_EXIT(
        {
            LeaveCrashesToTheSystem();
            std::signal(SIGSEGV, [](int) { std::_Exit(3); });
            const zDebug_posix_signal debug(Say);
            std::raise(SIGSEGV);
        },
        testing::ExitedWithCode(3), "^$");
}

TEST(Crash, OldSystemsGetAReporter) {
    char folder[] = "/tmp/glasspane_crash_XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const std::string reporter = std::string(folder) + "/reporter";
    const std::string report = std::string(folder) + "/report";
    std::ofstream(reporter) << "#!/bin/sh\necho \"$1\" > '" << report << "'\n";
    chmod(reporter.c_str(), 0700);

    ReporterHost machine(reporter);
    const host::HostScope scope(machine);
    const auto crash = [&machine](uint32_t version) {
        LeaveCrashesToTheSystem();
        machine.systemVersion = version;
        zrelease_startup("test");
        std::raise(SIGBUS);
    };
    // The reporter inherits standard error, for whose end the death test waits.
    EXPECT_EXIT(crash(0x1080), testing::KilledBySignal(SIGBUS), "");
    EXPECT_NE(access(report.c_str(), F_OK), 0) << "later systems have a reporter of their own";
    EXPECT_EXIT(crash(0x1049), testing::KilledBySignal(SIGBUS), "");
    std::string program;
    std::ifstream(report) >> program;
    EXPECT_NE(program.find("terrace_test"), std::string::npos) << program;
    EXPECT_GE(zrelease_uptime(), 0);
    unlink(report.c_str());
    unlink(reporter.c_str());
    rmdir(folder);
}

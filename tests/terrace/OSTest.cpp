#include "zOS.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include "FakeHost.h"
#include "TestFolder.h"
#include "z4CCCC.h"
#include "zDebug_posix_signal.h"
#include "zString.h"
#include "zrelease.h"

namespace {

/// A machine with one resource.
class ReporterHost : public FakeHost, private host::Desktop {
  public:
    explicit ReporterHost(std::string path) : fPath(std::move(path)) {}
    host::Desktop& DesktopPort() override { return *this; }

  private:
    std::string ResourcePath(const std::string& name) override {
        return name == "Crash Reporter.app" ? fPath : std::string();
    }

    const std::string fPath;
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
    const struct {
        uint32_t release, first, last; ///< Versions that are this release.
    } kReleases[] = {
        {z4CCCC("jagr"), 0x1020, 0x102F}, {z4CCCC("pnth"), 0x1030, 0x103F}, {z4CCCC("tigr"), 0x1040, 0x104F},
        {z4CCCC("tig7"), 0x1047, 0x1047}, {z4CCCC("leop"), 0x1050, 0x105F}, {z4CCCC("snow"), 0x1060, 0x106F},
        {z4CCCC("lion"), 0x1070, 0x107F}, {z4CCCC("mntn"), 0x1080, 0x108F}, {z4CCCC("none"), 0xFFFFF, 0},
    };
    FakeHost machine;
    const host::HostScope scope(machine);
    for (uint32_t version = 0x1010; version < 0x10A0; ++version) {
        machine.systemVersion = version;
        for (const auto& [release, first, last] : kReleases) {
            EXPECT_EQ(zOS::IsVersion(release), version >= first && version <= last) << first << version;
            EXPECT_EQ(zOS::IsVersionOrLater(release), version >= first) << first << version;
        }
    }
}

TEST(OS, DescribesItself) {
    FakeHost machine;
    const host::HostScope scope(machine);
    EXPECT_EQ(zOS::GetFamily(), 12);
    EXPECT_STREQ(zOS::GetFamilyName(), "mac");
    EXPECT_STREQ(zOS::GetShortName(), "macosx");
    zString text;
    zOS::GetDetailedOSVersion(text);
    EXPECT_THAT(std::string(text), testing::StartsWith("MacOS 0x1080 with "));
}

TEST(Crash, TheHookIsToldAndTheProcessDiesOfTheSignal) {
    const std::pair<int, const char*> kCases[] = {{SIGILL, "^Illegal Instruction detected.\n$"},
                                                  {SIGFPE, "^Floating Point Exception detected.\n$"},
                                                  {SIGBUS, "^Bus Error detected.\n$"},
                                                  {SIGSEGV, "^Segment Fault detected.\n$"}};
    for (const auto& [signal, text] : kCases)
        EXPECT_EXIT(
            {
                LeaveCrashesToTheSystem();
                { const zDebug_posix_signal taken(Say); }
                const zDebug_posix_signal debug(Say);
                std::raise(signal);
            },
            testing::KilledBySignal(signal), text);
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
    const TestFolder folder;
    const std::string reporter = folder / "reporter";
    folder.Write("reporter", "#!/bin/sh\necho \"$1\" > '" + (folder / "report").string() + "'\n");
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
    EXPECT_EQ(folder.Read("report"), "") << "later systems have a reporter of their own";
    EXPECT_EXIT(crash(0x1049), testing::KilledBySignal(SIGBUS), "");
    EXPECT_THAT(folder.Read("report"), testing::HasSubstr("terrace_test"));
}

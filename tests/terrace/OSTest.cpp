#include "zOS.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>

#include <unistd.h>

#include "FakeHost.h"
#include "z4CCCC.h"
#include "zDebug_posix_signal.h"

namespace {

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

TEST(Crash, TheHookIsToldAndTheProcessDiesOfTheSignal) {
    const std::pair<int, const char*> kCases[] = {{SIGILL, "^Illegal Instruction detected.\n$"},
                                                  {SIGFPE, "^Floating Point Exception detected.\n$"},
                                                  {SIGBUS, "^Bus Error detected.\n$"},
                                                  {SIGSEGV, "^Segment Fault detected.\n$"}};
    for (const auto& [signal, text] : kCases)
        EXPECT_EXIT(
            {
                std::signal(signal, SIG_DFL); // Sanitizers come with handlers of their own, which would win.
                { const zDebug_posix_signal taken(Say); }
                const zDebug_posix_signal debug(Say);
                std::raise(signal);
            },
            testing::KilledBySignal(signal), text);
}

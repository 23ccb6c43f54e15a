#include "zOS.h"

#include <unistd.h>

#include "Host.h"
#include "z4CCCC.h"
#include "zString.h"

namespace {

constexpr uint32_t kUpdateMask = 0xFFF0; // The last digit counts the updates of a release.

struct Release {
    uint32_t code;
    uint32_t version;
};

constexpr uint32_t kExactUpdate = z4CCCC("tig7");

constexpr Release kReleases[] = {
    {z4CCCC("jagr"), 0x1020}, {z4CCCC("pnth"), 0x1030}, {z4CCCC("tigr"), 0x1040}, {kExactUpdate, 0x1047},
    {z4CCCC("leop"), 0x1050}, {z4CCCC("snow"), 0x1060}, {z4CCCC("lion"), 0x1070}, {z4CCCC("mntn"), 0x1080},
};

const Release* find_release(uint32_t code) {
    for (const Release& release : kReleases) {
        if (release.code == code)
            return &release;
    }
    return nullptr;
}

} // namespace

bool zOS::IsVersion(uint32_t code) {
    const Release* release = find_release(code);
    if (!release)
        return false;
    const uint32_t version = host::Host::Current().SystemVersion();
    return (code == kExactUpdate ? version : version & kUpdateMask) == release->version;
}

bool zOS::IsVersionOrLater(uint32_t code) {
    const Release* release = find_release(code);
    return release && host::Host::Current().SystemVersion() >= release->version;
}

void zOS::GetDetailedOSVersion(zString& text) {
    static constexpr struct {
        unsigned int bit;
        const char* name;
    } kUnits[] = {{kMMX, " MMX"}, {kSSE, " SSE"}, {kSSE2, " SSE2"}, {kAltivec, " Altivec"}};
    constexpr unsigned long kNoQuickTime = 0;

    text.sprintf("MacOS 0x%lx with %ld CPUs (QuickTime 0x%lx).  ",
                 static_cast<unsigned long>(host::Host::Current().SystemVersion()),
                 static_cast<long>(GetCPUCount()), kNoQuickTime);
    const unsigned int caps = GetVectorUnitCaps();
    text += caps ? "Vector Caps:" : "No Vector Unit.";
    for (const auto& unit : kUnits) {
        if (caps & unit.bit)
            text += unit.name;
    }
    text += "\n";
}

int zOS::GetCPUCount() {
    const long count = sysconf(_SC_NPROCESSORS_ONLN);
    return count > 0 ? static_cast<int>(count) : 1;
}

unsigned int zOS::GetVectorUnitCaps() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_cpu_init();
    return (__builtin_cpu_supports("mmx") ? kMMX : 0) | (__builtin_cpu_supports("sse") ? kSSE : 0) |
           (__builtin_cpu_supports("sse2") ? kSSE2 : 0);
#else
    return 0;
#endif
}

const char* zOS::ErrorAsString(long, zString& text) {
    return text;
}

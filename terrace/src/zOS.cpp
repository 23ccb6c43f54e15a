#include "zOS.h"

#include "Host.h"
#include "z4CCCC.h"

namespace {

constexpr uint32_t kUpdateMask = 0xFFF0; // The last digit counts the updates of a release.

struct Release {
    uint32_t code;
    uint32_t version;
};

constexpr uint32_t kExactUpdate = z4CCCC("tig7");

constexpr Release kReleases[] = {
    {z4CCCC("jagr"), 0x1020}, {z4CCCC("pnth"), 0x1030}, {z4CCCC("tigr"), 0x1040},
    {kExactUpdate, 0x1047},            {z4CCCC("leop"), 0x1050}, {z4CCCC("snow"), 0x1060},
    {z4CCCC("lion"), 0x1070}, {z4CCCC("mntn"), 0x1080},
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

#include "zIDGenerator.h"

#include <sys/random.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "zString.h"
#include "zTrace.h"

unsigned int zIDGenerator::Generate([[maybe_unused]] char kind) {
    constexpr unsigned int kExhausted = 0xFFFFFFFE;
    const unsigned int id = fCurrentID.fetch_add(1) + 1;
    if (id >= kExhausted) {
        zTrace::Default()->TraceNote(
            "zIDGenerator: Please contact quillon tech support error: id overflow\n");
        std::exit(1);
    }
    return id;
}

unsigned int GetIDFromZGenerator() {
    return zIDGenerator::Generate('g');
}

/// RFC 4122, version 4: 122 random bits, with the version in the top of byte 6 and the variant in the top of
/// byte 8.
void zIDGenerator::GenerateUUID(zString& uuid) {
    uint8_t bytes[16];
    if (getrandom(bytes, sizeof bytes, 0) != static_cast<ssize_t>(sizeof bytes)) {
        std::random_device device;
        for (uint8_t& byte : bytes)
            byte = static_cast<uint8_t>(device());
    }
    bytes[6] = static_cast<uint8_t>((bytes[6] & 0x0F) | 0x40);
    bytes[8] = static_cast<uint8_t>((bytes[8] & 0x3F) | 0x80);
    uuid.Clear();
    for (int i = 0; i < 16; ++i) {
        char digits[4];
        const bool dash = i == 4 || i == 6 || i == 8 || i == 10;
        std::snprintf(digits, sizeof digits, dash ? "-%02X" : "%02X", unsigned{bytes[i]});
        uuid += digits;
    }
}

#pragma once

#include <cstdint>

/// A four-character code, the first character in the most significant byte: z4CCCC("xTag") is 0x78546167.
consteval uint32_t z4CCCC(const char (&text)[5]) {
    uint32_t code = 0;
    for (int i = 0; i < 4; ++i)
        code = code << 8 | static_cast<uint8_t>(text[i]);
    return code;
}

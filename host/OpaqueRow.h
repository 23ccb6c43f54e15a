#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace host {

/// Copies \p width pixels of an Image, the undefined byte of each set to 255. Source and target may have any
/// alignment. This is the one copy that a picture's bytes go through.
inline void CopyRowOpaque(uint8_t* target, const uint8_t* source, int width) {
    constexpr uint8_t kLastByte[4] = {0, 0, 0, 0xFF};
    uint32_t opaque;
    std::memcpy(&opaque, kLastByte, sizeof opaque);
    const size_t bytes = static_cast<size_t>(width) * sizeof opaque;
    for (size_t at = 0; at < bytes; at += sizeof opaque) {
        uint32_t pixel;
        std::memcpy(&pixel, source + at, sizeof pixel);
        pixel |= opaque;
        std::memcpy(target + at, &pixel, sizeof pixel);
    }
}

} // namespace host

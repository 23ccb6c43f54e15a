#include "SoundRing.h"

#include <algorithm>

namespace receiver {

void SoundRing::Append(std::span<const uint8_t> samples) {
    size_t frames = samples.size() / kFrameBytes;
    if (frames > kFrames) {
        samples = samples.subspan((frames - kFrames) * kFrameBytes);
        fEnd += frames - kFrames;
        frames = kFrames;
    }
    const size_t place = static_cast<size_t>(fEnd % kFrames) * kFrameBytes;
    const size_t size = frames * kFrameBytes;
    const size_t first = std::min(size, fBytes.size() - place);
    std::copy_n(samples.begin(), first, fBytes.begin() + static_cast<ptrdiff_t>(place));
    std::copy_n(samples.begin() + static_cast<ptrdiff_t>(first), size - first, fBytes.begin());
    fEnd += frames;
}

void SoundRing::Read(uint64_t& place, std::vector<uint8_t>& out) const {
    place = std::max(std::min(place, fEnd), fEnd - std::min<uint64_t>(fEnd, kFrames));
    out.clear();
    while (place < fEnd) {
        const auto start = static_cast<size_t>(place % kFrames);
        const auto frames = std::min<size_t>(kFrames - start, static_cast<size_t>(fEnd - place));
        const uint8_t* bytes = fBytes.data() + start * kFrameBytes;
        out.insert(out.end(), bytes, bytes + frames * kFrameBytes);
        place += frames;
    }
}

} // namespace receiver

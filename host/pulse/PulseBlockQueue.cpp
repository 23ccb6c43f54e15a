#include "PulseBlockQueue.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace host {

PulseBlockQueue::PulseBlockQueue(size_t blocks, size_t blockBytes, size_t frameBytes)
    : fBlockBytes(blockBytes / frameBytes * frameBytes), fBlocks(blocks) {}

void PulseBlockQueue::Push(const void* samples, size_t size) {
    {
        const std::lock_guard hold(fMutex);
        const auto* source = static_cast<const uint8_t*>(samples);
        while (size > 0) {
            const size_t part = std::min(size, fBlockBytes);
            std::vector<uint8_t>& block = next_free();
            if (source) {
                block.assign(source, source + part);
                source += part;
            } else {
                block.assign(part, 0);
            }
            size -= part;
        }
    }
    fFilled.notify_one();
}

std::vector<uint8_t>& PulseBlockQueue::next_free() {
    if (fCount == fBlocks.size()) {
        fFirst = (fFirst + 1) % fBlocks.size();
        --fCount;
        ++fDropped;
    }
    return fBlocks[(fFirst + fCount++) % fBlocks.size()];
}

bool PulseBlockQueue::Wait(unsigned milliseconds) {
    std::unique_lock hold(fMutex);
    return fFilled.wait_for(hold, std::chrono::milliseconds(milliseconds), [this] { return fCount > 0; });
}

bool PulseBlockQueue::IsEmpty() {
    const std::lock_guard hold(fMutex);
    return fCount == 0;
}

int PulseBlockQueue::Pop(void* block, uint32_t& size) {
    const std::lock_guard hold(fMutex);
    if (fCount == 0)
        return -1;
    const std::vector<uint8_t>& oldest = fBlocks[fFirst];
    fFirst = (fFirst + 1) % fBlocks.size();
    --fCount;
    if (oldest.size() > size) {
        ++fDropped;
        return -1;
    }
    std::memcpy(block, oldest.data(), oldest.size());
    size = static_cast<uint32_t>(oldest.size());
    return 0;
}

uint64_t PulseBlockQueue::Dropped() {
    const std::lock_guard hold(fMutex);
    return fDropped;
}

} // namespace host

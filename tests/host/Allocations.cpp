#include "Allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

static std::atomic<size_t> gAllocations{0};

size_t AllocationsSoFar() {
    return gAllocations;
}

// The other forms of new and delete come down to these.
void* operator new(size_t size) {
    ++gAllocations;
    if (void* memory = std::malloc(size ? size : 1))
        return memory;
    std::abort();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}

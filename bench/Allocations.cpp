#include "Allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<int64_t> gAllocations{0};
}

int64_t AllocationCount() {
    return gAllocations;
}

// Replacing these two covers the array forms too, which call them.
void* operator new(size_t size) {
    ++gAllocations;
    if (void* block = malloc(size ? size : 1))
        return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    free(block);
}

void operator delete(void* block, size_t) noexcept {
    free(block);
}

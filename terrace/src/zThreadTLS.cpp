#include "zThreadTLS.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <vector>

#include <pthread.h>

#include "z4CCCC.h"
#include "zCritical.h"
#include "zResult.h"
#include "zThread.h"

namespace {

enum class Kind : uint32_t { kClass = z4CCCC("clas"), kArray = z4CCCC("aray") };

constexpr int kNoSlot = -1;
constexpr int kMaxSlots = 31;

struct Slot {
    Kind kind;
    pthread_key_t key;
};

/// What one thread has in one managed slot. One of the two is in use.
struct ThreadBlock {
    std::vector<int> array;
    std::unique_ptr<zThreadTLS> object;
};

// An entry is written under the lock before the count covers it, and then never changes: looking one up
// takes no lock.
Slot gTLS_Slots[kMaxSlots];
std::atomic<int> gTLS_SlotCount{0};
std::unique_ptr<zCritical> gTLS_Critical;

thread_local bool gManagedThread = false;

/// Null for a slot that is not reserved or of the other kind.
const Slot* find_slot(int slot, Kind kind) {
    if (slot < 0 || slot >= gTLS_SlotCount.load(std::memory_order_acquire))
        return nullptr;
    return gTLS_Slots[slot].kind == kind ? &gTLS_Slots[slot] : nullptr;
}

ThreadBlock* block_of(const Slot& slot) {
    return static_cast<ThreadBlock*>(pthread_getspecific(slot.key));
}

/// The calling thread's block, made at first use. Null without memory for the platform's table.
ThreadBlock* find_or_make_block(const Slot& slot) {
    if (ThreadBlock* block = block_of(slot))
        return block;
    auto block = std::make_unique<ThreadBlock>();
    return pthread_setspecific(slot.key, block.get()) == 0 ? block.release() : nullptr;
}

/// The platform calls it for threads that end without TLS_ThreadEnd, because zThread did not start them.
void delete_block(void* block) {
    delete static_cast<ThreadBlock*>(block);
}

void release_block(const Slot& slot) {
    ThreadBlock* block = block_of(slot);
    pthread_setspecific(slot.key, nullptr);
    delete_block(block);
}

int reserve_slot(Kind kind) {
    const zAutoCritical lock(gTLS_Critical.get());
    const int slot = gTLS_SlotCount.load(std::memory_order_relaxed);
    pthread_key_t key;
    if (slot == kMaxSlots || pthread_key_create(&key, delete_block) != 0)
        return kNoSlot;
    gTLS_Slots[slot] = {kind, key};
    gTLS_SlotCount.store(slot + 1, std::memory_order_release);
    return slot;
}

} // namespace

void zThread::TLS_Startup() {
    gTLS_Critical.reset(zCritical::Factory(1));
}

void zThread::TLS_Shutdown() {
    TLS_ThreadEnd();
    for (int count = gTLS_SlotCount.exchange(0); count > 0; --count)
        pthread_key_delete(gTLS_Slots[count - 1].key);
    gTLS_Critical.reset();
}

int zThread::TLS_ReserveSlot() {
    pthread_key_t key;
    return pthread_key_create(&key, nullptr) == 0 ? static_cast<int>(key) : kNoSlot;
}

void* zThread::TLS_GetData(int slot) {
    return slot < 0 ? nullptr : pthread_getspecific(static_cast<pthread_key_t>(slot));
}

int zThread::TLS_SetData(int slot, void* data) {
    const bool set = slot >= 0 && pthread_setspecific(static_cast<pthread_key_t>(slot), data) == 0;
    return set ? result::kOk : result::kFailure;
}

int zThread::TLS_ReserveInt32ArraySlot() {
    return reserve_slot(Kind::kArray);
}

int zThread::TLS_ReserveClassSlot() {
    return reserve_slot(Kind::kClass);
}

int zThread::TLS_GetInt32Array(int slot, int** array, int* count, int minimum) {
    const Slot* found = find_slot(slot, Kind::kArray);
    ThreadBlock* block = found ? find_or_make_block(*found) : nullptr;
    if (!block)
        return result::kFailure;
    const auto wanted = static_cast<size_t>(std::max(minimum, 0));
    if (block->array.size() < wanted)
        block->array.resize(2 * wanted);
    *array = block->array.data();
    *count = static_cast<int>(block->array.size());
    return result::kOk;
}

void zThread::TLS_FreeInt32Array(int slot) {
    if (const Slot* found = find_slot(slot, Kind::kArray))
        release_block(*found);
}

zThreadTLS* zThread::TLS_GetClass(int slot) {
    const Slot* found = find_slot(slot, Kind::kClass);
    const ThreadBlock* block = found ? block_of(*found) : nullptr;
    return block ? block->object.get() : nullptr;
}

int zThread::TLS_SetClass(int slot, zThreadTLS* object) {
    std::unique_ptr<zThreadTLS> owned(object);
    const Slot* found = find_slot(slot, Kind::kClass);
    ThreadBlock* block = found ? find_or_make_block(*found) : nullptr;
    if (!block || block->object)
        return result::kFailure;
    block->object = std::move(owned);
    return result::kOk;
}

void zThread::TLS_ThreadBegin() {
    gManagedThread = true;
}

void zThread::TLS_ThreadEnd() {
    const zAutoCritical lock(gTLS_Critical.get());
    const int count = gTLS_SlotCount.load(std::memory_order_relaxed);
    for (int slot = 0; slot < count; ++slot)
        release_block(gTLS_Slots[slot]);
}

bool zThread::TLS_IsManagedThread() {
    return gManagedThread;
}

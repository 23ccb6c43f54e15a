#include "MainThreadQueue.h"

#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace host {

MainThreadQueue::MainThreadQueue() : fEvent(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

MainThreadQueue::~MainThreadQueue() {
    Close();
    if (fEvent >= 0)
        close(fEvent);
}

bool MainThreadQueue::Perform(const std::function<void()>& work) {
    if (std::this_thread::get_id() == fMainThread) {
        work();
        return true;
    }
    Entry entry{work};
    std::unique_lock lock(fLock);
    if (fClosed || fEvent < 0) // Nobody would ever hear of it.
        return false;
    fEntries.push_back(&entry);
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(fEvent, &one, sizeof one);
    fFinished.wait(lock, [&] { return entry.state != Entry::kWaiting; });
    return entry.state == Entry::kDone;
}

void MainThreadQueue::Close() {
    const std::scoped_lock lock(fLock);
    fClosed = true;
    for (Entry* entry : fEntries)
        entry->state = Entry::kRefused;
    fEntries.clear();
    fFinished.notify_all();
}

void MainThreadQueue::Drain() {
    uint64_t count;
    [[maybe_unused]] const ssize_t taken = read(fEvent, &count, sizeof count);
    while (Entry* entry = take_first()) {
        entry->work();
        finish(*entry);
    }
}

MainThreadQueue::Entry* MainThreadQueue::take_first() {
    const std::scoped_lock lock(fLock);
    if (fEntries.empty())
        return nullptr;
    Entry* entry = fEntries.front();
    fEntries.pop_front();
    return entry;
}

void MainThreadQueue::finish(Entry& entry) {
    const std::scoped_lock lock(fLock);
    entry.state = Entry::kDone;
    fFinished.notify_all();
}

} // namespace host

#pragma once

#include <chrono>
#include <functional>
#include <thread>

/// Looks again and again until a condition holds; false when it doesn't within a time that even a very busy
/// machine keeps to.
inline bool Await(const std::function<bool()>& condition,
                  std::chrono::milliseconds bound = std::chrono::seconds(30)) {
    const auto end = std::chrono::steady_clock::now() + bound;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

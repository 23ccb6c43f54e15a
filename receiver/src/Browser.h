#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "Interruption.h"

namespace receiver {

/// Finds servers on the local network.
class Browser {
  public:
    struct Server {
        std::string name;
        std::string host;
        uint16_t port = 0;
        std::string version; ///< Of the protocol, as announced.
    };

    /// Listens for so long, or until the interruption, and tells who is there, by name. False with a reason
    /// if this machine can't look. Main thread, whose loop it runs.
    static bool Find(std::chrono::milliseconds time, const Interruption& interruption,
                     std::vector<Server>& servers, std::string& reason);
};

} // namespace receiver

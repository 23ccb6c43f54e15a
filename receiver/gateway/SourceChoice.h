#pragma once

#include <mutex>
#include <string>

#include "Address.h"

namespace receiver {

class Interruption;

/// The server's menu of sources for those who ask here. Each question gets a connection of its own, and one
/// is asked at a time. Any thread.
class SourceChoice {
  public:
    /// What to tell the one who asked.
    struct Answer {
        int status; ///< Of HTTP.
        std::string json;
    };

    SourceChoice(Address server, const Interruption& interruption)
        : fServer(std::move(server)), fInterruption(interruption) {}

    /// The sources that the server offers.
    Answer List();
    /// Makes the server show {"screen": 0, "region": false} or {"window": "title"}.
    Answer Choose(const std::string& json);

  private:
    const Address fServer;
    const Interruption& fInterruption;
    std::mutex fMutex; ///< One question at a time.
};

} // namespace receiver

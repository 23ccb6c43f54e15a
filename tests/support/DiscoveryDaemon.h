#pragma once

#include <memory>
#include <string>

#include "Program.h"
#include "TestFolder.h"

/// Avahi's daemon on a message bus of its own, in a network that consists of this machine's loopback
/// interface alone: nothing is heard or said outside. This process and the programs that it starts from then
/// on are in that network for good, so start it before any thread.
class DiscoveryDaemon {
  public:
    /// Starts the daemon; false, with a reason, when it doesn't come up.
    bool Start();
    const std::string& WhyNot() const { return fWhyNot; }

    /// Ends the daemon without a warning, as a crash would.
    void Kill() { fDaemon.reset(); }

  private:
    static bool enter_private_network();
    void write_configuration() const;

    TestFolder fFolder;
    std::unique_ptr<Program> fBus;
    std::unique_ptr<Program> fDaemon;
    std::string fWhyNot;
};

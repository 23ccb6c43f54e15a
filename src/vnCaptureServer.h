#pragma once

#include <memory>
#include <string>

#include "cHttpServer.h"
#include "vnConfigurableSnapshot.h"
#include "zCritical.h"

/// The whole server: the capture front with a device for each display, the RPC services on it, and the HTTP
/// server that carries them. It needs an installed host and started library modules, and it serves from its
/// construction to its destruction, which waits for all its threads. Main thread only.
class vnCaptureServer {
  public:
    static constexpr int kDefaultPort = 7272;

    /// \p port 0 takes a free one. \p bindAddress is the dotted address to listen on, null for all.
    explicit vnCaptureServer(int port = kDefaultPort, const char* bindAddress = nullptr);
    ~vnCaptureServer();
    vnCaptureServer(const vnCaptureServer&) = delete;
    vnCaptureServer& operator=(const vnCaptureServer&) = delete;

    cHttpServer& Server() { return *fServer; }

    /// The capture front. The server's threads use it too: every call but those for its flags needs the lock.
    vnConfigurableSnapshot& Front() { return *fFront; }

  private:
    void add_displays();
    void install_services();

    // Torn down from the last to the first: the server's handler holds the services, which use lock and
    // front.
    std::unique_ptr<zCritical> fLock;
    std::unique_ptr<vnConfigurableSnapshot> fFront;
    std::unique_ptr<cHttpServer> fServer;
};

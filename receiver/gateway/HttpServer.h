#pragma once

#include <atomic>
#include <chrono>
#include <list>
#include <mutex>
#include <string>
#include <thread>

#include <httplib.h>

#include "Address.h"

namespace receiver {

/// An HTTP server whose connections are counted, have a thread each, and can all be ended at once. Who reads
/// or writes too slowly is left.
class HttpServer : public httplib::Server {
  public:
    static constexpr size_t kMaxConnections = 64;

    HttpServer();
    ~HttpServer() override;

    /// Takes the address; port 0 finds a free one. False with a reason.
    bool Open(const Address& address, std::string& reason);
    /// Where it listens.
    int Port() const { return fPort; }

    /// Serves until End, or until the system takes the socket away. Once, after Open.
    void Serve();
    bool IsServing() const { return !fIsDone; }
    /// Breaks off all connections and makes Serve return. Another thread than Serve's.
    void End();

  private:
    struct Peer {
        int socket;
        bool isDone;
        std::thread thread;
    };

    bool process_and_close_socket(socket_t socket) override;
    void serve(Peer& peer);
    bool add_peer(int socket);
    void end_peers();

    int fPort = 0;
    std::atomic<bool> fIsDone = false;
    std::mutex fMutex;       ///< For the list.
    std::list<Peer> fPeers;  ///< Those that are done stay until the next one comes.
    bool fTakesPeers = true; ///< Guarded as well.
};

} // namespace receiver

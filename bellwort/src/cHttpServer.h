#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "zHeap.h"
#include "zSocket.h"
#include "zThread.h"

class cHttpHandler;
class cHttpRequest;
struct cHttpServerData;

/// A small HTTP/1.1 server: one thread, one `select` loop, connections that stay open until the client closes
/// them. That thread accepts, reads, parses, runs the handler and writes the reply, so handlers see one
/// request at a time and a request in hand holds up all others. Construct it, install handlers, and destroy
/// it; the destructor waits for the thread.
class cHttpServer final : public zThreadMain {
  public:
    /// Starts the thread, which then listens on `port` (0: any free one). `readSize` is the most that is read
    /// from one client at a time, in bytes; it limits no request. `bindAddress` is the dotted address to
    /// listen on, null for all IPv4 interfaces.
    cHttpServer(int port, int readSize, const char* bindAddress = nullptr);
    ~cHttpServer() override;
    cHttpServer(const cHttpServer&) = delete;
    cHttpServer& operator=(const cHttpServer&) = delete;

    /// Appends a handler and takes a reference to it. Handlers are asked in the order of their installation;
    /// a request that comes before the first one gets no answer. Any thread.
    void InstallHandler(cHttpHandler& handler);

    /// Waits until the server's thread listens or has failed to. 0, or the socket's code: -26 for a port that
    /// is taken. A server that failed stays silent. Any thread.
    int WaitUntilListening() const;
    /// Why listening failed, in the platform's words; empty while nothing failed. Valid after
    /// `WaitUntilListening`.
    const std::string& ListenFailure() const { return fListenFailure; }
    /// The port that is listened on, in host order; 0 unless `WaitUntilListening` gave 0.
    unsigned short Port() const { return fBoundPort; }

    /// Lets the thread end soon: wakes it, and cuts off a reply that is being sent. Returns 0 at once. Any
    /// thread.
    int Stop();

    int Main(int argc, const char** argv) override;

  private:
    static constexpr int kPending = 1; ///< The listening's outcome is not known yet; codes are 0 or below.

    int create_listen_socket();
    void serve_ready_clients();
    void accept_incoming();
    bool handle_client_read(cHttpServerData& client);
    void dispatch(cHttpServerData& client);
    cHttpHandler* handler_at(size_t index);
    void set_served(zSocket* socket);
    void remove_client(size_t index);

    std::atomic<bool> fRunning = true; ///< Only ever cleared, so that an early `Stop` is not lost.
    std::unique_ptr<zSocket> fListenSocket;
    _zSocket_select fListenWatch;
    zHeap<_zSocket_select*> fWatchList; ///< Entry 0 is the listen socket's, entry i + 1 that of client i.
    std::vector<std::unique_ptr<cHttpServerData>> fClients;
    std::vector<char> fReadBuffer;
    int fPort;
    std::string fBindAddress;
    std::string fListenFailure; ///< Written before `fListenResult` leaves kPending, never after.
    std::atomic<unsigned short> fBoundPort = 0;
    std::atomic<int> fListenResult = kPending;

    std::mutex fMutex; ///< A leaf: guards the two members below.
    std::vector<cHttpHandler*> fHandlers;
    zSocket* fServed = nullptr; ///< The client that a handler is writing to, for `Stop` to cut off.

    std::unique_ptr<zThread> fThread; ///< Last: it runs on all of the above.
};

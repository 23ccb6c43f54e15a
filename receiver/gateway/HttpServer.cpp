#include "HttpServer.h"

#include <cerrno>
#include <cstring>
#include <system_error>

#include "SocketStream.h"

namespace receiver {

namespace {

using namespace std::chrono_literals;

constexpr size_t kMaxBody = size_t{64} * 1024; ///< Of a request.

/// Hands each connection over at once, on the thread that took it.
class NoQueue : public httplib::TaskQueue {
    /// Nothing, or whether there was room, as the library's version has it.
    using Taken = decltype(std::declval<httplib::TaskQueue>().enqueue({}));

  public:
    Taken enqueue(std::function<void()> take) override {
        take();
        return Taken(true);
    }
    void shutdown() override {}
};

/// Not SO_REUSEPORT, with which two gateways would share one port.
void allow_quick_restart(int socket) {
    const int on = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
}

std::string failure_to_listen(const Address& address, int error) {
    if (error == EADDRINUSE)
        return "port " + std::to_string(address.port) + " is taken; choose another one with --listen";
    return "can't listen on " + address.Text() + ": " +
           (error != 0 ? std::strerror(error) : "this machine has no such address");
}

/// Says so without waiting, and leaves.
void refuse(int socket) {
    static constexpr std::string_view kReply = "HTTP/1.1 503 Service Unavailable\r\n"
                                               "Content-Type: text/plain\r\nContent-Length: 46\r\n"
                                               "Retry-After: 2\r\nConnection: close\r\n\r\n"
                                               "Too many connections. Close some, and reload.\n";
    send(socket, kReply.data(), kReply.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    shutdown(socket, SHUT_WR);
    char bytes[4096]; // Bytes left unread would make the system take the reply back.
    [[maybe_unused]] const auto got = recv(socket, bytes, sizeof bytes, MSG_DONTWAIT);
    close(socket);
}

/// Replies are whole and as they are: ranges of a live picture make no sense, and packing costs time.
void simplify(httplib::Request& request) {
    request.ranges.clear();
    request.headers.erase("Accept-Encoding");
}

} // namespace

HttpServer::HttpServer() {
    new_task_queue = [] { return new NoQueue; };
    set_socket_options(allow_quick_restart);
    set_payload_max_length(kMaxBody);
    set_keep_alive_timeout(30); // As SocketStream does it; here it is what replies tell.
    set_keep_alive_max_count(100000);
    set_post_routing_handler([](const httplib::Request&, httplib::Response& response) {
        response.headers.erase("Accept-Ranges"); // Which the library announces.
    });
}

HttpServer::~HttpServer() {
    end_peers();
    if (const socket_t unused = svr_sock_.exchange(INVALID_SOCKET); unused != INVALID_SOCKET)
        close(unused);
}

bool HttpServer::Open(const Address& address, std::string& reason) {
    errno = 0;
    fPort = address.port;
    if (address.port == 0)
        fPort = bind_to_any_port(address.host);
    else if (!bind_to_port(address.host, address.port))
        fPort = -1;
    if (fPort < 0) {
        reason = failure_to_listen(address, errno);
        return false;
    }
    ::listen(svr_sock_, SOMAXCONN); // The library lets only five wait: a page asks for more at once.
    return true;
}

void HttpServer::Serve() {
    listen_after_bind();
    end_peers();
    fIsDone = true;
}

void HttpServer::End() {
    // The library forgets an end that comes before it has begun.
    while (!is_running() && !fIsDone)
        std::this_thread::sleep_for(1ms);
    stop();
    end_peers();
}

/// On the thread that accepts.
bool HttpServer::process_and_close_socket(socket_t socket) {
    if (add_peer(socket))
        return true;
    refuse(socket);
    return false;
}

bool HttpServer::add_peer(int socket) {
    std::lock_guard lock(fMutex);
    std::erase_if(fPeers, [](Peer& peer) {
        if (peer.isDone)
            peer.thread.join();
        return peer.isDone;
    });
    if (!fTakesPeers || fPeers.size() >= kMaxConnections)
        return false;
    Peer& peer = fPeers.emplace_back(Peer{socket, false, {}});
    try {
        peer.thread = std::thread([this, &peer] { serve(peer); });
    } catch (const std::system_error&) {
        fPeers.pop_back(); // The system has no more threads.
        return false;
    }
    return true;
}

void HttpServer::serve(Peer& peer) {
    SocketStream stream(peer.socket);
    bool isClosed = false;
    while (!isClosed && stream.WaitForRequest())
        if (!process_request(stream, false, isClosed, simplify))
            break;
    shutdown(peer.socket, SHUT_RDWR);
    std::lock_guard lock(fMutex);
    close(peer.socket);
    peer.isDone = true;
}

void HttpServer::end_peers() {
    std::list<Peer> peers;
    {
        std::lock_guard lock(fMutex);
        fTakesPeers = false;
        for (const Peer& peer : fPeers)
            if (!peer.isDone)
                shutdown(peer.socket, SHUT_RDWR);
        peers.splice(peers.end(), fPeers);
    }
    for (Peer& peer : peers)
        peer.thread.join();
}

} // namespace receiver

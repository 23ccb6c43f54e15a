#include "cHttpServer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "cBellwort.h"
#include "cHttpHandler.h"
#include "cHttpRequest.h"
#include "zBoot.h"
#include "zString.h"

namespace {

constexpr int kBacklog = 3;
constexpr int kSelectTimeoutMs = 1000;

zBootIncludeModule gIncludeBellwort(cBellwort::boot_Module);

} // namespace

/// One connection: its socket, the request that is coming in, and its place in the watch list.
struct cHttpServerData {
    explicit cHttpServerData(zSocket* accepted)
        : socket(accepted), watch{accepted, _zSocket_select::kRead, 0} {}

    std::unique_ptr<zSocket> socket;
    cHttpRequest request;
    _zSocket_select watch;
};

cHttpServer::cHttpServer(int port, int readSize, const char* bindAddress)
    : fListenSocket(zSocket::Factory()),
      fListenWatch{fListenSocket.get(), _zSocket_select::kRead, 0},
      fReadBuffer(static_cast<size_t>(std::max(readSize, 1))),
      fPort(port),
      fBindAddress(bindAddress == nullptr ? "" : bindAddress),
      fThread(zThread::Factory("http server thread", this, 0, zThread::kNormalPriority)) {
    if (fThread == nullptr) {
        fListenFailure = "no thread";
        fListenResult = zSocket::kOtherError;
    }
}

cHttpServer::~cHttpServer() {
    Stop();
    if (fThread != nullptr)
        fThread->WaitForExit();
    for (cHttpHandler* handler : fHandlers)
        handler->Release();
}

void cHttpServer::InstallHandler(cHttpHandler& handler) {
    handler.AddRef();
    const std::lock_guard lock(fMutex);
    fHandlers.push_back(&handler);
}

int cHttpServer::WaitUntilListening() const {
    fListenResult.wait(kPending);
    return fListenResult;
}

int cHttpServer::Stop() {
    fRunning = false;
    // A listen socket that is shut down becomes readable, which ends the thread's wait.
    if (fListenResult == 0)
        fListenSocket->Abort();
    const std::lock_guard lock(fMutex);
    if (fServed != nullptr)
        fServed->Abort();
    return 0;
}

int cHttpServer::Main(int, const char**) {
    const int listening = create_listen_socket();
    fListenResult = listening;
    fListenResult.notify_all();
    if (listening != 0)
        return 0;

    while (fRunning) {
        int ready = 0;
        const int result = zSocket::Select(fWatchList, kSelectTimeoutMs, &ready);
        fListenWatch.interest = _zSocket_select::kRead;
        if (result != 0 || ready == 0)
            continue;
        // Requests in hand come before new connections, of which each pass takes one.
        serve_ready_clients();
        if (fRunning && fListenWatch.result == _zSocket_select::kRead)
            accept_incoming();
    }
    return 0;
}

int cHttpServer::create_listen_socket() {
    const char* address = fBindAddress.empty() ? nullptr : fBindAddress.c_str();
    int result = fListenSocket->Create(0);
    if (result == 0 && !fListenSocket->IsSelectable()) {
        if (fListenSocket->Descriptor() > 0)
            errno = EMFILE; // There is one, but too high for a descriptor set.
        result = zSocket::kOtherError;
    }
    if (result == 0)
        result = fListenSocket->SetReuseAddress();
    if (result == 0)
        result = fListenSocket->Bind(static_cast<short>(fPort), address);
    if (result == 0)
        result = fListenSocket->Listen(kBacklog);
    if (result != 0) {
        fListenFailure = std::generic_category().message(errno);
        return result;
    }
    unsigned short port = 0;
    fListenSocket->GetLocalPort(&port);
    fBoundPort = port;
    fWatchList.Append(&fListenWatch);
    return 0;
}

void cHttpServer::serve_ready_clients() {
    for (size_t i = 0; i < fClients.size() && fRunning;) {
        const bool readable = fClients[i]->watch.result == _zSocket_select::kRead;
        if (readable && !handle_client_read(*fClients[i]))
            remove_client(i); // The last client moves to this place and is looked at next.
        else
            ++i;
    }
}

void cHttpServer::remove_client(size_t index) {
    fWatchList.RemoveIndex(static_cast<unsigned int>(index + 1));
    fClients[index] = std::move(fClients.back());
    fClients.pop_back();
}

void cHttpServer::accept_incoming() {
    zSocket* socket = nullptr;
    const int result = fListenSocket->Accept(&socket, 0);
    if (result == 0) {
        socket->SetTCPNoDelay(); // Head and body leave in separate sends, which must not wait for each other.
        fClients.push_back(std::make_unique<cHttpServerData>(socket));
        fWatchList.Append(&fClients.back()->watch);
    } else if (result != zSocket::kWouldBlock) {
        // The connection stays in the queue, as with a full descriptor table: look again after the next wait
        // instead of at once.
        fListenWatch.interest = 0;
    }
}

/// Reads what has come from a client and answers it when it is a complete request. False if the connection
/// has ended.
bool cHttpServer::handle_client_read(cHttpServerData& client) {
    int got = 0;
    const int result = client.socket->Receive(fReadBuffer.data(), static_cast<int>(fReadBuffer.size()), &got);
    const bool usual =
        result == 0 ? got > 0 : result == zSocket::kWouldBlock || result == zSocket::kInProgress;
    if (!usual)
        return false;
    const cHttpRequest::State state = client.request.Append(fReadBuffer.data(), static_cast<size_t>(got));
    if (state == cHttpRequest::State::kComplete) {
        dispatch(client);
        client.request.Clear();
    }
    return state != cHttpRequest::State::kTooLarge;
}

void cHttpServer::dispatch(cHttpServerData& client) {
    const int method = client.request.Method();
    const cHttpRequest::Target target = client.request.ParseTarget();
    const zString url(target.url.c_str());
    const zString extension(target.extension.c_str());
    const zString query(target.query.c_str());

    set_served(client.socket.get());
    cHttpHandler* handler = nullptr;
    for (size_t i = 0; fRunning && (handler = handler_at(i)) != nullptr; ++i) {
        if (!handler->CanHandle(method, url, extension, query, client.request.Text()))
            continue;
        handler->Handle(client.socket.get(), method, url, extension, query, client.request.Body());
        break;
    }
    set_served(nullptr);
}

cHttpHandler* cHttpServer::handler_at(size_t index) {
    const std::lock_guard lock(fMutex);
    return index < fHandlers.size() ? fHandlers[index] : nullptr;
}

void cHttpServer::set_served(zSocket* socket) {
    const std::lock_guard lock(fMutex);
    fServed = socket;
}

#pragma once

#include <atomic>
#include <cstdint>

#include "zString.h"

class zSocket;

/// Answers the requests of a `cHttpServer` that it accepts. A handler writes its reply on the socket before
/// `Handle` returns. It runs on the server's thread, one request at a time; its life is reference-counted, so
/// that the one who installs it can let go of it.
class cHttpHandler {
  public:
    /// A request's method travels as its first four letters, the first in the most significant byte.
    static constexpr int kMethodGet = 0x47455420;
    static constexpr int kMethodPost = 0x504F5354;
    /// How long one wait for a client that does not read may last.
    static constexpr int kSendTimeoutMs = 5000;

    cHttpHandler() = default;
    cHttpHandler(const cHttpHandler&) = delete;
    cHttpHandler& operator=(const cHttpHandler&) = delete;

    /// Answers a request. `body` is what follows the header block, ended by a NUL; it may be longer than the
    /// request's Content-Length. The server ignores the result.
    virtual int Handle(zSocket* socket, int method, const zString& url, const zString& extension,
                       const zString& query, const char* body);
    /// True if this handler wants the request. `text` is all of it, from the request line on.
    virtual bool CanHandle(int method, const zString& url, const zString& extension, const zString& query,
                           const char* text);
    virtual ~cHttpHandler() = default;

    void AddRef() { ++fReferences; }
    /// Gives one reference back; the last one deletes the handler.
    void Release();

    /// The header line that names this server.
    static const char* ServerString();
    /// Sends the whole text. 0 or a socket's code.
    static int SendString(zSocket* socket, const char* text);
    /// Sends the status line and the header block of a body of `length` bytes. 0 or a socket's code.
    static int SendHeaders(zSocket* socket, int length, const char* type);
    /// Sends the not-found page. 0 or a socket's code.
    static int Send404(zSocket* socket);

  private:
    std::atomic<int32_t> fReferences = 1;
};

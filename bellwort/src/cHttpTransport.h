#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

struct cHttpMessage;

/// Carries one HTTP request at a time over libcurl, whose connections it keeps between requests. It knows
/// bytes, redirects, proxies and the framing of bodies, and nothing of time-outs or results. One thread.
class cHttpTransport {
  public:
    enum class State {
        kRunning,
        kEnded,      ///< The response is complete.
        kFailed,     ///< The connection could not be made, or broke before that.
        kReadFailed, ///< It broke while being read, or what came could not be taken.
    };

    /// Takes bytes of the response's body; false breaks the transfer off.
    using Receiver = std::function<bool(const char* bytes, size_t size)>;

    /// Redirects that are followed; one more is a failure.
    static constexpr long kMaxRedirects = 16;
    /// Header bytes that are taken; more is a failure.
    static constexpr size_t kMaxHeaderBytes = 256 * 1024;

    cHttpTransport();
    ~cHttpTransport();
    cHttpTransport(const cHttpTransport&) = delete;
    cHttpTransport& operator=(const cHttpTransport&) = delete;

    /// Whether a request can be made for this URL at all.
    static bool IsURL(const std::string& url);

    /// Starts a transfer. The message must live until the next one, or this object, has gone. Without
    /// `reuse` it gets a connection of its own, which closes behind it. False without a transport.
    bool Start(const cHttpMessage& message, bool reuse, Receiver receiver);
    /// Lets the transfer go on, after waiting at most so many milliseconds for something to happen.
    State Advance(int milliseconds);
    /// Breaks off a transfer that runs, with its connection.
    void Stop();

    // About the transfer that ran last.
    int Status() const;              ///< 0 without a response.
    std::string ContentType() const; ///< Empty if the response told none.
    int64_t ContentLength() const;   ///< -1 if the response told none.
    int64_t BytesWritten() const;    ///< Of the body that was sent.
    const char* Failure() const;     ///< In the library's words, for people.

  private:
    struct Curl;

    static size_t on_header(char* bytes, size_t, size_t size, void* self);
    static size_t on_body(char* bytes, size_t, size_t size, void* self);
    State outcome(int code) const;

    std::unique_ptr<Curl> fCurl;
    Receiver fReceiver;
    size_t fHeaderBytes = 0;
    bool fHeaderHasEnded = false; ///< Of the response that came last.
    State fState = State::kEnded;
};

#pragma once

#include <chrono>
#include <cstdint>
#include <memory>

#include "cHttpSession.h"

struct cHttpMessage;
class cHttpTransport;

/// The session over `cHttpTransport`: states, result codes, time-out, authentication, and when a connection
/// is kept for the next request.
class cHttpSession_cf final : public cHttpSession {
  public:
    cHttpSession_cf();
    ~cHttpSession_cf() override;

    void Configure(unsigned int method, const char* url, double timeout) override;
    bool IsConfigured() const override;
    void SetWSSEAuthorization(bool on, const char* user, const char* password) override;

    int Request_Begin(zBuffer* response, const zRecord* headers, const void* body, int size) override;
    int Request_Status(float* written, float* read) override;
    bool Request_IsComplete() override { return Request_Advance(0); }
    bool Request_Advance(int milliseconds) override;
    int Request_BlockUntilComplete() override;
    int Response_StatusCode(unsigned int* status) const override;
    int Response_ContentType(zString& type) const override;
    int Response_ContentLength(unsigned int* length) const override;
    void Request_Stop() override;
    unsigned int Request_ContentBytesRead() const override { return fBytesRead; }
    void Request_End() override;

  private:
    using Clock = std::chrono::steady_clock;

    int make_message();
    int set_body(const void* body, int size);
    int start();
    void reset_progress();
    void advance(int milliseconds);
    void note_progress() { fLastProgress = Clock::now(); }
    std::chrono::duration<double> silence() const { return Clock::now() - fLastProgress; }
    bool receive(const char* bytes, size_t size);
    bool make_room(size_t size);
    void finish(int status);
    void note_outcome(int status);
    void log_outcome() const;

    unsigned int fMethod = 0;
    zString fURL;
    double fTimeout = 1.0; ///< Seconds.
    bool fUsesWSSE = false;
    zString fWSSEUser;
    zString fWSSEPassword;

    // Both stay for the next request while the connection does.
    std::unique_ptr<cHttpMessage> fMessage;
    std::unique_ptr<cHttpTransport> fTransport;

    zBuffer* fResponse = nullptr; ///< Not owned. While bytes arrive it is larger than these.
    unsigned int fBytesRead = 0;
    int64_t fBytesWritten = 0;
    zString fContentType;
    int64_t fExpectedLength = 0; ///< 0 while unknown.
    Clock::time_point fLastProgress;

    bool fIsRunning = false;
    bool fIsComplete = false;
    int fStatus = 0;
    int fHttpStatus = 0;

    bool fKeepAlive = true;
    int fFailureCount = 0; ///< In a row, up to kManyFailures.
};

#include "cHttpSession_cf.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "cHttpMessage.h"
#include "cHttpTransport.h"
#include "cLogger.h"
#include "zBuffer.h"
#include "zResult.h"

namespace {

constexpr int kManyFailures = 3;
constexpr size_t kResponseGrain = 4096; ///< The response buffer grows by whole ones of these.
/// What a response announces is made room for at once up to here; beyond it must have arrived.
constexpr int64_t kTrustedLength = 16 * 1024 * 1024;

bool starts_with_scheme(const char* url) {
    constexpr unsigned int kShortest = 8;
    return std::strlen(url) >= kShortest &&
           (zString::string_equal(url, "https://", 8) || zString::string_equal(url, "http://", 7));
}

bool is_set(const char* variable) {
    const char* value = std::getenv(variable);
    return value && *value;
}

/// By the variables that the transport goes by.
bool system_uses_proxy(const char* url) {
    const bool isSecure = zString::string_equal(url, "https:", 6);
    return is_set("all_proxy") || is_set("ALL_PROXY") ||
           (isSecure ? is_set("https_proxy") || is_set("HTTPS_PROXY") : is_set("http_proxy"));
}

} // namespace

cHttpSession_cf::cHttpSession_cf() = default;

cHttpSession_cf::~cHttpSession_cf() = default;

// ---- What requests are made of ----

void cHttpSession_cf::Configure(unsigned int method, const char* url, double timeout) {
    if (method != fMethod || !(fURL == url))
        fMessage.reset();
    fMethod = method;
    fURL = url;
    fTimeout = timeout;
}

bool cHttpSession_cf::IsConfigured() const {
    return fMethod != 0 && !fURL.IsEmpty() && fTimeout > 0;
}

void cHttpSession_cf::SetWSSEAuthorization(bool on, const char* user, const char* password) {
    fUsesWSSE = on;
    fWSSEUser = user;
    fWSSEPassword = password;
    fMessage.reset();
}

int cHttpSession_cf::make_message() {
    if (!starts_with_scheme(fURL))
        return kBadURL;
    if (fMessage)
        return result::kOk;
    if (!cHttpTransport::IsURL(static_cast<const char*>(fURL)))
        return kNoMessage;
    fMessage = std::make_unique<cHttpMessage>();
    fMessage->url = static_cast<const char*>(fURL);
    fMessage->isPost = fMethod == kPost;
    // Deliberate: once for a message, so that requests on one kept connection carry the same proof.
    if (fUsesWSSE)
        fMessage->AddWSSEProof(fWSSEUser, fWSSEPassword);
    return result::kOk;
}

int cHttpSession_cf::set_body(const void* body, int size) {
    fMessage->hasBody = body != nullptr;
    fMessage->body.clear();
    if (body && size < 0)
        return kBadBody;
    if (body)
        fMessage->body.assign(static_cast<const char*>(body), static_cast<size_t>(size));
    return result::kOk;
}

// ---- A request ----

int cHttpSession_cf::Request_Begin(zBuffer* response, const zRecord* headers, const void* body, int size) {
    Request_End();
    reset_progress();
    int error = make_message();
    if (error == 0)
        error = set_body(body, size);
    if (error == 0) {
        fMessage->fields.clear();
        if (fUsesBasic)
            fMessage->SetBasicProof(fBasicUser, fBasicPassword);
        if (headers)
            fMessage->SetFields(*headers);
        fResponse = response;
        if (fResponse)
            fResponse->MakeEmpty();
        error = start();
    }
    if (error != 0) {
        fStatus = error;
        Request_End();
        return error;
    }
    if (fLogger && body)
        fLogger->Sent(fMessage->body.data(), size);
    return result::kOk;
}

int cHttpSession_cf::start() {
    if (!fTransport)
        fTransport = std::make_unique<cHttpTransport>();
    const auto receiver = [this](const char* bytes, size_t count) { return receive(bytes, count); };
    if (!fTransport->Start(*fMessage, fKeepAlive, receiver))
        return kNoStream;
    fIsRunning = true;
    note_progress();
    return result::kOk;
}

void cHttpSession_cf::reset_progress() {
    fBytesRead = 0;
    fBytesWritten = 0;
    fExpectedLength = 0;
    fContentType.Clear();
    fIsComplete = false;
    fStatus = 0;
    fHttpStatus = 0;
}

bool cHttpSession_cf::Request_Advance(int milliseconds) {
    advance(milliseconds);
    return fIsComplete;
}

int cHttpSession_cf::Request_BlockUntilComplete() {
    while (fIsRunning) {
        const double left = (fTimeout - silence().count()) * 1000;
        advance(static_cast<int>(std::clamp(std::ceil(left), 1.0, double{INT_MAX})));
    }
    return fIsComplete ? fStatus : result::kFailure;
}

void cHttpSession_cf::advance(int milliseconds) {
    if (!fIsRunning)
        return;
    const cHttpTransport::State state = fTransport->Advance(milliseconds);
    const int64_t written = fTransport->BytesWritten();
    if (written > fBytesWritten)
        note_progress();
    fBytesWritten = written;
    switch (state) {
    case cHttpTransport::State::kEnded:
        finish(result::kOk);
        break;
    case cHttpTransport::State::kFailed:
        finish(kStreamError);
        break;
    case cHttpTransport::State::kReadFailed:
        finish(kReadFailed);
        break;
    case cHttpTransport::State::kRunning:
        if (silence().count() >= fTimeout)
            finish(system_uses_proxy(fURL) ? kTimeoutByProxy : kTimeout);
    }
}

bool cHttpSession_cf::receive(const char* bytes, size_t size) {
    if (fExpectedLength == 0)
        fExpectedLength = std::max<int64_t>(fTransport->ContentLength(), 0);
    if (fResponse) {
        if (!make_room(size))
            return false;
        std::memcpy(fResponse->Data() + fBytesRead, bytes, size);
    }
    fBytesRead += static_cast<unsigned int>(size);
    note_progress();
    return true;
}

/// False for more than a buffer can hold, or without memory.
bool cHttpSession_cf::make_room(size_t size) {
    const size_t needed = fBytesRead + size;
    const size_t present = fResponse->Size();
    if (needed <= present)
        return true;
    const auto announced = static_cast<size_t>(std::min(fExpectedLength, kTrustedLength));
    const size_t wanted = std::max({needed, announced, present + present / 2});
    const size_t whole = (wanted + kResponseGrain - 1) / kResponseGrain * kResponseGrain;
    return needed <= UINT_MAX &&
           fResponse->ResizeTo(static_cast<unsigned int>(std::min<size_t>(whole, UINT_MAX)),
                               zBuffer::kKeepContents) == 0;
}

// ---- Its end ----

void cHttpSession_cf::finish(int status) {
    fIsRunning = false;
    fTransport->Stop();
    note_outcome(status);
    if (status == 0) {
        fContentType = fTransport->ContentType().c_str();
        fExpectedLength = std::max<int64_t>(fTransport->ContentLength(), 0);
        fHttpStatus = fTransport->Status();
    }
    if (fResponse)
        fResponse->ResizeTo(fBytesRead, zBuffer::kKeepContents | zBuffer::kKeepLargerBlock);
    fIsComplete = true;
    log_outcome();
}

/// Deliberate: a failure ends keep-alive, and only a success behind three failures in a row brings it back.
void cHttpSession_cf::note_outcome(int status) {
    fStatus = status;
    if (status != 0) {
        fKeepAlive = false;
        fFailureCount = std::min(fFailureCount + 1, kManyFailures);
        return;
    }
    if (fFailureCount == kManyFailures)
        fKeepAlive = true;
    fFailureCount = 0;
}

void cHttpSession_cf::log_outcome() const {
    if (!fLogger)
        return;
    if (fStatus != 0)
        fLogger->Error(fStatus, fTransport->Failure());
    if (fResponse)
        fLogger->Received(fResponse->Data(), static_cast<int>(std::min<unsigned int>(fBytesRead, INT_MAX)));
}

void cHttpSession_cf::Request_Stop() {
    if (fIsRunning)
        finish(kStopped);
}

void cHttpSession_cf::Request_End() {
    if (fIsRunning)
        fTransport->Stop();
    fIsRunning = false;
    fResponse = nullptr;
    if (fStatus != 0 || !fKeepAlive) {
        fTransport.reset();
        fMessage.reset();
    }
}

// ---- About it ----

int cHttpSession_cf::Request_Status(float* written, float* read) {
    const size_t toWrite = fMessage ? fMessage->body.size() : 0;
    if (written)
        *written = toWrite > 0 ? static_cast<float>(fBytesWritten) / static_cast<float>(toWrite) : 0;
    if (read)
        *read =
            fExpectedLength > 0 ? static_cast<float>(fBytesRead) / static_cast<float>(fExpectedLength) : 0;
    return fStatus;
}

int cHttpSession_cf::Response_StatusCode(unsigned int* status) const {
    constexpr int kHighestStatus = 999;
    if (status)
        *status = static_cast<unsigned int>(fHttpStatus);
    if (!fIsComplete)
        return fStatus != 0 ? fStatus : result::kFailure;
    if (fStatus != 0)
        return fStatus;
    const bool isSuccess = fHttpStatus >= 200 && fHttpStatus <= 299;
    return isSuccess ? result::kOk : kHttpStatusBase - std::min(fHttpStatus, kHighestStatus);
}

int cHttpSession_cf::Response_ContentType(zString& type) const {
    type = fContentType;
    return fContentType.IsEmpty() ? result::kFailure : result::kOk;
}

int cHttpSession_cf::Response_ContentLength(unsigned int* length) const {
    if (fExpectedLength == 0)
        return result::kFailure;
    *length = static_cast<unsigned int>(std::min<int64_t>(fExpectedLength, UINT_MAX));
    return result::kOk;
}

#include "Connection.h"

#include <chrono>

#include "Interruption.h"
#include "cHttpSession.h"
#include "zString.h"
#include "zXML.h"
#include "zXMLRPC.h"

namespace receiver {

namespace {

constexpr int kLookMs = 50; ///< How often a call looks whether it is to be broken off.

} // namespace

Connection::Connection(Address address, const Interruption* interruption, Limits limits)
    : fAddress(std::move(address)), fInterruption(interruption), fLimits(limits) {}

Connection::~Connection() = default;

bool Connection::Call(const char* method, Reply& reply, std::string& reason) {
    zRecord call;
    zXMLRPC(call).SetMethod(method);
    return Call(call, reply, reason);
}

bool Connection::Call(const char* method, const zRecord& members, Reply& reply, std::string& reason) {
    zRecord call;
    zXMLRPC view(call);
    view.SetMethod(method);
    view.AppendStructParam(members);
    return Call(call, reply, reason);
}

bool Connection::Call(const zRecord& call, Reply& reply, std::string& reason) {
    if (fetch(call, reply.Body(), reason)) {
        zString type;
        fSession->Response_ContentType(type);
        fBytesReceived += reply.Body().Size();
        fSession->Request_End();
        if (reply.Parse(static_cast<const char*>(type), reason))
            return true;
        reason = fAddress.Text() + ": " + reason;
    }
    fSession.reset(); // What else may be on its way there belongs to no call.
    return false;
}

/// Sends the call and waits for a successful response.
bool Connection::fetch(const zRecord& call, zBuffer& body, std::string& reason) {
    if (!fSession) {
        fSession.reset(cHttpSession::Factory());
        fSession->Configure(cHttpSession::kPost, fAddress.URL().c_str(), fLimits.seconds);
    }
    zBuffer text;
    zRecord headers;
    cHttpSession::SetContentTypeHeader(headers, "text/xml");
    if (zXML::RecordToBuffer(&text, call, zXML::kAttributes | zXML::kText, false, true) != 0) {
        reason = "the call can't be written";
        return false;
    }
    if (const int error =
            fSession->Request_Begin(&body, &headers, text.Data(), static_cast<int>(text.Size()));
        error != 0) {
        reason = failure(error);
        return false;
    }
    return wait(reason);
}

bool Connection::wait(std::string& reason) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(fLimits.seconds);
    while (!fSession->Request_Advance(kLookMs)) {
        if (fInterruption && fInterruption->IsRaised())
            reason = "interrupted";
        else if (Clock::now() >= end)
            reason = failure(cHttpSession::kTimeout);
        else if (fSession->Request_ContentBytesRead() > fLimits.bytes)
            reason = fAddress.Text() + " sends more than a reply may have";
        else
            continue;
        return false;
    }
    const int status = fSession->Response_StatusCode(nullptr);
    if (status != 0)
        reason = failure(status);
    return status == 0;
}

std::string Connection::failure(int code) const {
    const std::string server = fAddress.Text();
    switch (code) {
    case cHttpSession::kTimeout:
    case cHttpSession::kTimeoutByProxy:
        return "no reply from " + server + ": is its source paused, closed or captured by nobody?";
    case cHttpSession::kStreamError:
    case cHttpSession::kReadFailed:
        return "no connection to " + server +
               ": is Glasspane running there, and does the firewall let it in?";
    default:
        break;
    }
    if (code <= cHttpSession::kHttpStatusBase)
        return server + " answers with HTTP status " + std::to_string(cHttpSession::kHttpStatusBase - code) +
               ": no Glasspane server";
    return server + " can't be asked (error " + std::to_string(code) + ")";
}

} // namespace receiver

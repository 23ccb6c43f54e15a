#pragma once

#include "z4CCCC.h"
#include "zString.h"

class cLogger;
class zBuffer;
class zRecord;

/// An HTTP client: one request at a time, which goes on while its owner asks for it. A time-out ends silence,
/// not a long answer; it starts anew with each sign of progress. One thread.
///
/// Begin a request, ask Request_IsComplete now and then or wait by Request_BlockUntilComplete, look at the
/// response, and end the request.
class cHttpSession {
  public:
    static constexpr unsigned int kPost = z4CCCC("post");
    static constexpr unsigned int kGet = z4CCCC("get ");

    // Why a request failed.
    static constexpr int kTimeout = -14;
    static constexpr int kStreamError = -21302;    ///< The connection could not be made, or broke.
    static constexpr int kReadFailed = -21303;     ///< What came could not be read.
    static constexpr int kNoStream = -21304;       ///< There is no transport.
    static constexpr int kBadBody = -21305;        ///< A body of negative size, or one without memory.
    static constexpr int kStopped = -21306;        ///< By Request_Stop.
    static constexpr int kNoMessage = -21307;      ///< The URL is none that a request could be made for.
    static constexpr int kTimeoutByProxy = -21308; ///< A time-out where the system uses an HTTP proxy.
    static constexpr int kBadURL = -21401;         ///< Neither "http://" nor "https://".
    /// Less the HTTP status: a complete response that is no success. A status above 999 counts as 999.
    static constexpr int kHttpStatusBase = -29000;

    /// A new session of this platform, owned by the caller.
    static cHttpSession* Factory();

    cHttpSession() = default;
    virtual ~cHttpSession();
    cHttpSession(const cHttpSession&) = delete;
    cHttpSession& operator=(const cHttpSession&) = delete;

    /// Takes a reference to the logger, which gets what is sent and received; null for none.
    virtual void SetLogger(cLogger* logger);

    /// Method (kPost, or anything else for GET), URL, and the time-out in seconds. For the next request.
    virtual void Configure(unsigned int method, const char* url, double timeout) = 0;
    virtual bool IsConfigured() const = 0;

    /// From now on requests carry user and password; a null user ends that.
    virtual void SetBasicHTTPAuthentication(const char* user, const char* password);
    /// From now on requests carry a digest of password, time and a number used once, or don't. Basic
    /// authentication, if it is on too, takes the place of its "Authorization" header.
    virtual void SetWSSEAuthorization(bool on, const char* user, const char* password) = 0;

    /// Starts a request, and ends the one before. The variables of `headers` become header fields, those with
    /// a line end in them left out. The body, if not null, is copied. The response goes to the buffer, which
    /// stays the caller's and must live until Request_End; what it held is replaced as bytes arrive. 0 or one
    /// of the codes above.
    virtual int Request_Begin(zBuffer* response, const zRecord* headers, const void* body, int size) = 0;

    /// How far the request is, parts of 1 each; a response of unknown length stays at 0. Null pointers are
    /// skipped. 0, or the code of the request's failure.
    virtual int Request_Status(float* written, float* read) = 0;
    /// Lets the request go on without waiting. True once it has succeeded or failed.
    virtual bool Request_IsComplete() = 0;
    /// Lets the request go on, and waits at most so many milliseconds for something to happen to it. As
    /// Request_IsComplete.
    virtual bool Request_Advance(int milliseconds) = 0;
    /// Waits until then. 0 or the code of the failure; -1 without a request.
    virtual int Request_BlockUntilComplete() = 0;

    /// 0 for a response with a status from 200 to 299, else its code or that of the failure; -1 as long as
    /// the request isn't complete. The status itself, 0 without one, goes to `status`.
    virtual int Response_StatusCode(unsigned int* status) const = 0;
    /// 0, or -1 for a response that told none. Type and length hold for a complete request.
    virtual int Response_ContentType(zString& type) const = 0;
    /// As the response announced it: 0, or -1 if it didn't.
    virtual int Response_ContentLength(unsigned int* length) const = 0;

    /// Breaks the request off, with kStopped.
    virtual void Request_Stop() = 0;
    virtual unsigned int Request_ContentBytesRead() const = 0;
    /// Lets go of the response buffer. The connection stays for the next request if this one went well.
    virtual void Request_End() = 0;

    static void SetContentTypeHeader(zRecord& headers, const char* type);

  protected:
    cLogger* fLogger = nullptr; ///< Referenced.
    bool fUsesBasic = false;
    zString fBasicUser;
    zString fBasicPassword;
};

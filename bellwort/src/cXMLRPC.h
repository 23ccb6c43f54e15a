#pragma once

#include <memory>

class cHttpSession;
class cLogger;
class zBuffer;
class zRecord;
class zString;

/// Makes XML-RPC calls, one at a time, over an HTTP session of its own: begin a call, wait for it or ask now
/// and then whether it is complete, read the response, end it. One thread.
class cXMLRPC {
  public:
    /// The response is a multipart message, which this client does not read.
    static constexpr int kMultipartResponse = -21321;

    cXMLRPC();
    /// Configures it, too.
    cXMLRPC(const char* url, double timeout);
    ~cXMLRPC();
    cXMLRPC(const cXMLRPC&) = delete;
    cXMLRPC& operator=(const cXMLRPC&) = delete;

    /// Where calls go, and how many seconds of silence end one.
    void Configure(const char* url, double timeout);
    bool IsConfigured() const;
    void SetLogger(cLogger* logger);
    /// Calls identify themselves by WSSE.
    void SetAuthentication(const char* user, const char* password);

    /// Sends a call. The response goes to the buffer, which stays the caller's and must live until
    /// Request_End. With `escape` everything but ASCII travels as character references, themselves escaped,
    /// for servers that decode twice. 0 or a code of the session.
    int Request_Begin(zBuffer* response, const zRecord& call, bool escape);
    int Request_BlockForResponse();
    void Request_End();

    /// Parses the response, all options on. 0, kMultipartResponse, -1 for a response that is no XML or
    /// without a request, or the session's code. Deliberate: of a response shorter than announced nothing is
    /// read, with 0.
    int Request_ResponseAsXML(zRecord& record);

    // The session's own, see there.
    bool Request_IsComplete();
    int Request_Status(float* written, float* read);
    void Request_Stop();
    unsigned int Request_ContentBytesRead() const;
    int Response_StatusCode(unsigned int* status) const;
    int Response_ContentType(zString& type) const;
    int Response_ContentLength(unsigned int* length) const;

    /// Makes the record a response with a fault that tells of the code. Returns the code.
    static int MakeErrorResponse(zRecord& record, int code);

    /// UTF-8 text, up to its NUL, as ASCII: each other UTF-16 unit as "&amp;#x", its four hexadecimal digits
    /// and ";". 0, or -1 for what is no UTF-8.
    static int convert_utf8_to_escapes(zString& text, const char* utf8, unsigned int length);

  private:
    const std::unique_ptr<cHttpSession> fSession;
    zBuffer* fResponse = nullptr; ///< Of the request that was begun, not owned.
};

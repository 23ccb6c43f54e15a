#pragma once

#include <memory>

#include "cHttpHandler.h"
#include "zList.h"
#include "zRecord.h"

class cBuffer;
class cRPCExecutor;
class zBuffer;

/// Runs XML-RPC calls that are POSTed to any URL: parses the body, finds the executor of the method, and
/// sends its reply as plain XML, or as a multipart message when it comes with attachments. Pictures go to the
/// socket from where they lie. All calls come on the server's thread; executors are installed before the
/// handler is.
class cHttpHandlerRPC : public cHttpHandler {
  public:
    /// The URL plays no part: calls are taken at any.
    explicit cHttpHandlerRPC(const char* url);
    ~cHttpHandlerRPC() override;

    /// Appends an executor and takes a reference to it; the first that has a method runs it.
    void InstallExecutor(cRPCExecutor& executor);
    /// Takes the executor out of the list. The reference that was taken for it passes to the caller.
    void RemoveExecutor(cRPCExecutor& executor);

    /// True for a POST that has "<methodCall>" anywhere in its text.
    bool CanHandle(int method, const zString& url, const zString& extension, const zString& query,
                   const char* text) override;
    /// 0, or -1 after the not-found page. Deliberate: a method that fails is answered by no bytes at all;
    /// clients have a time-out of their own.
    int Handle(zSocket* socket, int method, const zString& url, const zString& extension,
               const zString& query, const char* body) override;

    /// The head of a chunked reply, and the line in front of a chunk of `length` bytes, which the caller
    /// sends itself; 0 ends the reply. For handlers that reply in pieces; the text plays no part.
    void SendChunkedHeaders(zSocket* socket);
    void SendChunkedSection(zSocket* socket, int length, const char* text);

  private:
    using Attachments = zList<cBuffer*>;

    cRPCExecutor* find_executor(const char* method);
    void execute(cRPCExecutor& executor, const char* method, zSocket* socket);
    void send_reply(zSocket* socket, const zRecord& reply, zRecord& multipart, Attachments& attachments);
    void send_xml_response(zSocket* socket, zBuffer& xml);
    void send_xml_err_response(zSocket* socket, const char* message, int code);
    void send_xop_response(zSocket* socket, zBuffer& xml, zRecord& multipart, Attachments& attachments);

    zList<cRPCExecutor*> fExecutors;
    std::unique_ptr<zRecord> fRequest; ///< Emptied before each call; executors keep no reference to it.
};

#include "cHttpHandlerRPC.h"

#include <cstring>

#include "cBuffer.h"
#include "cMultipartRecord.h"
#include "cMultipartWriter.h"
#include "cRPCExecutor.h"
#include "zBuffer.h"
#include "zSocket.h"
#include "zXML.h"
#include "zXMLRPC.h"

namespace {

constexpr unsigned int kAllOptions = 255;
constexpr unsigned int kAttributesOnly = 1;
constexpr const char* kXmlType = "text/xml";
constexpr const char* kXmlSectionType = "text/xml; charset=UTF-8";
constexpr int kUpToNUL = -1;

void send_bytes(zSocket* socket, const void* data, int size) {
    socket->Send(data, size, nullptr, cHttpHandler::kSendTimeoutMs);
}

} // namespace

cHttpHandlerRPC::cHttpHandlerRPC(const char*) : fRequest(std::make_unique<zRecord>()) {}

cHttpHandlerRPC::~cHttpHandlerRPC() {
    fExecutors.RemoveAndReleaseAll();
}

void cHttpHandlerRPC::InstallExecutor(cRPCExecutor& executor) {
    executor.AddRef();
    fExecutors.Append(&executor);
}

void cHttpHandlerRPC::RemoveExecutor(cRPCExecutor& executor) {
    fExecutors.Remove(&executor);
}

bool cHttpHandlerRPC::CanHandle(int method, const zString&, const zString&, const zString&,
                                const char* text) {
    return method == kMethodPost && strstr(text, "<methodCall>") != nullptr;
}

int cHttpHandlerRPC::Handle(zSocket* socket, int, const zString&, const zString&, const zString&,
                            const char* body) {
    fRequest->MakeEmpty();
    // A body that breaks off leaves what was parsed; whether a method was among it decides what happens.
    zXML::ParseBuffer(kAllOptions, fRequest.get(), body, kUpToNUL);
    const char* method = zXMLRPC(*fRequest).GetMethod();
    cRPCExecutor* executor = find_executor(method);
    if (executor == nullptr) {
        Send404(socket);
        return -1;
    }
    execute(*executor, method, socket);
    return 0;
}

cRPCExecutor* cHttpHandlerRPC::find_executor(const char* method) {
    for (cRPCExecutor* executor : fExecutors)
        if (executor->RPC_ImplementsMethod(method))
            return executor;
    return nullptr;
}

void cHttpHandlerRPC::execute(cRPCExecutor& executor, const char* method, zSocket* socket) {
    zRecord reply;
    zRecord multipart;
    multipart.SetCString(cMultipartRecord::kContentTypeName, cMultipartRecord::kContentType, 0);
    // Section 0 is kept for the XML, so that the executor's sections count from 1.
    cMultipartRecord(multipart).AddSection(0, kXmlSectionType);
    Attachments attachments;
    if (executor.RPC_ExecuteMethod(method, *fRequest, reply, multipart, attachments) == 0)
        send_reply(socket, reply, multipart, attachments);
    attachments.RemoveAndReleaseAll();
    executor.RPC_DataSent();
}

void cHttpHandlerRPC::send_reply(zSocket* socket, const zRecord& reply, zRecord& multipart,
                                 Attachments& attachments) {
    zBuffer xml;
    if (zXML::RecordToBuffer(&xml, reply, kAllOptions, false, false) != 0)
        return;
    // A packet for each piece would cost a turn through the network each, and wake the client for nothing.
    socket->SetTCPCork(true);
    if (attachments.IsEmpty())
        send_xml_response(socket, xml);
    else
        send_xop_response(socket, xml, multipart, attachments);
    socket->SetTCPCork(false);
}

void cHttpHandlerRPC::send_xml_response(zSocket* socket, zBuffer& xml) {
    const int size = static_cast<int>(xml.Size());
    socket->SetTCPNoDelay();
    SendHeaders(socket, size, kXmlType);
    send_bytes(socket, xml.Data(), size);
}

// Deliberate: without text nodes neither message nor code leave; clients have only ever seen the bare
// skeleton.
void cHttpHandlerRPC::send_xml_err_response(zSocket* socket, const char*, int code) {
    zRecord fault;
    zXMLRPC(fault).SetFault("Error executing method", code);
    zBuffer xml;
    if (zXML::RecordToBuffer(&xml, fault, kAttributesOnly, false, false) == 0)
        send_xml_response(socket, xml);
}

void cHttpHandlerRPC::send_xop_response(zSocket* socket, zBuffer& xml, zRecord& multipart,
                                        Attachments& attachments) {
    const int xmlSize = static_cast<int>(xml.Size());
    cMultipartRecord message(multipart);
    cMultipartRecord::Section xmlSection;
    message.GetSection(xmlSection, 0);
    xmlSection.SetDataSize(xmlSize);
    socket->SetTCPNoDelay();
    if (static_cast<unsigned int>(multipart.ChildCount()) != attachments.Count() + 1) {
        send_xml_err_response(socket, "sections and attachments disagree", -1);
        return;
    }

    cMultipartWriter writer(multipart);
    zString piece;
    zString text("HTTP/1.1 200 OK\r\nConnection: Keep-Alive\r\n");
    text += ServerString();
    text += writer.GetHttpHeader(piece, true);
    text += writer.GetSectionHeader(piece, 0);
    SendString(socket, text);
    send_bytes(socket, xml.Data(), xmlSize);
    for (int section = 1; cBuffer * attachment : attachments) {
        text = "\r\n";
        text += writer.GetSectionHeader(piece, section++);
        SendString(socket, text);
        send_bytes(socket, attachment->Data(), attachment->Size());
    }
    text = "\r\n";
    text += writer.GetMessageFooter(piece);
    SendString(socket, text);
}

void cHttpHandlerRPC::SendChunkedHeaders(zSocket* socket) {
    for (const char* line : {"HTTP/1.0 200 OK\r\n", ServerString(), "Content-Type: text/plain\r\n",
                             "Transfer-Encoding: chunked\r\n", "\r\n"})
        SendString(socket, line);
}

void cHttpHandlerRPC::SendChunkedSection(zSocket* socket, int length, const char*) {
    zString line;
    line.sprintf("%x\r\n", static_cast<unsigned int>(length));
    SendString(socket, line);
    if (length == 0)
        SendString(socket, "\r\n");
}

#include "cXMLRPC.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <string>

#include "cHttpSession.h"
#include "zBabel.h"
#include "zBuffer.h"
#include "zRecord.h"
#include "zResult.h"
#include "zXML.h"
#include "zXMLRPC.h"

namespace {

constexpr const char* kCallType = "text/xml";
constexpr const char* kMultipart = "multipart/";

} // namespace

cXMLRPC::cXMLRPC() : fSession(cHttpSession::Factory()) {}

cXMLRPC::cXMLRPC(const char* url, double timeout) : cXMLRPC() {
    Configure(url, timeout);
}

cXMLRPC::~cXMLRPC() = default;

void cXMLRPC::Configure(const char* url, double timeout) {
    fSession->Configure(cHttpSession::kPost, url, timeout);
}

bool cXMLRPC::IsConfigured() const {
    return fSession->IsConfigured();
}

void cXMLRPC::SetLogger(cLogger* logger) {
    fSession->SetLogger(logger);
}

void cXMLRPC::SetAuthentication(const char* user, const char* password) {
    fSession->SetWSSEAuthorization(true, user, password);
}

int cXMLRPC::Request_Begin(zBuffer* response, const zRecord& call, bool escape) {
    Request_End(); // What follows may fail, and the old response must not stand for the new request's.
    zBuffer xml;
    const int error = zXML::RecordToBuffer(&xml, call, zXML::kAttributes | zXML::kText, false, true);
    if (error != 0)
        return error;
    zRecord headers;
    cHttpSession::SetContentTypeHeader(headers, kCallType);
    if (!escape) {
        fResponse = response;
        return fSession->Request_Begin(response, &headers, xml.Data(), static_cast<int>(xml.Size()));
    }

    zString escaped;
    const int notText = convert_utf8_to_escapes(escaped, xml.Data(), xml.Size());
    if (notText != 0)
        return notText;
    fResponse = response;
    return fSession->Request_Begin(response, &headers, static_cast<const char*>(escaped),
                                   static_cast<int>(escaped.Length()));
}

int cXMLRPC::convert_utf8_to_escapes(zString& text, const char* utf8, unsigned int length) {
    zBuffer wide;
    if (zBabel::ConvertToWide(wide, utf8, static_cast<int>(strnlen(utf8, length)), zBabel::kUTF8) != 0)
        return result::kFailure;
    std::string escaped;
    for (unsigned int at = 0; at + sizeof(unsigned short) <= wide.Size(); at += sizeof(unsigned short)) {
        unsigned short unit;
        std::memcpy(&unit, wide.Data() + at, sizeof unit);
        if (unit == 0)
            break;
        constexpr unsigned short kFirstBeyondASCII = 128;
        if (unit < kFirstBeyondASCII) {
            escaped += static_cast<char>(unit);
            continue;
        }
        char reference[32];
        std::snprintf(reference, sizeof reference, "&amp;#x%04hX;", unit);
        escaped += reference;
    }
    text = escaped.c_str();
    return result::kOk;
}

int cXMLRPC::Request_BlockForResponse() {
    return fSession->Request_BlockUntilComplete();
}

void cXMLRPC::Request_End() {
    fResponse = nullptr;
    fSession->Request_End();
}

int cXMLRPC::Request_ResponseAsXML(zRecord& record) {
    if (fResponse == nullptr)
        return result::kFailure;
    unsigned int status = 0;
    const int error = fSession->Response_StatusCode(&status);
    if (error != 0)
        return error;
    unsigned int length = 0;
    zString type;
    if (fSession->Response_ContentLength(&length) == 0)
        fSession->Response_ContentType(type);
    else
        length = fResponse->Size();
    if (length > fResponse->Size())
        return result::kOk;
    if (length > INT_MAX) // More than any response that a reader takes.
        return result::kFailure;
    if (zString::string_equal(type, kMultipart, static_cast<int>(std::strlen(kMultipart))))
        return kMultipartResponse;
    return zXML::ParseBuffer(zXML::kAll, &record, fResponse->Data(), static_cast<int>(length));
}

bool cXMLRPC::Request_IsComplete() {
    return fSession->Request_IsComplete();
}

int cXMLRPC::Request_Status(float* written, float* read) {
    return fSession->Request_Status(written, read);
}

void cXMLRPC::Request_Stop() {
    fSession->Request_Stop();
}

unsigned int cXMLRPC::Request_ContentBytesRead() const {
    return fSession->Request_ContentBytesRead();
}

int cXMLRPC::Response_StatusCode(unsigned int* status) const {
    return fSession->Response_StatusCode(status);
}

int cXMLRPC::Response_ContentType(zString& type) const {
    return fSession->Response_ContentType(type);
}

int cXMLRPC::Response_ContentLength(unsigned int* length) const {
    return fSession->Response_ContentLength(length);
}

int cXMLRPC::MakeErrorResponse(zRecord& record, int code) {
    zXMLRPC(record).SetFault("transport fault", code);
    return code;
}

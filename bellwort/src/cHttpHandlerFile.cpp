#include "cHttpHandlerFile.h"

#include <climits>

#include "zBuffer.h"
#include "zFileStream.h"
#include "zResult.h"
#include "zSocket.h"

bool cHttpHandlerFile::CanHandle(int method, const zString&, const zString&, const zString&, const char*) {
    return method == kMethodGet;
}

int cHttpHandlerFile::Handle(zSocket* socket, int, const zString& url, const zString& extension,
                             const zString&, const char*) {
    zString path(fRoot);
    path += url;
    zFileStream file(path);
    zBuffer contents;
    if (file.Open() != 0 || file.ReadAll(&contents) != 0 || contents.Size() > INT_MAX) {
        Send404(socket);
        return result::kFailure;
    }
    const int size = static_cast<int>(contents.Size());
    SendHeaders(socket, size, extension == "zip" ? "application/zip" : "text/html");
    socket->Send(contents.Data(), size, nullptr, kSendTimeoutMs);
    return result::kOk;
}

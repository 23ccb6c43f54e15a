#include "zDebugReport.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "zFileStream.h"
#include "zResult.h"
#include "zSocket.h"
#include "zXML.h"

namespace {

constexpr unsigned int kChunkSize = 4096;
constexpr unsigned int kCopyChunk = 1024;
constexpr int kTimeoutMilliseconds = 5000;
constexpr unsigned int kNameSize = 1024; ///< Of a frame's name as XML, with its zero.
constexpr char kUnknown[] = "unknown";

std::string gServerAddress;
int gServerPort = zDebugReport::kServerPort;

const char* text_of(zDebugReport::z_fault_type type) {
    switch (type) {
    case zDebugReport::kAssertion:
        return "assertion";
    case zDebugReport::kSegFault:
        return "seg fault";
    case zDebugReport::kOkay:
        return "okay";
    }
    return "unknown fault";
}

/// As the value of an attribute.
zString escaped(const char* text) {
    zString value;
    if (!text || zXML::EncodeString(text, value) != result::kOk)
        value = kUnknown;
    return value;
}

const char* chars(const zString& text) {
    return text;
}

int wait_for_room(zSocket& socket) {
    bool writable = false;
    const int error = socket.SelectWrite(kTimeoutMilliseconds, &writable);
    if (error != result::kOk)
        return error;
    return writable ? result::kOk : zSocket::kTimedOut;
}

int connect_to_server(zSocket& socket) {
    if (gServerAddress.empty())
        return result::kFailure;
    socket.Create(0);
    const int error =
        socket.Connect(gServerAddress.c_str(), static_cast<short>(gServerPort), kTimeoutMilliseconds);
    return error == result::kOk || error == zSocket::kInProgress ? wait_for_room(socket) : error;
}

int send_report(zSocket& socket, const char* report, int size) {
    zString header;
    header.sprintf("Content-Length: %d\n", size);
    const int error =
        socket.Send(chars(header), static_cast<int>(header.Length()), nullptr, kTimeoutMilliseconds);
    if (error != result::kOk)
        return error;
    const int reportError = socket.Send(report, size, nullptr, kTimeoutMilliseconds);
    return reportError != result::kOk ? reportError : wait_for_room(socket);
}

} // namespace

void zDebugReport::SetServer(const char* address, int port) {
    gServerAddress = address ? address : "";
    gServerPort = port;
}

zDebugReport::zDebugReport() : fStream(std::make_unique<zMemoryStream>(kChunkSize)) {}

void zDebugReport::BeginReport(z_fault_type type, const char* description) {
    write("<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n");
    write("<debugreport error=\"%s\" description=\"%s\">\n", text_of(type), chars(escaped(description)));
}

void zDebugReport::SetMetaData(const z_debug_meta* meta) {
    write("<meta platform=\"%s\" build=\"%s\" uptime_secs=\"%ld\" />\n", chars(escaped(meta->platform)),
          chars(escaped(meta->build)), meta->uptimeSeconds);
}

void zDebugReport::NewThreadBlock(int id, bool current, const char*) {
    write("\t<thread id=\"%ld\" current=\"%s\">\n", static_cast<long>(id), current ? "true" : "false");
}

void zDebugReport::Frame(long long pc, const char* name) {
    char encoded[kNameSize];
    unsigned int size = sizeof encoded;
    zXML::EncodeStringHTML(name ? name : "no name found", encoded, &size);
    write("\t\t<frame pc=\"0x%08llx\">%s</frame>\n", static_cast<unsigned long long>(pc), encoded);
}

void zDebugReport::CloseThreadBlock() {
    write("\t</thread>\n");
}

void zDebugReport::EndReport() {
    write("</debugreport>");
}

int zDebugReport::TransmitToServer() {
    const std::unique_ptr<zSocket> socket(zSocket::Factory());
    const int connectError = connect_to_server(*socket);
    if (connectError != result::kOk)
        return connectError;
    char* report = nullptr;
    unsigned int size = 0;
    if (fStream->ReadAll(&report, &size) != result::kOk)
        return result::kFailure;
    const int error = send_report(*socket, report, static_cast<int>(size));
    fStream->FreeReadAll(report);
    return error;
}

void zDebugReport::PrintToConsole() {
    char* report = nullptr;
    unsigned int size = 0;
    if (fStream->ReadAll(&report, &size) == result::kOk)
        fStream->FreeReadAll(report);
}

int zDebugReport::WriteToDisk(const char* path) {
    zFileStream file(path, zFileStream::kWriteFile);
    const int error = file.Open();
    if (error != result::kOk)
        return error;
    fStream->Seek(0, zStream::kFromStart);
    return zStream::BulkWriteAll(file, *fStream, kCopyChunk);
}

void zDebugReport::write(const char* format, ...) {
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    std::string line(static_cast<size_t>(std::max(length, 0)) + 1, '\0');
    std::vsnprintf(line.data(), line.size(), format, args);
    va_end(args);
    fStream->Write(line.c_str());
}

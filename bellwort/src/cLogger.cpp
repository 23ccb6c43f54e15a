#include "cLogger.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr unsigned int kSeparatorLength = 96;

} // namespace

const char cLogger::kSeparator[] =
    "------------------------------------------------------------------------------------------------";
const char cLogger::kTruncatedMsg[] = "\n\n... message truncated ....\n";

static_assert(sizeof cLogger::kSeparator == kSeparatorLength + 1);

cLogger::cLogger(const char* path, int sizeLimit) : fPath(path), fSizeLimit(std::max(sizeLimit, 0)) {
    Start();
}

void cLogger::Start() {
    Close();
    auto stream = std::make_unique<zFileStream>(fPath, zFileStream::kWriteFile);
    if (stream->Open() == 0)
        fStream = std::move(stream);
}

void cLogger::Close() {
    if (!fStream)
        return;
    fStream->Write("\n");
    fStream->Write(kSeparator);
    fStream.reset();
}

void cLogger::Release() {
    if (--fReferences == 0)
        delete this;
}

int cLogger::RemoveFile() {
    return zFileStream::RemoveFile(fPath);
}

void cLogger::Separator(const char* title) {
    if (!fStream)
        return;
    fStream->Write("\n");
    if (title == nullptr) {
        fStream->Write(kSeparator);
    } else {
        const auto half = static_cast<unsigned int>(std::strlen(title) / 2);
        const unsigned int hyphens = half < kSeparatorLength / 2 ? kSeparatorLength / 2 - half : 0;
        fStream->Write(kSeparator, hyphens);
        fStream->Write(title);
        fStream->Write(kSeparator, hyphens);
    }
    fStream->Write("\n");
}

void cLogger::Message(const char* title, const char* text) {
    write_message(title, text, static_cast<int>(text ? std::strlen(text) : 0));
}

void cLogger::Sent(const char* data, int size) {
    write_message(" SENT ", data, size);
}

void cLogger::Received(const char* data, int size) {
    write_message(" RECEIVED ", data, size);
}

void cLogger::Error(int code, const char* text) {
    zString title;
    Message(title.sprintf(" ERROR %d ", code), text);
}

void cLogger::write_message(const char* title, const char* data, int size) {
    if (!fStream)
        return;
    Separator(title);
    if (data && size > 0)
        fStream->Write(data, static_cast<unsigned int>(std::min(size, fSizeLimit)));
    if (size > fSizeLimit)
        fStream->Write(kTruncatedMsg);
    fStream->Flush();
}

#include "zFileStream.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include "zBuffer.h"
#include "zIDGenerator.h"
#include "zResult.h"

namespace {

constexpr char kTemporaryPattern[] = "quillon_temporary_file_%ld";
constexpr char kNumberPlace[] = "%ld";
constexpr int kTemporaryRounds = 10001;

// Null for abilities that no file can be opened with.
const char* open_mode(unsigned char ability, bool append) {
    switch (ability) {
    case zFileStream::kUpdateFile:
        return append ? "a+" : "rb+";
    case zFileStream::kReadFile:
        return append ? "a+" : "rb";
    case zFileStream::kWriteFile:
        return append ? "a+" : "wb";
    default:
        return nullptr;
    }
}

void set_count(unsigned int* out, size_t count) {
    if (out)
        *out = static_cast<unsigned int>(count);
}

} // namespace

zFileStream::zFileStream(const char* path, unsigned char ability, bool append)
    : zStream(ability), fPath(path), fAppend(append) {}

void zFileStream::DoBuffering(bool on) {
    fBuffering = on;
    if (fFile)
        std::setvbuf(fFile.get(), nullptr, on ? _IOFBF : _IONBF, on ? BUFSIZ : 0);
}

int zFileStream::Open() {
    const char* mode = open_mode(fAbility, fAppend);
    if (!mode)
        return result::kFailure;
    Close();
    fFile.reset(os_fopen(fPath, mode));
    if (fFile && !fBuffering)
        DoBuffering(false);
    return fFile ? result::kOk : result::kFailure;
}

int zFileStream::Close() {
    fFile.reset();
    return result::kOk;
}

bool zFileStream::rewind_and_measure(unsigned int& size) {
    if (!fFile || !Can(kRead) || std::fseek(fFile.get(), 0, SEEK_END) != 0)
        return false;
    const long end = std::ftell(fFile.get());
    if (end < 0 || end >= static_cast<long>(UINT_MAX))
        return false;
    size = static_cast<unsigned int>(end);
    return std::fseek(fFile.get(), 0, SEEK_SET) == 0;
}

int zFileStream::ReadAll(char** data, unsigned int* size) {
    *data = nullptr;
    *size = 0;
    unsigned int wanted = 0;
    if (!rewind_and_measure(wanted))
        return result::kFailure;
    std::unique_ptr<char[]> block(new char[wanted]);
    if (std::fread(block.get(), 1, wanted, fFile.get()) != wanted)
        return result::kFailure;
    *data = block.release();
    *size = wanted;
    return result::kOk;
}

int zFileStream::ReadAll(zBuffer* buffer) {
    unsigned int wanted = 0;
    if (!rewind_and_measure(wanted) || buffer->ResizeTo(wanted, 0) != result::kOk)
        return result::kFailure;
    if (wanted > 0 && std::fread(buffer->Data(), 1, wanted, fFile.get()) != wanted) {
        buffer->MakeEmpty();
        return result::kFailure;
    }
    return result::kOk;
}

int zFileStream::Read(char* data, unsigned int size, unsigned int* read) {
    set_count(read, 0);
    if (!fFile)
        return result::kFailure;
    set_count(read, std::fread(data, 1, size, fFile.get()));
    if (std::feof(fFile.get()))
        return result::kEndOfStream;
    return std::ferror(fFile.get()) ? result::kFailure : result::kOk;
}

int zFileStream::Write(const char* data, unsigned int size, unsigned int* written) {
    set_count(written, 0);
    if (!fFile)
        return result::kFailure;
    const size_t wanted = write_size(data, size);
    errno = 0;
    const size_t count = std::fwrite(data, 1, wanted, fFile.get());
    set_count(written, count);
    if (count == wanted)
        return result::kOk;
    const bool full = errno == EFBIG || errno == ENOSPC || errno == EDQUOT;
    return full ? result::kOutOfRoom : result::kFailure;
}

int zFileStream::Seek(int offset, unsigned char origin) {
    static constexpr int kOrigins[] = {SEEK_SET, SEEK_END, SEEK_CUR};
    if (!fFile || origin > kFromCurrent)
        return result::kFailure;
    static_cast<void>(std::fseek(fFile.get(), offset, kOrigins[origin]));
    return result::kOk;
}

unsigned int zFileStream::Position() const {
    const long position = fFile ? std::ftell(fFile.get()) : 0;
    return static_cast<unsigned int>(std::clamp(position, 0L, static_cast<long>(UINT_MAX)));
}

int zFileStream::Flush() {
    return fFile && std::fflush(fFile.get()) == 0 ? result::kOk : result::kFailure;
}

int zFileStream::ChangeMacCreatorType(unsigned int, unsigned int) {
    return result::kOk;
}

int zFileStream::ReadEntireFile(const char* path, zBuffer& buffer) {
    if (!path)
        return result::kBadArgument;
    zFileStream file(path, kReadFile);
    const int error = file.Open();
    return error ? error : file.ReadAll(&buffer);
}

bool zFileStream::Exists(const char* path) {
    struct stat info;
    return path && stat(path, &info) == 0;
}

unsigned int zFileStream::FileSize(const char* path) {
    struct stat info;
    const bool known = path && stat(path, &info) == 0 && info.st_size >= 0;
    return known ? static_cast<unsigned int>(std::min<long long>(info.st_size, UINT_MAX)) : 0;
}

int zFileStream::RemoveFile(const char* path) {
    return path && unlink(path) == 0 ? result::kOk : result::kFailure;
}

long long zFileStream::LastModificationTime(const char* path) {
    struct stat info;
    return path && stat(path, &info) == 0 ? info.st_mtime : 0;
}

// The "e" keeps the file from programs that this one starts.
FILE* zFileStream::os_fopen(const char* path, const char* mode) {
    return path && mode ? std::fopen(path, std::string(mode).append("e").c_str()) : nullptr;
}

void zFileStream::GetTemporaryDirectory(zString& path) {
    path = "/tmp/";
}

int zFileStream::CreateTemporaryFile(zString& path, const char* pattern) {
    if (!pattern || !std::strstr(pattern, kNumberPlace))
        pattern = kTemporaryPattern;
    for (int round = 0; round < kTemporaryRounds; ++round) {
        zString number;
        number.SetUInt32(zIDGenerator::Generate('x'), 10);
        zString name(pattern);
        name.ReplaceString(kNumberPlace, number);
        GetTemporaryDirectory(path);
        path += name;
        if (!Exists(path))
            return result::kOk;
    }
    return result::kFailure;
}

#include "MediaOutput.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Interruption.h"
#include "Libav.h"

namespace receiver {

namespace {

constexpr int kBufferBytes = 256 * 1024;
constexpr int kPipeBytes = 1024 * 1024; ///< Wished for: a large picture takes hundreds of small pieces else.
constexpr int kReaderLookMs = 100;
constexpr std::chrono::seconds kLastChance{1}; ///< For a reader who is slow, once it is time to stop.

#if LIBAVFORMAT_VERSION_MAJOR < 61
using Bytes = uint8_t*;
#else
using Bytes = const uint8_t*;
#endif

} // namespace

MediaOutput::~MediaOutput() {
    Close();
}

bool MediaOutput::Open(const std::string& path, bool overwrite, std::string& reason) {
    const bool isStandardOutput = path == "-";
    fLargestWrite = std::numeric_limits<int>::max();
    if (!isStandardOutput)
        fFile = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | (overwrite ? O_TRUNC : O_EXCL), 0666);
    if (isStandardOutput ? !open_standard_output() : fFile < 0) {
        reason = errno == EEXIST ? path + " exists; choose another name, or --overwrite"
                                 : path + ": " + std::strerror(errno);
        return false;
    }
    const auto writes = [](void* self, Bytes data, int size) {
        return static_cast<MediaOutput*>(self)->write(data, size);
    };
    const auto seeks = [](void* self, int64_t offset, int whence) {
        return static_cast<MediaOutput*>(self)->seek(offset, whence);
    };
    struct stat status = {};
    const bool isFile = fstat(fFile, &status) == 0 && S_ISREG(status.st_mode) && !isStandardOutput;
    if (!isFile)
        fcntl(fFile, F_SETPIPE_SZ, kPipeBytes);
    auto* buffer = static_cast<uint8_t*>(av_malloc(kBufferBytes));
    if (buffer)
        fIO = avio_alloc_context(buffer, kBufferBytes, 1, this, nullptr, writes, isFile ? +seeks : nullptr);
    if (!fIO) {
        av_free(buffer);
        reason = "out of memory";
    }
    return fIO;
}

/// A pipe is opened anew, so that writing to it needn't wait: the flag of the one that was handed over is
/// shared with other programs.
bool MediaOutput::open_standard_output() {
    struct stat status = {};
    fstat(STDOUT_FILENO, &status);
    if (S_ISFIFO(status.st_mode))
        fFile = open("/proc/self/fd/1", O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    if (fFile >= 0)
        return true;
    if (!S_ISREG(status.st_mode))
        fLargestWrite = PIPE_BUF;
    fFile = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
    return fFile >= 0;
}

void MediaOutput::Salvage() {
    fSalvages = true;
    fIO->error = 0;
}

int MediaOutput::Close() {
    if (fIO) {
        avio_flush(fIO);
        av_freep(&fIO->buffer);
        avio_context_free(&fIO);
    }
    // Some file systems tell only now that there is no room.
    if (fFile >= 0 && close(fFile) != 0 && errno != EINTR && fError == 0)
        fError = errno;
    fFile = -1;
    return fError;
}

int MediaOutput::write(const uint8_t* data, int size) {
    for (int done = 0; done < size;) {
        if (!wait_for_reader())
            return AVERROR(fError);
        const ssize_t count =
            ::write(fFile, data + done, static_cast<size_t>(std::min(size - done, fLargestWrite)));
        if (count < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (count < 0) {
            if (fError == 0)
                fError = errno;
            return fSalvages ? size : AVERROR(errno);
        }
        done += static_cast<int>(count);
        fBytesWritten += static_cast<uint64_t>(count);
    }
    return size;
}

/// False when there is none any more, or none who reads though it is time to stop.
bool MediaOutput::wait_for_reader() {
    while (true) {
        const auto now = std::chrono::steady_clock::now();
        if (!fLastChance && fInterruption && fInterruption->IsRaised())
            fLastChance = now + kLastChance;
        pollfd writable{fFile, POLLOUT, 0};
        const bool isOver = fLastChance && now >= *fLastChance;
        const int count = poll(&writable, 1, isOver ? 0 : kReaderLookMs);
        if (count > 0)
            return true; // An error shows when it is written to.
        if (count == 0 && isOver) {
            fError = ECANCELED;
            return false;
        }
    }
}

int64_t MediaOutput::seek(int64_t offset, int whence) {
    if (whence == AVSEEK_SIZE) {
        struct stat status = {};
        return fstat(fFile, &status) == 0 ? status.st_size : AVERROR(errno);
    }
    const off_t place = lseek(fFile, offset, whence & ~AVSEEK_FORCE);
    return place < 0 ? AVERROR(errno) : place;
}

} // namespace receiver

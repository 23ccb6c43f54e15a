#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

struct AVIOContext;

namespace receiver {

class Interruption;

/// The file, or standard output, that a recording goes to.
class MediaOutput {
  public:
    /// \p interruption, which may be null and outlives this, ends waiting for a reader who doesn't read.
    explicit MediaOutput(const Interruption* interruption) : fInterruption(interruption) {}
    ~MediaOutput();
    MediaOutput(const MediaOutput&) = delete;
    MediaOutput& operator=(const MediaOutput&) = delete;

    /// Makes the file; "-" is standard output. False with a reason, as when there is such a file that is not
    /// to be overwritten.
    bool Open(const std::string& path, bool overwrite, std::string& reason);

    /// For the muxer; owned by this.
    AVIOContext* IO() const { return fIO; }

    /// After an error: from now on what can't be written is left out, so that a muxer can go back and set the
    /// head of a file right whose end has no room.
    void Salvage();

    /// Writes what is left and closes. The error as of Error.
    int Close();

    uint64_t BytesWritten() const { return fBytesWritten; }
    /// The first error of writing, of errno's; 0 for none.
    int Error() const { return fError; }

  private:
    int write(const uint8_t* data, int size);
    int64_t seek(int64_t offset, int whence);
    bool open_standard_output();
    bool wait_for_reader();

    const Interruption* fInterruption;
    int fFile = -1;
    int fLargestWrite = 0; ///< In bytes, that doesn't wait once poll tells of room.
    AVIOContext* fIO = nullptr;
    uint64_t fBytesWritten = 0;
    int fError = 0;
    std::optional<std::chrono::steady_clock::time_point> fLastChance; ///< Of a reader, to read.
    bool fSalvages = false;
};

} // namespace receiver

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "MediaFormat.h"

namespace receiver {

class Interruption;

/// Writes pictures and sound into a file, or to standard output, as they come. Times are microseconds from
/// the start. One thread.
///
/// Nothing is kept but what the encoders need: a call takes as long as encoding and writing take. After a
/// failure there is nothing to do but Close; what was written until then can be played.
class MediaWriter {
  public:
    /// \p interruption, which may be null and outlives this, ends waiting for a reader who doesn't read.
    explicit MediaWriter(const Interruption* interruption);
    ~MediaWriter();
    MediaWriter(const MediaWriter&) = delete;
    MediaWriter& operator=(const MediaWriter&) = delete;

    /// Begins with the size of the first picture. False with a reason, and no file is left behind; one that
    /// was to be overwritten stays unless the new one can't be written.
    bool Open(const std::string& path, bool overwrite, const MediaFormat& format, int width, int height,
              std::string& reason);
    bool IsOpen() const { return fParts != nullptr; }

    /// Takes upright b, g, r, x pixels, which aren't needed afterwards, for WritePicture. Any size: others
    /// than the first one's are scaled. False after a failure, as from the others.
    bool SetPicture(const uint8_t* pixels, int width, int height, int rowBytes);
    /// The picture shows from that time on. The same one may be written again.
    bool WritePicture(int64_t time);
    /// Signed 16-bit samples, interleaved, whole sample frames; the first was heard at \p time.
    bool WriteSound(std::span<const uint8_t> samples, int channels, int rate, int64_t time);
    /// Tells the present to a sound track that gets no sound: it was silent.
    bool AdvanceSound(int64_t now);

    /// Writes what is left and the file's end. False if anything failed since it was opened.
    bool Close();

    /// Why writing failed, in one line; empty if it didn't.
    const std::string& Failure() const { return fFailure; }
    /// The failure is that nobody reads standard output any more.
    bool HasReaderLeft() const { return fHasReaderLeft; }

    uint64_t PictureCount() const;
    /// Of the last picture; 0 before the first.
    int64_t LastPictureTime() const;
    double SoundSeconds() const;
    uint64_t BytesWritten() const;

  private:
    struct Parts;

    bool add_tracks(const MediaFormat& format, int width, int height, std::string& reason);
    bool write_head(std::string& reason);
    bool check(int error);

    const Interruption* fInterruption;
    std::string fPath;
    std::unique_ptr<Parts> fParts;
    std::string fFailure;
    bool fHasReaderLeft = false;
    bool fIsClosed = false;
};

} // namespace receiver

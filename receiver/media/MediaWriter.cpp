#include "MediaWriter.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "MediaOutput.h"
#include "PictureTrack.h"
#include "SoundTrack.h"

namespace receiver {

namespace {

/// In which pictures wait in memory for the sound that belongs before them, in microseconds.
constexpr int64_t kLongestWait = 400'000;

const char* muxer_name(const MediaFormat& format) {
    switch (format.container) {
    case MediaFormat::Container::kMatroska:
        return "matroska";
    case MediaFormat::Container::kMP4:
        return "mp4";
    case MediaFormat::Container::kNut:
        return "nut";
    case MediaFormat::Container::kRaw:
        break;
    }
    return format.hasPictures ? "rawvideo" : "s16le";
}

/// Whatever ends the program, all but the last second is in the file, and can be played.
AVDictionary* muxer_options(const MediaFormat& format) {
    AVDictionary* options = nullptr;
    if (format.container == MediaFormat::Container::kMatroska)
        av_dict_set(&options, "cluster_time_limit", "1000", 0); // Milliseconds.
    if (format.container == MediaFormat::Container::kMP4) {
        av_dict_set(&options, "movflags", "empty_moov+delay_moov+default_base_moof", 0);
        av_dict_set(&options, "frag_duration", "1000000", 0); // Microseconds.
    }
    return options;
}

} // namespace

struct MediaWriter::Parts {
    explicit Parts(const Interruption* interruption) : output(interruption) {}

    MediaOutput output;
    LibavPointer<AVFormatContext> muxer;
    MediaFormat format;
    PictureTrack pictures;
    SoundTrack sound;
};

MediaWriter::MediaWriter(const Interruption* interruption) : fInterruption(interruption) {}

MediaWriter::~MediaWriter() {
    Close();
}

bool MediaWriter::Open(const std::string& path, bool overwrite, const MediaFormat& format, int width,
                       int height, std::string& reason) {
    av_log_set_level(AV_LOG_QUIET); // Failures are told in one line, here.
    fPath = path;
    fParts = std::make_unique<Parts>(fInterruption);
    if (!add_tracks(format, width, height, reason) || !fParts->output.Open(path, overwrite, reason)) {
        fParts.reset();
        return false;
    }
    if (write_head(reason))
        return true;
    fParts.reset();
    if (path != "-")
        unlink(path.c_str());
    return false;
}

bool MediaWriter::add_tracks(const MediaFormat& format, int width, int height, std::string& reason) {
    AVFormatContext* muxer = nullptr;
    if (avformat_alloc_output_context2(&muxer, nullptr, muxer_name(format), nullptr) < 0) {
        reason = std::string("the FFmpeg libraries of this machine can't write ") + muxer_name(format);
        return false;
    }
    fParts->muxer.reset(muxer);
    fParts->format = format;
    muxer->flags |= AVFMT_FLAG_CUSTOM_IO;
    muxer->max_interleave_delta = kLongestWait;
    if (fPath == "-")
        muxer->flags |= AVFMT_FLAG_FLUSH_PACKETS; // Somebody is watching.
    return (!format.hasPictures || fParts->pictures.Open(*muxer, format, width, height, reason)) &&
           (!format.hasSound || fParts->sound.Open(*muxer, format, reason));
}

bool MediaWriter::write_head(std::string& reason) {
    fParts->muxer->pb = fParts->output.IO();
    AVDictionary* options = muxer_options(fParts->format);
    const int error = avformat_write_header(fParts->muxer.get(), &options);
    av_dict_free(&options);
    if (error < 0)
        reason = fPath + ": " + LibavError(error);
    return error >= 0;
}

bool MediaWriter::SetPicture(const uint8_t* pixels, int width, int height, int rowBytes) {
    return !fParts->format.hasPictures || check(fParts->pictures.SetPicture(pixels, width, height, rowBytes));
}

bool MediaWriter::WritePicture(int64_t time) {
    return !fParts->format.hasPictures || check(fParts->pictures.Write(time));
}

bool MediaWriter::WriteSound(std::span<const uint8_t> samples, int channels, int rate, int64_t time) {
    return !fParts->format.hasSound || check(fParts->sound.Write(samples, channels, rate, time));
}

bool MediaWriter::AdvanceSound(int64_t now) {
    return !fParts->format.hasSound || check(fParts->sound.Advance(now));
}

/// Notes the first failure.
bool MediaWriter::check(int error) {
    const int written = fParts->output.Error();
    if (!fFailure.empty() || (error >= 0 && written == 0))
        return fFailure.empty();
    fHasReaderLeft = fPath == "-" && (written == EPIPE || written == ECANCELED);
    fFailure = (fPath == "-" ? "standard output" : fPath) + ": " +
               (written != 0 ? std::strerror(written) : LibavError(error));
    return false;
}

bool MediaWriter::Close() {
    if (!fParts || fIsClosed)
        return fFailure.empty();
    fIsClosed = true;
    if (fFailure.empty() && fParts->format.hasPictures)
        check(fParts->pictures.Finish());
    if (fFailure.empty() && fParts->format.hasSound)
        check(fParts->sound.Finish());
    if (!fFailure.empty())
        fParts->output.Salvage();
    const int error = av_write_trailer(fParts->muxer.get());
    fParts->output.Close();
    return check(error);
}

uint64_t MediaWriter::PictureCount() const {
    return fParts ? fParts->pictures.Count() : 0;
}

int64_t MediaWriter::LastPictureTime() const {
    return PictureCount() > 0 ? fParts->pictures.LastTime() : 0;
}

double MediaWriter::SoundSeconds() const {
    return fParts ? fParts->sound.Seconds() : 0;
}

uint64_t MediaWriter::BytesWritten() const {
    return fParts ? fParts->output.BytesWritten() : 0;
}

} // namespace receiver

#include "LiveReplies.h"

#include <array>
#include <string>

#include <httplib.h>

#include "StateText.h"

namespace receiver {

namespace {

using namespace std::chrono_literals;

constexpr auto kLongestSilence = 1s; ///< After which something is sent, to see whether anyone is there.
constexpr auto kSoundGap = 250ms;

bool send(httplib::DataSink& sink, const std::string& text) {
    return sink.write(text.data(), text.size());
}

bool send(httplib::DataSink& sink, const std::vector<uint8_t>& bytes) {
    return sink.write(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

std::string little_endian(uint32_t number, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i)
        bytes += static_cast<char>(number >> (8 * i));
    return bytes;
}

/// Of a file whose length nobody knows.
std::string wav_head() {
    constexpr uint32_t kUnknown = 0xFFFFFFFF, kHeadSize = 16, kPCM = 1;
    constexpr auto kFrame = static_cast<uint32_t>(SoundRing::kFrameBytes);
    return "RIFF" + little_endian(kUnknown, 4) + "WAVEfmt " + little_endian(kHeadSize, 4) +
           little_endian(kPCM, 2) + little_endian(SoundRing::kChannels, 2) +
           little_endian(SoundRing::kRate, 4) + little_endian(SoundRing::kRate * kFrame, 4) +
           little_endian(kFrame, 2) + little_endian(16, 2) + "data" + little_endian(kUnknown, 4);
}

std::string event(const char* name, const std::string& data) {
    return std::string("event: ") + name + "\ndata: " + data + "\n\n";
}

} // namespace

bool PictureStream::operator()(size_t offset, httplib::DataSink& sink) {
    // What counts as the newest is decided when there is room for it.
    if (!sink.is_writable())
        return false;
    const View::Need need = fEncodings.NeedFor(fKind);
    if (const auto view = fRelay.WaitForView(need, fNumber, kLongestSilence)) {
        const Encodings::Encoded encoded = fEncodings.Get(fKind, *view);
        if (encoded.lacksPixels)
            return !fRelay.IsStopped();
        fNumber = view->NumberFor(need);
        fLast = encoded.jpeg;
    }
    if (fRelay.IsStopped())
        return false;
    if (!fLast)
        return true;
    // The delimiter comes with the picture that it ends: viewers wait for it.
    static const std::string kDelimiter = "--glasspane-picture\r\n";
    return send(sink, (offset == 0 ? kDelimiter : "") + "Content-Type: image/jpeg\r\nContent-Length: " +
                          std::to_string(fLast->size()) + "\r\n\r\n") &&
           send(sink, *fLast) && send(sink, "\r\n" + kDelimiter);
}

bool SoundStream::operator()(size_t offset, httplib::DataSink& sink) {
    if (offset == 0 && !send(sink, wav_head()))
        return false;
    if (!fRelay.WaitForSound(fPlace, fSamples, kSoundGap)) {
        constexpr auto kGapFrames = static_cast<size_t>(SoundRing::kRate * kSoundGap / 1s);
        fSamples.assign(kGapFrames * SoundRing::kFrameBytes, 0);
    }
    return !fRelay.IsStopped() && send(sink, fSamples);
}

bool EventStream::operator()(size_t, httplib::DataSink& sink) {
    const bool isFirst = fTold.number == 0;
    const Relay::Report report = fRelay.WaitForReport(fTold.number, kLongestSilence);
    std::string text;
    if (isFirst || report.status.number != fTold.status.number)
        text += event("state", StateText(report, fRelay.Chosen()));
    if (isFirst || report.pointer != fTold.pointer)
        text += event("pointer", PointerText(report.pointer));
    if (text.empty())
        text = ": still here\n\n";
    fTold = report;
    return !fRelay.IsStopped() && send(sink, text);
}

} // namespace receiver

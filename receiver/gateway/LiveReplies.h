#pragma once

#include "Encodings.h"
#include "Relay.h"

namespace httplib {
class DataSink;
}

namespace receiver {

// Replies that go on for as long as somebody reads them. Each call sends what is new, as the HTTP library
// wants it, and gives false when there is nobody to send it to, or no relay. Nothing queues up here: who
// reads slowly gets the newest next time.

/// Pictures, one part each, without pause; the last one again every second.
class PictureStream {
  public:
    static constexpr const char* kType = "multipart/x-mixed-replace; boundary=glasspane-picture";

    PictureStream(Relay& relay, Encodings& encodings, Encodings::Kind kind)
        : fRelay(relay), fEncodings(encodings), fKind(kind) {}
    bool operator()(size_t offset, httplib::DataSink& sink);

  private:
    Relay& fRelay;
    Encodings& fEncodings;
    const Encodings::Kind fKind;
    uint64_t fNumber = 0;
    Bytes fLast;
};

/// A WAV file without end. While the server sends no sound, silence takes its time.
class SoundStream {
  public:
    static constexpr const char* kType = "audio/wav";

    explicit SoundStream(Relay& relay) : fRelay(relay), fPlace(relay.SoundEnd()) {}
    bool operator()(size_t offset, httplib::DataSink& sink);

  private:
    Relay& fRelay;
    uint64_t fPlace;
    std::vector<uint8_t> fSamples;
};

/// Server-sent events: "state" and "pointer", both JSON.
class EventStream {
  public:
    static constexpr const char* kType = "text/event-stream";

    explicit EventStream(Relay& relay) : fRelay(relay) {}
    bool operator()(size_t offset, httplib::DataSink& sink);

  private:
    Relay& fRelay;
    Relay::Report fTold; ///< Whose number is 0 at first.
};

} // namespace receiver

#pragma once

#include <optional>

#include "AudioDriver.h"
#include "PulseAudioDevice.h"
#include "PulseBlockQueue.h"
#include "PulseHandles.h"

namespace host {

/// Records the monitor of the default sink, always in the format of the sink that was first tapped: the
/// server converts what another one plays.
///
/// A thread of its own, the library's, follows the server: it records another sink when that becomes the
/// default, and while there is no server or no sink it looks for one twice a second. Nothing that the server
/// does or fails to do holds up the queue's reader.
class PulseTap : public AudioTap {
  public:
    explicit PulseTap(const PulseAudioDevice& device) : fDevice(device) {}
    ~PulseTap() override;
    PulseTap(const PulseTap&) = delete;
    PulseTap& operator=(const PulseTap&) = delete;

    int SetProperties(const std::string& modelUID, const std::string& deviceUID) override;
    int OpenQueue() override;
    AudioWait WaitForData(unsigned milliseconds) override;
    bool DataAvailable() override;
    int Dequeue(void* block, uint32_t& size) override;
    uint64_t DroppedBlocks() override;

  private:
    // On the library's thread, or with its lock held.
    int connect();
    void context_changed();
    void ask_for_sink();
    void sink_found(const pa_sink_info& sink);
    void record(const pa_sink_info& sink);
    void stream_changed();
    void read();
    void look_again_later();
    void look_again();
    void drop_look();

    const PulseAudioDevice& fDevice;
    pa_sample_spec fFormat = {};
    std::optional<PulseBlockQueue> fQueue; ///< From the time that the format is known.

    pa_threaded_mainloop* fLoop = nullptr; ///< Owned; null until the queue is opened.
    PulseContext fContext;
    PulseStream fStream;
    std::string fRecorded;               ///< The name of the sink that the stream records.
    pa_time_event* fLookAgain = nullptr; ///< Owned; null while none is due.
};

} // namespace host

#pragma once

#include "AudioDevice.h"

namespace host {

/// What the sound server tells about a sink, its word for an output device.
struct PulseSink {
    std::string name;
    std::string description;
    uint32_t rate = 0; ///< Frames a second.
    uint8_t channels = 0;
};

/// The default sink of the user's sound server, PulseAudio or one that speaks its protocol, as PipeWire does.
///
/// A look connects, asks and disconnects on the caller's thread. It takes a few milliseconds, no time where
/// there is no server, and a second where one doesn't answer.
class PulseAudioDevice : public AudioDevice {
  public:
    int DefaultOutputDevice(AudioDeviceId& device) override;
    int StreamConfiguration(AudioDeviceId device, std::vector<uint32_t>& channels) override;
    int ModelUID(AudioDeviceId device, std::string& uid) override;
    int DeviceUID(AudioDeviceId device, std::string& uid) override;
    int NominalSampleRate(AudioDeviceId device, double& rate) override;

    /// What the last look saw; without a name when it saw no sink.
    const PulseSink& LastSink() const { return fSink; }

  private:
    int answer_for(AudioDeviceId device) const;

    PulseSink fSink;
};

} // namespace host

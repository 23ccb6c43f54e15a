#pragma once

#include "AudioDevice.h"

namespace host {

/// The one output device of the built-in host: it plays a tone to nobody.
class BuiltinAudioDevice : public AudioDevice {
  public:
    static constexpr uint32_t kChannels = 2;
    static constexpr int kRate = 48000;
    static constexpr const char* kUID = "glasspane test tone";

    int DefaultOutputDevice(AudioDeviceId& device) override;
    int StreamConfiguration(AudioDeviceId device, std::vector<uint32_t>& channels) override;
    int ModelUID(AudioDeviceId device, std::string& uid) override;
    int DeviceUID(AudioDeviceId device, std::string& uid) override;
    int NominalSampleRate(AudioDeviceId device, double& rate) override;
};

} // namespace host

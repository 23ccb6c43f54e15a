#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace host {

/// Identifies a sound device; 0 is none.
using AudioDeviceId = uint32_t;

/// The sound devices of the machine. One thread at a time.
///
/// DefaultOutputDevice() takes a look at the machine's devices; the questions about a device tell what that
/// look saw, so that its answers belong together. A machine whose sound is gone makes the look fail promptly.
class AudioDevice {
  public:
    virtual ~AudioDevice() = default;

    /// Takes a look. The device that plays what programs play. 0, or -1 when there is none.
    virtual int DefaultOutputDevice(AudioDeviceId& device) = 0;

    /// The channels of each of the device's output buffers. 0, or -1.
    virtual int StreamConfiguration(AudioDeviceId device, std::vector<uint32_t>& channels) = 0;

    /// What kind of device it is. 0, or -1; an empty text stands for none.
    virtual int ModelUID(AudioDeviceId device, std::string& uid) = 0;

    /// Which device it is, among all of the machine. 0, or -1; an empty text stands for none.
    virtual int DeviceUID(AudioDeviceId device, std::string& uid) = 0;

    /// Frames in a second. 0, or -1.
    virtual int NominalSampleRate(AudioDeviceId device, double& rate) = 0;
};

} // namespace host

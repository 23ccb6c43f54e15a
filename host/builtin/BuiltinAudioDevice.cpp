#include "BuiltinAudioDevice.h"

namespace host {
namespace {

constexpr AudioDeviceId kDevice = 1;

int answer_for(AudioDeviceId device) {
    return device == kDevice ? 0 : -1;
}

} // namespace

int BuiltinAudioDevice::DefaultOutputDevice(AudioDeviceId& device) {
    device = kDevice;
    return 0;
}

int BuiltinAudioDevice::StreamConfiguration(AudioDeviceId device, std::vector<uint32_t>& channels) {
    channels = {kChannels};
    return answer_for(device);
}

int BuiltinAudioDevice::ModelUID(AudioDeviceId device, std::string& uid) {
    return DeviceUID(device, uid);
}

int BuiltinAudioDevice::DeviceUID(AudioDeviceId device, std::string& uid) {
    uid = kUID;
    return answer_for(device);
}

int BuiltinAudioDevice::NominalSampleRate(AudioDeviceId device, double& rate) {
    rate = kRate;
    return answer_for(device);
}

} // namespace host

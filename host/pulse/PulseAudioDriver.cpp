#include "PulseAudioDriver.h"

#include "PulseTap.h"

namespace host {

std::unique_ptr<AudioTap> PulseAudioDriver::OpenService(const std::string&) {
    return std::make_unique<PulseTap>(fDevice);
}

} // namespace host

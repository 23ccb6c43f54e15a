#include "vnAudio_mac.h"

#include <new>
#include <numeric>
#include <vector>

#include "Host.h"

namespace {

constexpr double kRingSeconds = 2;
constexpr double kSampleBytes = 4.0;
constexpr double kLargestRing = 0x80000000U;

} // namespace

vnAudio_mac::~vnAudio_mac() {
    tear_down();
}

void vnAudio_mac::Start() {
    if (fStartCount++ != 0)
        return;
    fRingLock.reset(zCritical::Factory(1));
    if (!listen())
        Stop();
}

/// The lock is held until the ring stands: the first block waits for it. It is given up before anything is
/// taken down again, or the capture's thread could never end.
bool vnAudio_mac::listen() {
    const zAutoCritical hold(fRingLock.get());
    fCapture = std::make_unique<vnSpeakerCapture>(*this);
    host::AudioDevice* device = host::Host::Current().AudioDevicePort();
    std::string modelUID;
    std::string deviceUID;
    if (!device || !ask_device(*device, modelUID, deviceUID) ||
        !fCapture->Initialize(modelUID, deviceUID, fChannels))
        return false;
    const double ringSize = kRingSeconds * fSampleRate * fChannels * kSampleBytes;
    if (!(ringSize >= 1 && ringSize <= kLargestRing))
        return false;
    fRing = std::make_unique<vnCircularBuffer>(static_cast<unsigned>(ringSize));
    fRing->SetAllowOverwriting(false);
    fReadBuffer.reset(new (std::nothrow) uint8_t[fRing->BufferSizeInBytes()]);
    return fReadBuffer != nullptr;
}

bool vnAudio_mac::ask_device(host::AudioDevice& device, std::string& modelUID, std::string& deviceUID) {
    host::AudioDeviceId id = 0;
    std::vector<uint32_t> channels;
    if (device.DefaultOutputDevice(id) != 0 || device.StreamConfiguration(id, channels) != 0)
        return false;
    fChannels = static_cast<uint8_t>(std::accumulate(channels.begin(), channels.end(), 0U));
    return fChannels != 0 && device.ModelUID(id, modelUID) == 0 && !modelUID.empty() &&
           device.DeviceUID(id, deviceUID) == 0 && !deviceUID.empty() &&
           device.NominalSampleRate(id, fSampleRate) == 0;
}

void vnAudio_mac::Stop() {
    if (fStartCount > 0 && --fStartCount == 0)
        tear_down();
}

/// The capture goes first, and its thread with it.
void vnAudio_mac::tear_down() {
    fCapture.reset();
    fRing.reset();
    fRingLock.reset();
    fReadBuffer.reset();
}

void vnAudio_mac::ProcessAudioData(double, unsigned long long hostTime, void* data, int size) {
    if (!data || size <= 0)
        return;
    const zAutoCritical hold(fRingLock.get());
    if (!fRing)
        return; // The start failed after the capture ran; it is about to end.
    fRing->WriteData(data, static_cast<unsigned>(size));
    fHostTime = hostTime;
}

void vnAudio_mac::Grab(void** data, unsigned* size, unsigned* channels, unsigned* sampleRate,
                       BUFFER_TYPE* type, unsigned long long* hostTime) {
    if (!fReadBuffer)
        return;
    if (channels)
        *channels = fChannels;
    if (sampleRate)
        *sampleRate = static_cast<unsigned>(fSampleRate);
    if (type)
        *type = kBufferType_fl32;
    if (!data)
        return;
    const zAutoCritical hold(fRingLock.get());
    const unsigned available = fRing->TotalNumberOfBytesAvailable();
    fRing->ReadData(fReadBuffer.get(), available);
    *data = fReadBuffer.get();
    if (size)
        *size = available;
    if (hostTime)
        *hostTime = fHostTime;
}

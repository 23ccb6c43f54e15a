#include "vnSpeakerCapture.h"

#include "Host.h"
#include "vnAudio_mac.h"

namespace {

/// The drivers that deliver the queue this class reads, in the order of preference.
constexpr const char* kServices[] = {"net_merrowfield_driver_MerrowfieldAudio",
                                     "com_quillon_driver_QuillonAudio"};
constexpr unsigned kWaitMilliseconds = 100;
constexpr int kSampleBytes = 4;

} // namespace

vnSpeakerCapture::vnSpeakerCapture(vnAudio_mac& owner) : fOwner(owner) {}

vnSpeakerCapture::~vnSpeakerCapture() {
    fRunning = false;
    if (fThread)
        fThread->WaitForExit();
}

bool vnSpeakerCapture::hasService() {
    return getService() != nullptr;
}

const char* vnSpeakerCapture::getService() {
    host::AudioDriver* driver = host::Host::Current().AudioDriverPort();
    if (!driver)
        return nullptr;
    for (const char* service : kServices) {
        if (driver->HasService(service))
            return service;
    }
    return nullptr;
}

bool vnSpeakerCapture::Initialize(const std::string& modelUID, const std::string& deviceUID, int channels) {
    fChannels = channels;
    const char* service = getService();
    if (!service)
        return false;
    fTap = host::Host::Current().AudioDriverPort()->OpenService(service);
    if (!fTap || fTap->SetProperties(modelUID, deviceUID) != 0)
        return false;
    fRunning = true;
    fThread.reset(zThread::Factory("speaker capture", this, 0, zThread::kHighestPriority));
    return fThread != nullptr;
}

unsigned vnSpeakerCapture::WaitForDataWithTimeout(host::AudioTap* tap, unsigned milliseconds) {
    if (!tap)
        return kBadArgument;
    switch (tap->WaitForData(milliseconds)) {
    case host::AudioWait::kData:
        return 0;
    case host::AudioWait::kTimedOut:
        return kTimedOut;
    case host::AudioWait::kFailed:
        break;
    }
    return kBroken;
}

int vnSpeakerCapture::Main(int, const char**) {
    fBlock = std::make_unique<uint8_t[]>(host::AudioTap::kLargestBlock);
    if (fTap->OpenQueue() != 0)
        return 0;
    while (fRunning) {
        const unsigned waited = WaitForDataWithTimeout(fTap.get(), kWaitMilliseconds);
        if (waited == 0)
            drain();
        else if (waited == kTimedOut)
            fOwner.DiscontinuityDetected();
        else
            break;
    }
    return 0;
}

void vnSpeakerCapture::drain() {
    while (fRunning && fTap->DataAvailable()) {
        uint32_t size = host::AudioTap::kLargestBlock;
        if (fTap->Dequeue(fBlock.get(), size) != 0 || !fRunning)
            continue;
        const auto now =
            static_cast<unsigned long long>(host::Host::Current().ClockPort().MicrosecondsSinceBoot());
        const auto bytes = static_cast<int>(size);
        fOwner.ProcessAudioData(fFrames, now, fBlock.get(), bytes);
        fFrames += bytes / (fChannels * kSampleBytes);
    }
}

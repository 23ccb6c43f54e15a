#pragma once

#include <memory>
#include <string>

#include "vnAudio.h"
#include "vnCircularBuffer.h"
#include "vnSpeakerCapture.h"
#include "zCritical.h"

namespace host {
class AudioDevice;
}

/// The sound of the default output device. The capture thread fills a ring of two seconds, Grab empties it;
/// the ring's lock is held for the copies only. A full ring drops what comes.
class vnAudio_mac : public vnAudio {
  public:
    ~vnAudio_mac() override;

    void Start() override;
    void Stop() override;
    void Grab(void** data, unsigned* size, unsigned* channels, unsigned* sampleRate, BUFFER_TYPE* type,
              unsigned long long* hostTime) override;

    /// The capture thread's way in: a block of samples, after \p sampleTime frames, at \p hostTime in
    /// microseconds.
    virtual void ProcessAudioData(double sampleTime, unsigned long long hostTime, void* data, int size);

    /// The capture thread waited in vain. A pause needs no action: what comes after it simply follows.
    void DiscontinuityDetected() {}

  private:
    bool listen();
    bool ask_device(host::AudioDevice& device, std::string& modelUID, std::string& deviceUID);
    void tear_down();

    std::unique_ptr<vnSpeakerCapture> fCapture;
    std::unique_ptr<zCritical> fRingLock; ///< Of the ring and the host time.
    std::unique_ptr<vnCircularBuffer> fRing;
    int fStartCount = 0;
    std::unique_ptr<uint8_t[]> fReadBuffer; ///< As large as the ring; null while stopped.
    uint8_t fChannels = 0;
    double fSampleRate = 0;
    unsigned long long fHostTime = 0;
};

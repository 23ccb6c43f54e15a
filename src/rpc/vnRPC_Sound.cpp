#include "vnRPC_Sound.h"

#include <cstdlib>

#include "cUtils.h"
#include "vnAudio.h"
#include "vnAudioBuffer.h"
#include "vnRPC_Call.h"
#include "zRecord.h"
#include "zString.h"
#include "zTime.h"

namespace {

constexpr const char* kAudioId = "id_audio";
constexpr const char* kAudioType = "audio/raw";

} // namespace

vnRPC_Sound::vnRPC_Sound() = default;

vnRPC_Sound::~vnRPC_Sound() {
    fStarter.reset();
}

void vnRPC_Sound::AddTo(vnRPC_Call& call) {
    if (!fAudio)
        start();
    // A gap sets the clock to the machine's time; while sound flows it counts samples.
    if (!fStarted || !add_section(call))
        fClock = zTime::MicroNow();
}

void vnRPC_Sound::Stop() {
    if (!fStarted)
        return;
    fStarter.reset();
    fAudio->Stop();
    fAudio.reset();
    fStarted = false;
}

void vnRPC_Sound::start() {
    fAudio.reset(vnAudio::Factory());
    fStarter.reset(zThread::Factory("audio start", this, 0, zThread::kNormalPriority));
    if (!fStarter)
        Main(0, nullptr);
}

/// On the starter's thread.
int vnRPC_Sound::Main(int, const char**) {
    fAudio->Start();
    fStarted = true;
    return 0;
}

/// False when there is no sound to send.
bool vnRPC_Sound::add_section(vnRPC_Call& call) {
    void* data = nullptr;
    unsigned size = 0;
    unsigned channels = 0;
    unsigned rate = 0;
    BUFFER_TYPE type = 0;
    unsigned long long hostTime = 0;
    fAudio->Grab(&data, &size, &channels, &rate, &type, &hostTime);
    unsigned char* samples = nullptr;
    int bytes = 0;
    if (size == 0 || !fAudio->ConvertAudioFrame(data, static_cast<int>(size), type, static_cast<int>(rate),
                                                static_cast<int>(channels), &samples, bytes))
        return false;
    if (!samples || bytes <= 0) {
        std::free(samples);
        return false;
    }

    zString id;
    cUtils::XOP_MakeContentIDHeaderString(id, kAudioId);
    const int section =
        call.AddSection(new vnAudioBuffer(samples, bytes, true), kAudioType, "Audio-Content-ID", id);
    call.reply.SetUInt32(vnRPC_Call::SectionName("channels", section), vnAudio::kWireChannels);
    call.reply.SetUInt32(vnRPC_Call::SectionName("rate", section), vnAudio::kWireRate);
    const uint64_t frames = static_cast<uint64_t>(bytes) / vnAudio::kWireFrameBytes;
    fClock += static_cast<int64_t>(frames * 1'000'000 / vnAudio::kWireRate);
    call.reply.SetInt64("audiotimestamp", fClock);
    return true;
}

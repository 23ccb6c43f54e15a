#include "BareSound.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr pa_sample_spec kFormat{PA_SAMPLE_FLOAT32LE, 48000, 2};
constexpr size_t kFrameBytes = 2 * sizeof(float);
constexpr size_t kClickFrames = 48;
constexpr float kClickLevel = 0.9F;
constexpr uint32_t kFragment = 48000 / 50 * kFrameBytes; // 20 ms, as the server's own tap asks for.

[[noreturn]] void fail(const char* what) {
    fprintf(stderr, "bench: %s\n", what);
    exit(1);
}

void wake(pa_threaded_mainloop* loop) {
    pa_threaded_mainloop_signal(loop, 0);
}

pa_buffer_attr buffer_of(uint32_t bytes) {
    constexpr auto kServersChoice = static_cast<uint32_t>(-1);
    return {kServersChoice, bytes, kServersChoice, kServersChoice, bytes};
}

} // namespace

BareSound::BareSound(const std::string& sink) : fLoop(pa_threaded_mainloop_new()) {
    fContext = pa_context_new(pa_threaded_mainloop_get_api(fLoop), "bench");
    pa_context_set_state_callback(
        fContext, [](pa_context*, void* loop) { wake(static_cast<pa_threaded_mainloop*>(loop)); }, fLoop);
    pa_threaded_mainloop_lock(fLoop);
    if (pa_context_connect(fContext, nullptr, PA_CONTEXT_NOFLAGS, nullptr) < 0 ||
        pa_threaded_mainloop_start(fLoop) < 0)
        fail("no sound server");
    while (pa_context_get_state(fContext) != PA_CONTEXT_READY) {
        if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(fContext)))
            fail("no sound server");
        pa_threaded_mainloop_wait(fLoop);
    }

    fRecorder = pa_stream_new(fContext, "recorder", &kFormat, nullptr);
    pa_stream_set_read_callback(
        fRecorder, [](pa_stream*, size_t, void* self) { static_cast<BareSound*>(self)->record(); }, this);
    const pa_buffer_attr recording = buffer_of(kFragment);
    pa_stream_connect_record(fRecorder, (sink + ".monitor").c_str(), &recording, PA_STREAM_ADJUST_LATENCY);

    fPlayer = pa_stream_new(fContext, "player", &kFormat, nullptr);
    pa_stream_set_write_callback(
        fPlayer, [](pa_stream*, size_t bytes, void* self) { static_cast<BareSound*>(self)->play(bytes); },
        this);
    const pa_buffer_attr playing = buffer_of(2 * kFragment);
    pa_stream_connect_playback(fPlayer, sink.c_str(), &playing,
                               static_cast<pa_stream_flags_t>(PA_STREAM_AUTO_TIMING_UPDATE |
                                                              PA_STREAM_INTERPOLATE_TIMING |
                                                              PA_STREAM_ADJUST_LATENCY),
                               nullptr, nullptr);
    pa_threaded_mainloop_unlock(fLoop);
}

BareSound::~BareSound() {
    pa_threaded_mainloop_stop(fLoop);
    for (pa_stream* stream : {fPlayer, fRecorder}) {
        pa_stream_disconnect(stream);
        pa_stream_unref(stream);
    }
    pa_context_disconnect(fContext);
    pa_context_unref(fContext);
    pa_threaded_mainloop_free(fLoop);
}

void BareSound::play(size_t bytes) {
    std::vector<float> samples(bytes / kFrameBytes * 2);
    pa_usec_t latency = 0;
    int isNegative = 0;
    const bool isTimed = pa_stream_get_latency(fPlayer, &latency, &isNegative) == 0 && !isNegative;
    const auto now = Clock::now() + std::chrono::microseconds(latency);
    for (size_t frame = 0; frame < samples.size() / 2; ++frame, ++fPlayedFrames) {
        const size_t place = fPlayedFrames % kFormat.rate;
        if (place == 0)
            fIsClick = isTimed; // Of no use while nobody knows when it would be heard.
        if (place >= kClickFrames || !fIsClick)
            continue;
        samples[2 * frame] = samples[2 * frame + 1] = kClickLevel;
        if (place == 0) {
            const std::lock_guard lock(fMutex);
            fPlayed.push_back(now + std::chrono::microseconds(frame * 1'000'000 / kFormat.rate));
        }
    }
    pa_stream_write(fPlayer, samples.data(), samples.size() * sizeof(float), nullptr, 0, PA_SEEK_RELATIVE);
}

void BareSound::record() {
    const void* data = nullptr;
    size_t bytes = 0;
    while (pa_stream_readable_size(fRecorder) > 0 && pa_stream_peek(fRecorder, &data, &bytes) == 0 && bytes) {
        const auto* samples = static_cast<const float*>(data);
        for (size_t frame = 0; data && frame < bytes / kFrameBytes; ++frame) {
            if (!fFinder.Take(samples[2 * frame]))
                continue;
            const std::lock_guard lock(fMutex);
            fRecorded.push_back(Clock::now());
        }
        pa_stream_drop(fRecorder);
    }
}

#include "PulseTap.h"

#include <iterator>
#include <utility>

namespace host {
namespace {

/// Short enough for lip sync, long enough to cost nothing.
constexpr pa_usec_t kFragmentTime = 20'000;
constexpr size_t kQueueBlocks = 100; ///< Two seconds of fragments.
constexpr pa_usec_t kLookAgainTime = 500'000;
constexpr uint32_t kServerDecides = static_cast<uint32_t>(-1);

/// The order of channels that the port promises, in the library's own notation.
pa_channel_map channel_map(uint8_t channels) {
    constexpr const char* kOrders[] = {
        "mono",
        "front-left,front-right",
        "front-left,front-right,front-center",
        "front-left,front-right,rear-left,rear-right",
        "front-left,front-right,front-center,rear-left,rear-right",
        "front-left,front-right,front-center,lfe,rear-left,rear-right",
        "front-left,front-right,front-center,lfe,rear-center,side-left,side-right",
        "front-left,front-right,front-center,lfe,rear-left,rear-right,side-left,side-right"};
    pa_channel_map map;
    if (channels <= std::size(kOrders))
        pa_channel_map_parse(&map, kOrders[channels - 1]);
    else
        pa_channel_map_init_extend(&map, channels, PA_CHANNEL_MAP_WAVEEX);
    return map;
}

} // namespace

PulseTap::~PulseTap() {
    if (!fLoop)
        return;
    pa_threaded_mainloop_lock(fLoop);
    drop_look();
    fStream.reset();
    fContext.reset();
    pa_threaded_mainloop_unlock(fLoop);
    pa_threaded_mainloop_stop(fLoop);
    pa_threaded_mainloop_free(fLoop);
}

int PulseTap::SetProperties(const std::string&, const std::string& deviceUID) {
    const PulseSink& sink = fDevice.LastSink();
    fFormat = {PA_SAMPLE_FLOAT32NE, sink.rate, sink.channels};
    if (sink.name.empty() || sink.name != deviceUID || !pa_sample_spec_valid(&fFormat))
        return -1;
    fQueue.emplace(kQueueBlocks, kLargestBlock, pa_frame_size(&fFormat));
    return 0;
}

int PulseTap::OpenQueue() {
    if (!fQueue || fLoop)
        return -1;
    fLoop = pa_threaded_mainloop_new();
    if (!fLoop)
        return -1;
    pa_threaded_mainloop_set_name(fLoop, "sound server");
    return connect() == 0 && pa_threaded_mainloop_start(fLoop) >= 0 ? 0 : -1;
}

AudioWait PulseTap::WaitForData(unsigned milliseconds) {
    if (!fQueue)
        return AudioWait::kFailed;
    return fQueue->Wait(milliseconds) ? AudioWait::kData : AudioWait::kTimedOut;
}

bool PulseTap::DataAvailable() {
    return fQueue && !fQueue->IsEmpty();
}

int PulseTap::Dequeue(void* block, uint32_t& size) {
    return fQueue ? fQueue->Pop(block, size) : -1;
}

uint64_t PulseTap::DroppedBlocks() {
    return fQueue ? fQueue->Dropped() : 0;
}

/// 0, or -1 without any context. Where only a new one is not to be had, the last one stays and fails again.
int PulseTap::connect() {
    fStream.reset();
    if (PulseContext made{pa_context_new(pa_threaded_mainloop_get_api(fLoop), kPulseClientName)})
        fContext = std::move(made);
    if (!fContext)
        return -1;
    pa_context_set_state_callback(
        fContext.get(), [](pa_context*, void* self) { static_cast<PulseTap*>(self)->context_changed(); },
        this);
    pa_context_set_subscribe_callback(
        fContext.get(),
        [](pa_context*, pa_subscription_event_type_t, uint32_t, void* self) {
            static_cast<PulseTap*>(self)->ask_for_sink();
        },
        this);
    if (pa_context_connect(fContext.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
        look_again_later();
    return 0;
}

void PulseTap::context_changed() {
    const pa_context_state_t state = pa_context_get_state(fContext.get());
    if (state == PA_CONTEXT_READY) {
        // The server's own state changes when another sink becomes the default.
        ForgetPulseOperation(
            pa_context_subscribe(fContext.get(), PA_SUBSCRIPTION_MASK_SERVER, nullptr, nullptr));
        ask_for_sink();
    } else if (!PA_CONTEXT_IS_GOOD(state)) {
        look_again_later();
    }
}

/// The answer comes as the sink, if there is one, and an end.
void PulseTap::ask_for_sink() {
    ForgetPulseOperation(pa_context_get_sink_info_by_name(
        fContext.get(), kPulseDefaultSink,
        [](pa_context*, const pa_sink_info* sink, int end, void* self) {
            auto* tap = static_cast<PulseTap*>(self);
            if (end == 0)
                tap->sink_found(*sink);
            else if (!tap->fStream)
                tap->look_again_later();
        },
        this));
}

void PulseTap::sink_found(const pa_sink_info& sink) {
    if (sink.monitor_source_name && (!fStream || fRecorded != sink.name))
        record(sink);
}

void PulseTap::record(const pa_sink_info& sink) {
    const pa_channel_map map = channel_map(fFormat.channels);
    fStream.reset(pa_stream_new(fContext.get(), "Speaker output", &fFormat, &map));
    if (!fStream)
        return;
    fRecorded = sink.name;
    pa_stream_set_state_callback(
        fStream.get(), [](pa_stream*, void* self) { static_cast<PulseTap*>(self)->stream_changed(); }, this);
    pa_stream_set_read_callback(
        fStream.get(), [](pa_stream*, size_t, void* self) { static_cast<PulseTap*>(self)->read(); }, this);
    pa_buffer_attr buffering = {};
    buffering.maxlength = kServerDecides;
    buffering.fragsize = static_cast<uint32_t>(pa_usec_to_bytes(kFragmentTime, &fFormat));
    // A sink that is gone must end the stream: moved elsewhere, it might record a microphone.
    const auto flags = static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE);
    if (pa_stream_connect_record(fStream.get(), sink.monitor_source_name, &buffering, flags) < 0)
        look_again_later();
}

void PulseTap::stream_changed() {
    if (!PA_STREAM_IS_GOOD(pa_stream_get_state(fStream.get())))
        look_again_later();
}

void PulseTap::read() {
    const void* samples = nullptr;
    size_t size = 0;
    while (pa_stream_peek(fStream.get(), &samples, &size) >= 0 && size > 0) {
        fQueue->Push(samples,
                     size); // A gap of what the server has lost comes as null: silence keeps the time.
        pa_stream_drop(fStream.get());
    }
}

void PulseTap::look_again_later() {
    if (fLookAgain)
        return;
    fLookAgain = pa_context_rttime_new(
        fContext.get(), pa_rtclock_now() + kLookAgainTime,
        [](pa_mainloop_api*, pa_time_event*, const timeval*, void* self) {
            static_cast<PulseTap*>(self)->look_again();
        },
        this);
}

void PulseTap::look_again() {
    drop_look();
    if (pa_context_get_state(fContext.get()) != PA_CONTEXT_READY)
        return static_cast<void>(connect());
    if (fStream && !PA_STREAM_IS_GOOD(pa_stream_get_state(fStream.get())))
        fStream.reset();
    ask_for_sink();
}

void PulseTap::drop_look() {
    if (fLookAgain)
        pa_threaded_mainloop_get_api(fLoop)->time_free(fLookAgain);
    fLookAgain = nullptr;
}

} // namespace host

#include "PulseAudioDevice.h"

#include <chrono>

#include "PulseHandles.h"

namespace host {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr AudioDeviceId kDefaultSink = 1;
constexpr auto kLookLimit = std::chrono::seconds(1);

/// One question about the default sink.
class Look {
  public:
    /// An empty name stands for no answer.
    PulseSink Take();

  private:
    void state_changed(pa_context* context);
    void answered(const pa_sink_info* info);
    bool run_once(SteadyClock::time_point limit);

    PulseSink fSink;
    bool fDone = false;
    PulseMainloop fLoop{pa_mainloop_new()};
};

PulseSink Look::Take() {
    if (!fLoop)
        return {};
    const PulseContext context(pa_context_new(pa_mainloop_get_api(fLoop.get()), kPulseClientName));
    if (!context)
        return {};
    pa_context_set_state_callback(
        context.get(),
        [](pa_context* changed, void* self) { static_cast<Look*>(self)->state_changed(changed); }, this);
    if (pa_context_connect(context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
        return {};
    const auto limit = SteadyClock::now() + kLookLimit;
    while (!fDone && run_once(limit)) {
    }
    return fSink;
}

void Look::state_changed(pa_context* context) {
    const pa_context_state_t state = pa_context_get_state(context);
    if (state == PA_CONTEXT_READY) {
        ForgetPulseOperation(pa_context_get_sink_info_by_name(
            context, kPulseDefaultSink,
            [](pa_context*, const pa_sink_info* info, int end, void* self) {
                static_cast<Look*>(self)->answered(end == 0 ? info : nullptr);
            },
            this));
    } else if (!PA_CONTEXT_IS_GOOD(state)) {
        fDone = true;
    }
}

/// Called with the sink if there is one, and with null at the end.
void Look::answered(const pa_sink_info* info) {
    if (info)
        fSink = {info->name, info->description ? info->description : info->name, info->sample_spec.rate,
                 info->sample_spec.channels};
    else
        fDone = true;
}

/// False when the time is up, or the loop broken.
bool Look::run_once(SteadyClock::time_point limit) {
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(limit - SteadyClock::now());
    return left.count() > 0 && pa_mainloop_prepare(fLoop.get(), static_cast<int>(left.count())) >= 0 &&
           pa_mainloop_poll(fLoop.get()) >= 0 && pa_mainloop_dispatch(fLoop.get()) >= 0;
}

} // namespace

int PulseAudioDevice::DefaultOutputDevice(AudioDeviceId& device) {
    fSink = Look().Take();
    device = kDefaultSink;
    return answer_for(device);
}

int PulseAudioDevice::StreamConfiguration(AudioDeviceId device, std::vector<uint32_t>& channels) {
    channels = {fSink.channels};
    return answer_for(device);
}

int PulseAudioDevice::ModelUID(AudioDeviceId device, std::string& uid) {
    uid = fSink.description;
    return answer_for(device);
}

int PulseAudioDevice::DeviceUID(AudioDeviceId device, std::string& uid) {
    uid = fSink.name;
    return answer_for(device);
}

int PulseAudioDevice::NominalSampleRate(AudioDeviceId device, double& rate) {
    rate = fSink.rate;
    return answer_for(device);
}

int PulseAudioDevice::answer_for(AudioDeviceId device) const {
    return device == kDefaultSink && !fSink.name.empty() ? 0 : -1;
}

} // namespace host

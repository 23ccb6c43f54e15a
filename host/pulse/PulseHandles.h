#pragma once

#include <memory>

#include <pulse/pulseaudio.h>

namespace host {

/// Owners of the library's objects. They end without a further call of anyone's callbacks.
struct PulseDeleter {
    void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
    void operator()(pa_context* context) const {
        pa_context_set_state_callback(context, nullptr, nullptr);
        pa_context_set_subscribe_callback(context, nullptr, nullptr);
        pa_context_disconnect(context);
        pa_context_unref(context);
    }
    void operator()(pa_stream* stream) const {
        pa_stream_set_state_callback(stream, nullptr, nullptr);
        pa_stream_set_read_callback(stream, nullptr, nullptr);
        pa_stream_disconnect(stream);
        pa_stream_unref(stream);
    }
};
using PulseMainloop = std::unique_ptr<pa_mainloop, PulseDeleter>;
using PulseContext = std::unique_ptr<pa_context, PulseDeleter>;
using PulseStream = std::unique_ptr<pa_stream, PulseDeleter>;

/// What the server calls this program.
constexpr const char* kPulseClientName = "Glasspane";
/// What the server calls the default sink, whichever it is.
constexpr const char* kPulseDefaultSink = "@DEFAULT_SINK@";

/// Lets go of an answer that comes through a callback; null, for a question that couldn't be asked, is
/// allowed.
inline void ForgetPulseOperation(pa_operation* operation) {
    if (operation)
        pa_operation_unref(operation);
}

} // namespace host

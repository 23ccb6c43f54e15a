#include "StateText.h"

#include <cmath>

#include <nlohmann/json.hpp>

namespace receiver {

namespace {

using nlohmann::ordered_json;

double rounded(double number, int digits) {
    const double scale = std::pow(10, digits);
    return std::round(number * scale) / scale;
}

/// In milliseconds.
ordered_json json_of(const Histogram& durations) {
    return {{"median", rounded(durations.Percentile(0.5), 2)},
            {"p90", rounded(durations.Percentile(0.9), 2)},
            {"p99", rounded(durations.Percentile(0.99), 2)},
            {"max", rounded(durations.Largest(), 2)}};
}

ordered_json json_of(const View::Pointer& pointer) {
    if (!pointer.shape)
        return nullptr;
    // A number of 64 bits is more than a script can count.
    return {{"x", pointer.corner.x}, {"y", pointer.corner.y}, {"shape", std::to_string(pointer.id)}};
}

std::string line_of(const ordered_json& json) {
    return json.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

} // namespace

std::string StateText(const Relay::Report& report, const Stream::Settings& settings) {
    const RelayStatus& status = report.status;
    return line_of({{"server", settings.server.Text()},
                    {"connected", status.isConnected},
                    {"failure", status.failure},
                    {"muted", status.isMuted},
                    {"width", status.width},
                    {"height", status.height},
                    {"picture", report.pictureNumber},
                    {"pointer", json_of(report.pointer)},
                    {"sound", settings.withSound},
                    {"sound_flows", status.hasSound},
                    {"quality", settings.quality},
                    {"polls_per_second", rounded(status.pollsPerSecond, 1)},
                    {"pictures_per_second", rounded(status.picturesPerSecond, 1)},
                    {"bytes_per_second", std::round(status.bytesPerSecond)},
                    {"delay_ms", json_of(status.delay)},
                    {"composing_ms", json_of(status.composing)},
                    {"failures", status.failures},
                    {"restarts", status.restarts},
                    {"clock_drift_ppm", rounded(status.clockDriftPpm, 1)},
                    {"sound_drift_ppm", rounded(status.soundDriftPpm, 1)}});
}

std::string PointerText(const View::Pointer& pointer) {
    return line_of(json_of(pointer));
}

} // namespace receiver

#include <ctime>
#include <memory>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "Client.h"
#include "Stream.h"

namespace receiver {

namespace {

using Clock = std::chrono::steady_clock;

struct Measurement {
    Stream::Settings stream;
    double seconds = 0; ///< 0 for until it is interrupted.
    bool json = false;
};

double cpu_seconds() {
    timespec used = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}

/// What happened in a stretch of time, in the units that people read.
struct Rates {
    Rates(const Figures& figures, double cpu) : seconds(std::max(figures.Seconds(), 1e-3)) {
        const auto each = [&](uint64_t count) { return static_cast<double>(count) / seconds; };
        polls = each(figures.polls);
        pictures = each(figures.wholeFrames + figures.changes);
        megabits = each(figures.bytes) * 8 / 1e6;
        cpuPercent = cpu / seconds * 100;
    }

    double seconds;
    double polls = 0; ///< A second, as the others.
    double pictures = 0;
    double megabits = 0;
    double cpuPercent = 0; ///< Of one core, in this process.
};

nlohmann::ordered_json json_of(const Histogram& histogram) {
    return {{"median", histogram.Percentile(0.5)},
            {"p90", histogram.Percentile(0.9)},
            {"p99", histogram.Percentile(0.99)},
            {"max", histogram.Largest()}};
}

nlohmann::ordered_json json_of(const Stream& stream, const Figures& figures, const Rates& rates) {
    return {{"server", stream.Chosen().server.Text()},
            {"seconds", rates.seconds},
            {"polls", figures.polls},
            {"polls_per_second", rates.polls},
            {"pictures_per_second", rates.pictures},
            {"whole_frames", figures.wholeFrames},
            {"changes", figures.changes},
            {"regions", figures.regions},
            {"muted_polls", figures.mutedPolls},
            {"failures", figures.failures},
            {"bytes", figures.bytes},
            {"megabits_per_second", rates.megabits},
            {"sound_frames", figures.soundFrames},
            {"delay_ms", json_of(figures.delay)},
            {"composing_ms", json_of(figures.composing)},
            {"clock_drift_ppm", stream.ClockDriftPpm()},
            {"sound_drift_ppm", stream.SoundDriftPpm()},
            {"cpu_percent", rates.cpuPercent}};
}

// ---- watch ----

std::string line_of(const Stream& stream, Stream::Event event, const Rates& rates, const Figures& figures) {
    if (event == Stream::Event::kFailed)
        return stream.Failure();
    char text[200];
    const Canvas& canvas = stream.Picture();
    snprintf(text, sizeof text,
             "%d x %d%s  %4.0f polls/s  %4.0f pictures/s  %6.1f Mbit/s  delay %.1f ms (99 %%: %.1f)",
             canvas.IsEmpty() ? 0 : canvas.Width(), canvas.IsEmpty() ? 0 : canvas.Height(),
             event == Stream::Event::kMuted ? ", paused" : "", rates.polls, rates.pictures, rates.megabits,
             figures.delay.Percentile(0.5), figures.delay.Percentile(0.99));
    std::string line = text;
    if (stream.Chosen().withSound) {
        snprintf(text, sizeof text, "  sound %.0f Hz",
                 static_cast<double>(figures.soundFrames) / rates.seconds);
        line += text;
    }
    return line;
}

/// Once a second; on a terminal in place.
void show(const Stream& stream, Stream::Event event, const Figures& figures, double cpu, bool json) {
    const Rates rates(figures, cpu);
    if (json) {
        Client::Print(json_of(stream, figures, rates));
    } else {
        const bool inPlace = isatty(STDOUT_FILENO);
        printf(inPlace ? "\r\x1b[K%s" : "%s\n", line_of(stream, event, rates, figures).c_str());
    }
    fflush(stdout);
}

int watch(const Client& client, const Measurement& options) {
    constexpr auto kEvery = std::chrono::seconds(1);
    Stream stream(options.stream, &client.interruption);
    const auto end = Clock::now() + std::chrono::duration<double>(options.seconds);
    auto due = Clock::now() + kEvery;
    double cpu = cpu_seconds();
    bool isRunning = true;
    while (isRunning) {
        const Stream::Event event = stream.Poll();
        isRunning = !client.interruption.IsRaised() && (options.seconds == 0 || Clock::now() < end);
        if (Clock::now() >= due || event == Stream::Event::kFailed) {
            show(stream, event, stream.TakeFigures(), cpu_seconds() - cpu, options.json);
            cpu = cpu_seconds();
            due = Clock::now() + kEvery;
        }
        isRunning = isRunning && client.interruption.WaitUntil(stream.NextPoll());
    }
    if (!options.json && isatty(STDOUT_FILENO))
        puts("");
    return Client::kSuccess;
}

// ---- bench ----

void print_histogram(const char* name, const Histogram& histogram) {
    printf("%-12s %8.2f ms median %8.2f p90 %8.2f p99 %8.2f max\n", name, histogram.Percentile(0.5),
           histogram.Percentile(0.9), histogram.Percentile(0.99), histogram.Largest());
}

void print_table(const Stream& stream, const Figures& figures, const Rates& rates) {
    printf("source       %d x %d, %.1f s, %llu whole frames, %llu changes in %llu regions, %llu failures\n",
           stream.Picture().Width(), stream.Picture().Height(), rates.seconds,
           static_cast<unsigned long long>(figures.wholeFrames),
           static_cast<unsigned long long>(figures.changes), static_cast<unsigned long long>(figures.regions),
           static_cast<unsigned long long>(figures.failures));
    printf("rate         %8.1f polls/s %8.1f pictures/s\n", rates.polls, rates.pictures);
    print_histogram("delay", figures.delay);
    print_histogram("composing", figures.composing);
    printf("bytes        %8.2f Mbit/s, %llu in all\n", rates.megabits,
           static_cast<unsigned long long>(figures.bytes));
    printf("clocks       server %+.1f ppm, sound %+.1f ppm\n", stream.ClockDriftPpm(),
           stream.SoundDriftPpm());
    printf("cpu          %8.1f %% of a core here\n", rates.cpuPercent);
}

int bench(const Client& client, const Measurement& options) {
    Stream stream(options.stream, &client.interruption);
    if (stream.Poll() == Stream::Event::kFailed)
        return Client::Fail(stream.Failure());
    stream.TakeFigures();
    const double cpu = cpu_seconds();
    const auto end = Clock::now() + std::chrono::duration<double>(options.seconds);
    while (Clock::now() < end && client.interruption.WaitUntil(stream.NextPoll()))
        stream.Poll();
    const Figures figures = stream.TakeFigures();
    const Rates rates(figures, cpu_seconds() - cpu);
    if (figures.polls == 0 || stream.Picture().IsEmpty())
        return Client::Fail(stream.Failure().empty() ? "the source is paused; there is nothing to measure"
                                                     : stream.Failure());
    if (options.json)
        return Client::Print(json_of(stream, figures, rates));
    print_table(stream, figures, rates);
    return Client::kSuccess;
}

void add(CLI::App& program, Client& client, const char* name, const char* description, double rate,
         double seconds, int (*run)(const Client&, const Measurement&)) {
    CLI::App* command = program.add_subcommand(name, description);
    const auto options = std::make_shared<Measurement>();
    options->stream.rate = rate;
    options->seconds = seconds;
    Client::AddServer(*command, options->stream.server);
    command->add_option("--rate", options->stream.rate, "Polls a second; 0 for as fast as replies come")
        ->check(CLI::Range(0.0, 1000.0))
        ->capture_default_str();
    command->add_option("--duration", options->seconds, "Seconds")
        ->check(CLI::Range(0.0, 1e6))
        ->capture_default_str();
    command->add_option("--quality", options->stream.quality, "Of the pictures")
        ->check(CLI::IsMember({"low", "normal", "high"}))
        ->capture_default_str();
    command->add_flag("--sound", options->stream.withSound, "Ask for the sound, too");
    command->add_flag("--json", options->json, "Print JSON");
    command->callback([&client, options, run] {
        client.command = [&client, options, run] { return run(client, *options); };
    });
}

} // namespace

void AddMeasureCommands(CLI::App& program, Client& client) {
    add(program, client, "watch", "Shows live figures of a source until Ctrl-C; --duration 0 means for ever",
        60, 0, watch);
    add(program, client, "bench", "Measures rates, delays and bytes, as fast as replies come", 0, 10, bench);
}

} // namespace receiver

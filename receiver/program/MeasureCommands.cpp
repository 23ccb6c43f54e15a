#include <ctime>
#include <memory>
#include <sys/ioctl.h>
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
    const Canvas& canvas = stream.Picture();
    return {{"server", stream.Chosen().server.Text()},
            {"connected", stream.FailureCount() == 0},
            {"failure", stream.Failure()},
            {"muted", stream.Last().isMuted || stream.Last().isScreenSaverActive},
            {"width", canvas.IsEmpty() ? 0 : canvas.Width()},
            {"height", canvas.IsEmpty() ? 0 : canvas.Height()},
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

std::string line_of(const Stream& stream, const Rates& rates, const Figures& figures) {
    if (stream.FailureCount() > 0)
        return stream.Failure();
    const Canvas& canvas = stream.Picture();
    char text[200];
    snprintf(text, sizeof text,
             "%d x %d%s  %.0f polls/s  %.0f pictures/s  %.1f Mbit/s  delay %.1f ms (99 %%: %.1f)",
             canvas.IsEmpty() ? 0 : canvas.Width(), canvas.IsEmpty() ? 0 : canvas.Height(),
             figures.mutedPolls > 0 ? " paused" : "", rates.polls, rates.pictures, rates.megabits,
             figures.delay.Percentile(0.5), figures.delay.Percentile(0.99));
    std::string line = text;
    snprintf(text, sizeof text, "  clock %+.0f ppm", stream.ClockDriftPpm());
    line += text;
    if (stream.Chosen().withSound) {
        snprintf(text, sizeof text, "  sound %.0f Hz %+.0f ppm",
                 static_cast<double>(figures.soundFrames) / rates.seconds, stream.SoundDriftPpm());
        line += text;
    }
    return line;
}

/// Prints in the place of the line before on a terminal, as far as it has room.
void print_in_place(const std::string& line) {
    winsize size = {};
    const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
    printf("\r\x1b[K%.*s", isKnown ? size.ws_col - 1 : static_cast<int>(line.size()), line.c_str());
}

/// Once a second. False when nobody reads it any more.
bool show(const Stream& stream, const Figures& figures, double cpu, bool json) {
    const Rates rates(figures, cpu);
    if (json)
        Client::Print(json_of(stream, figures, rates));
    else if (isatty(STDOUT_FILENO))
        print_in_place(line_of(stream, rates, figures));
    else
        puts(line_of(stream, rates, figures).c_str());
    return fflush(stdout) == 0;
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
        if (Clock::now() >= due || (event == Stream::Event::kFailed && isRunning)) {
            isRunning &= show(stream, stream.TakeFigures(), cpu_seconds() - cpu, options.json);
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
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                        std::chrono::duration<double>(options.seconds));
    const auto due = [&] { return std::min<Clock::time_point>(stream.NextPoll(), end); };
    while (client.interruption.WaitUntil(due()) && Clock::now() < end)
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
        ->check(Client::Within(0, 1000))
        ->option_text(rate > 0 ? "N (60)" : "N (0)");
    command
        ->add_option("--duration", options->seconds,
                     seconds > 0 ? "How long" : "How long; 0 for until Ctrl-C")
        ->check(Client::Within(seconds > 0 ? 0.1 : 0, 1e6))
        ->option_text(seconds > 0 ? "SECONDS (10)" : "SECONDS (0)");
    command->add_option("--quality", options->stream.quality, "Of the pictures")
        ->check(CLI::IsMember({"low", "normal", "high"}))
        ->option_text("low|normal|high (normal)");
    command->add_flag("--sound", options->stream.withSound, "Ask for the sound, too");
    command->add_flag("--json", options->json, "Print JSON");
    command->callback([&client, options, run] {
        client.command = [&client, options, run] { return run(client, *options); };
    });
}

} // namespace

void AddMeasureCommands(CLI::App& program, Client& client) {
    add(program, client, "watch", "Shows live figures of a source until Ctrl-C", 60, 0, watch);
    add(program, client, "bench", "Measures rates, delays and bytes, as fast as replies come", 0, 10, bench);
}

} // namespace receiver

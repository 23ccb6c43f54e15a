#include <algorithm>
#include <cctype>
#include <cstdio>
#include <memory>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "Client.h"
#include "Recorder.h"

namespace receiver {

namespace {

using nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;

/// Says on standard error what a recording is doing: a line when the server goes away and one when it is
/// back, and on a terminal a line that is rewritten in between.
class ProgressLine {
  public:
    void Show(const Recorder& recorder) {
        const int failures = recorder.Source().FailureCount();
        if (failures == 0 && fIsAway)
            say("back again");
        else if (failures == kNoticed && recorder.Writer().IsOpen())
            say(recorder.Source().Failure() + " (the last picture stays)");
        fIsAway = fIsAway ? failures > 0 : failures >= kNoticed && recorder.Writer().IsOpen();
        if (!fIsTerminal || Clock::now() < fDue)
            return;
        fDue = Clock::now() + std::chrono::milliseconds(250);
        print(recorder);
    }

    void End(const Recorder& recorder) {
        if (!fIsTerminal)
            return;
        fIsAway = false;
        print(recorder);
        fputs(recorder.Writer().IsOpen() ? "\n" : "\r\x1b[K", stderr);
    }

  private:
    static constexpr int kNoticed = 2; ///< Failures in a row: one alone is soon made up for.

    void say(const std::string& what) const {
        fprintf(stderr, "%sglasspane-client: %s\n", fIsTerminal ? "\r\x1b[K" : "", what.c_str());
    }

    void print(const Recorder& recorder) const {
        const MediaWriter& writer = recorder.Writer();
        const auto seconds = static_cast<int>(recorder.Seconds());
        const char* state = "";
        if (!writer.IsOpen())
            state = "  waiting for the first picture";
        else if (recorder.IsPaused())
            state = "  paused";
        else if (fIsAway)
            state = "  no connection";
        fprintf(stderr, "\r\x1b[K%02d:%02d:%02d  %llu pictures  %.1f s of sound  %.1f MB%s", seconds / 3600,
                seconds / 60 % 60, seconds % 60, static_cast<unsigned long long>(writer.PictureCount()),
                writer.SoundSeconds(), static_cast<double>(writer.BytesWritten()) / 1e6, state);
    }

    const bool fIsTerminal = isatty(STDERR_FILENO);
    bool fIsAway = false;
    Clock::time_point fDue;
};

const char* name_of(Recorder::End end) {
    switch (end) {
    case Recorder::End::kInterrupted:
        return "interrupted";
    case Recorder::End::kDuration:
        return "duration";
    case Recorder::End::kReaderLeft:
        return "reader_left";
    case Recorder::End::kFailed:
    case Recorder::End::kNoPicture:
        break;
    }
    return "failed";
}

ordered_json json_of(const Recorder& recorder, const std::string& path, Recorder::End end) {
    const MediaWriter& writer = recorder.Writer();
    ordered_json json = {{"file", path},
                         {"seconds", recorder.Seconds()},
                         {"pictures", writer.PictureCount()},
                         {"sound_seconds", writer.SoundSeconds()},
                         {"bytes", writer.BytesWritten()},
                         {"reconnects", recorder.Reconnects()},
                         {"end", name_of(end)}};
    if (!recorder.Failure().empty())
        json["failure"] = recorder.Failure();
    return json;
}

int run(const Client& client, Recorder::Settings settings, bool json) {
    ProgressLine line;
    settings.progress = [&line](const Recorder& recorder) { line.Show(recorder); };
    Recorder recorder(settings, client.interruption);
    const Recorder::End end = recorder.Run();
    line.End(recorder);
    if (json && end != Recorder::End::kNoPicture)
        Client::Print(json_of(recorder, settings.path, end));
    if (end == Recorder::End::kFailed)
        return Client::Fail(recorder.Failure() + "; what was written until then is kept");
    return end == Recorder::End::kNoPicture ? Client::Fail(recorder.Failure()) : Client::kSuccess;
}

/// An option without a value that makes something false.
CLI::Option* add_switch_off(CLI::App& command, const char* name, bool& target, const char* description) {
    return command.add_flag_callback(
        name, [&target] { target = false; }, description);
}

/// What both commands can be told.
void add_common(CLI::App& command, Recorder::Settings& settings) {
    Client::AddServer(command, settings.stream.server);
    command
        .add_option("--rate", settings.format.rate,
                    "Polls a second: the most pictures that there can be. Default: 60")
        ->check(Client::Within(1, 240))
        ->option_text("N");
    command
        .add_option("--quality", settings.stream.quality,
                    "Of the pictures that the server sends. Default: " + settings.stream.quality)
        ->check(CLI::IsMember({"low", "normal", "high"}))
        ->option_text("low|normal|high");
    command.add_option("--duration", settings.seconds, "Else until Ctrl-C")
        ->check(Client::Within(0.1, 1e7))
        ->option_text("SECONDS");
    add_switch_off(command, "--no-pointer", settings.hasPointer, "Leave the pointer out");
}

// ---- record ----

/// False for a name that says nothing.
bool container_of(std::string path, MediaFormat::Container& container) {
    std::transform(path.begin(), path.end(), path.begin(), [](unsigned char c) { return std::tolower(c); });
    if (path.ends_with(".mkv"))
        container = MediaFormat::Container::kMatroska;
    else if (path.ends_with(".mp4"))
        container = MediaFormat::Container::kMP4;
    else
        return false;
    return true;
}

int record(const Client& client, const Recorder::Settings& settings, bool json) {
    if (!settings.overwrite && access(settings.path.c_str(), F_OK) == 0)
        return Client::Fail(settings.path + " exists; choose another name, or --overwrite");
    return run(client, settings, json);
}

void add_record(CLI::App& program, Client& client) {
    CLI::App* command =
        program.add_subcommand("record", "Records picture and sound into a file, until Ctrl-C");
    const auto settings = std::make_shared<Recorder::Settings>();
    const auto json = std::make_shared<bool>(false);
    settings->stream.quality = "high";
    add_common(*command, *settings);
    command->add_option("-o,--output", settings->path, "With H.264 and AAC; required")
        ->required()
        ->option_text("FILE.mkv|FILE.mp4")
        ->check([settings](const std::string& path) {
            return container_of(path, settings->format.container) ? std::string()
                                                                  : path + " is neither .mkv nor .mp4";
        });
    command->add_flag("--overwrite", settings->overwrite, "Replace the file if there is one");
    command
        ->add_option("--crf", settings->format.crf,
                     "Of H.264, 0 to 51: lower is better and larger. Default: 20")
        ->check(CLI::Range(0, 51))
        ->option_text("N");
    add_switch_off(*command, "--no-sound", settings->format.hasSound, "Record the pictures alone");
    command->add_flag("--json", *json, "Print what was recorded as JSON, at the end");
    command->callback([&client, settings, json] {
        client.command = [&client, settings, json] { return record(client, *settings, *json); };
    });
}

// ---- pipe ----

int pipe(const Client& client, const Recorder::Settings& settings) {
    if (isatty(STDOUT_FILENO))
        return Client::Fail("standard output is a terminal; pipe it into a player, as in: glasspane-client "
                            "pipe HOST | ffplay -");
    return run(client, settings, false);
}

/// What comes out.
void add_format(CLI::App& command, MediaFormat& format) {
    const auto takeFormat = [&format](const std::string& name) {
        if (name == "raw")
            format.container = MediaFormat::Container::kRaw;
    };
    command
        .add_option_function<std::string>(
            "--format", takeFormat,
            "Raw: nothing but the pixels at --rate, or the samples (s16le, 44100 Hz, stereo). Default: nut")
        ->check(CLI::IsMember({"nut", "raw"}))
        ->option_text("nut|raw");
    const auto takePixels = [&format](const std::string& name) {
        if (name == "yuv420p")
            format.pixels = MediaFormat::Pixels::kYUV420P;
    };
    command
        .add_option_function<std::string>("--pixels", takePixels,
                                          "yuv420p: smaller, less colour. Default: bgr0")
        ->check(CLI::IsMember({"bgr0", "yuv420p"}))
        ->option_text("bgr0|yuv420p");
    CLI::Option* pictures = add_switch_off(command, "--video-only", format.hasSound, "No sound");
    add_switch_off(command, "--audio-only", format.hasPictures, "No pictures")->excludes(pictures);
}

void add_pipe(CLI::App& program, Client& client) {
    CLI::App* command = program.add_subcommand(
        "pipe", "Writes picture and sound to standard output, for ffmpeg -i - and ffplay -");
    const auto settings = std::make_shared<Recorder::Settings>();
    settings->path = "-";
    settings->stillInterval = std::chrono::milliseconds(100);
    settings->format.container = MediaFormat::Container::kNut;
    add_common(*command, *settings);
    add_format(*command, settings->format);
    command->callback([&client, settings] {
        const MediaFormat& format = settings->format;
        if (format.container == MediaFormat::Container::kRaw && format.hasPictures && format.hasSound)
            throw CLI::RequiredError("--format raw: --video-only or --audio-only");
        client.command = [&client, settings] { return pipe(client, *settings); };
    });
}

} // namespace

void AddMediaCommands(CLI::App& program, Client& client) {
    add_record(program, client);
    add_pipe(program, client);
}

} // namespace receiver

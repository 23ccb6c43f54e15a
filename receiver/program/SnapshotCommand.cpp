#include <memory>

#include <CLI/CLI.hpp>

#include "Client.h"
#include "PictureFile.h"
#include "Stream.h"

namespace receiver {

namespace {

struct Snapshot {
    Address server;
    std::string path;
    std::vector<int> crop;
    int quality = 90;
    bool hasPointer = true;
};

/// Pictures that are asked for: the first may show the screen as it was at some time in the past.
constexpr int kPolls = 2;

bool fetch(Stream& stream, std::string& reason) {
    for (int i = 0; i < kPolls; ++i) {
        const Stream::Event event = stream.Poll();
        if (event == Stream::Event::kMuted && stream.Picture().IsEmpty()) {
            reason = "the source is paused; go on with it at the server";
            return false;
        }
        if (event == Stream::Event::kFailed) {
            reason = stream.Failure();
            return false;
        }
    }
    if (stream.Picture().IsEmpty())
        reason = "the server sends no picture";
    return !stream.Picture().IsEmpty();
}

int snapshot(const Client& client, const Snapshot& options) {
    Stream::Settings settings{.server = options.server, .quality = options.quality >= 75 ? "high" : "normal"};
    if (!options.crop.empty())
        settings.crop = {options.crop[0], options.crop[1], options.crop[2], options.crop[3]};
    Stream stream(settings, &client.interruption);
    std::string reason;
    if (!fetch(stream, reason))
        return Client::Fail(reason);
    const Canvas& canvas = stream.Picture();
    std::vector<uint8_t> pixels(canvas.Row(0), canvas.Row(0) + static_cast<size_t>(canvas.RowBytes()) *
                                                                   static_cast<size_t>(canvas.Height()));
    if (const PointerShape* pointer = stream.Pointer(); pointer && options.hasPointer)
        pointer->DrawInto(pixels.data(), canvas.Width(), canvas.Height(), stream.PointerPlace().x,
                          stream.PointerPlace().y);
    if (!PictureFile::Write(options.path, pixels.data(), canvas.Width(), canvas.Height(), options.quality,
                            reason))
        return Client::Fail(reason);
    return Client::kSuccess;
}

} // namespace

void AddSnapshotCommand(CLI::App& program, Client& client) {
    CLI::App* command = program.add_subcommand("snapshot", "Saves one picture, upright and with the pointer");
    const auto options = std::make_shared<Snapshot>();
    Client::AddServer(*command, options->server);
    command->add_option("-o,--output", options->path, "FILE.jpg or FILE.png; - for a JPEG on standard output")
        ->required()
        ->check([](const std::string& path) {
            return PictureFile::IsKnown(path) ? std::string() : path + " is neither .jpg nor .png";
        });
    command->add_option("--crop", options->crop, "Pixels to cut off at the left, top, right and bottom")
        ->expected(4)
        ->delimiter(',')
        ->check(CLI::NonNegativeNumber);
    command->add_option("--quality", options->quality, "Of a JPEG, 1 to 100")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();
    command->add_flag("!--no-pointer", options->hasPointer, "Leave the pointer out");
    command->callback(
        [&client, options] { client.command = [&client, options] { return snapshot(client, *options); }; });
}

} // namespace receiver

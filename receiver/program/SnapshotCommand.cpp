#include <cstring>
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
/// From here on the server is asked for its best.
constexpr int kGoodQuality = 75;

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

/// The picture that is saved: b, g, r, x, top row first.
struct Picture {
    int width;
    int height;
    std::vector<uint8_t> pixels;
};

Picture copy_of(const Stream& stream, bool hasPointer) {
    const Canvas& canvas = stream.Picture();
    const auto size = static_cast<size_t>(canvas.RowBytes()) * static_cast<size_t>(canvas.Height());
    Picture picture{canvas.Width(), canvas.Height(), {canvas.Row(0), canvas.Row(0) + size}};
    if (const auto& pointer = stream.Pointer(); pointer && hasPointer)
        pointer->DrawInto(picture.pixels.data(), picture.width, picture.height, stream.PointerPlace().x,
                          stream.PointerPlace().y);
    return picture;
}

/// Cuts off at the left, top, right and bottom. False if nothing would be left.
bool crop(Picture& picture, const std::vector<int>& edges) {
    const int left = edges[0], top = edges[1];
    const int64_t width = int64_t{picture.width} - left - edges[2];
    const int64_t height = int64_t{picture.height} - top - edges[3];
    if (width < 1 || height < 1)
        return false;
    const auto rowBytes = static_cast<size_t>(width) * Canvas::kPixelBytes;
    for (int64_t y = 0; y < height; ++y)
        std::memmove(
            &picture.pixels[static_cast<size_t>(y) * rowBytes],
            &picture.pixels[static_cast<size_t>((top + y) * picture.width + left) * Canvas::kPixelBytes],
            rowBytes);
    picture.width = static_cast<int>(width);
    picture.height = static_cast<int>(height);
    return true;
}

int snapshot(const Client& client, const Snapshot& options) {
    Stream::Settings settings;
    settings.server = options.server;
    settings.quality = options.quality >= kGoodQuality ? "high" : "normal";
    Stream stream(settings, &client.interruption);
    std::string reason;
    if (!fetch(stream, reason))
        return Client::Fail(reason);
    Picture picture = copy_of(stream, options.hasPointer);
    if (!options.crop.empty() && !crop(picture, options.crop))
        return Client::Fail("nothing is left of " + std::to_string(picture.width) + " x " +
                            std::to_string(picture.height) + " pixels; crop less");
    if (!PictureFile::Write(options.path, picture.pixels.data(), picture.width, picture.height,
                            options.quality, reason))
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
        ->option_text("FILE")
        ->check([](const std::string& path) {
            return PictureFile::IsKnown(path) ? std::string() : path + " is neither .jpg nor .png";
        });
    command->add_option("--crop", options->crop, "Pixels to cut off at the left, top, right and bottom")
        ->expected(4)
        ->delimiter(',')
        ->check(Client::Within(0, 100'000))
        ->option_text("LEFT,TOP,RIGHT,BOTTOM");
    command->add_option("--quality", options->quality, "Of a JPEG, 1 to 100")
        ->check(Client::Within(1, 100))
        ->option_text("N (90)");
    command->add_flag_callback(
        "--no-pointer", [options] { options->hasPointer = false; }, "Leave the pointer out");
    command->callback(
        [&client, options] { client.command = [&client, options] { return snapshot(client, *options); }; });
}

} // namespace receiver

// Feeds whatever comes into the one who reads a server's replies: a first line with the content type, then
// the body.

#include <climits>
#include <cstdint>
#include <string>
#include <string_view>

#include "Canvas.h"
#include "PointerShapes.h"
#include "Reply.h"
#include "SourceMenu.h"
#include "StreamReply.h"
#include "zBoot.h"

namespace {

constexpr int64_t kMostPixels = 256 * 256; ///< That are drawn: more is slow and teaches nothing.

void draw(const receiver::Reply& reply) {
    receiver::StreamReply update;
    std::string reason;
    if (!update.Read(reply, reason) || update.isMuted || update.isScreenSaverActive)
        return;
    int64_t pixels = 0;
    for (const auto& picture : update.pictures)
        pixels += int64_t{picture.place.Width()} * picture.place.Height();
    if (pixels > kMostPixels)
        return;
    // Behind an earlier frame of another size, as where a source changes.
    receiver::Canvas canvas;
    receiver::StreamReply shifted = update;
    shifted.frame.right += shifted.frame.right < INT_MAX ? 1 : 0;
    canvas.Draw(shifted, reason);
    canvas.Draw(update, reason);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    zBoot::Startup();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const size_t lineEnd = std::min(input.find('\n'), size);
    const std::string_view body = input.substr(std::min(lineEnd + 1, size));
    receiver::Reply reply;
    reply.Body().SetAndCopyData(body.data(), static_cast<unsigned int>(body.size()), 0);
    std::string reason;
    if (!reply.Parse(input.substr(0, lineEnd), reason))
        return 0;
    draw(reply);
    receiver::PointerShape shape;
    if (shape.Read(reply)) {
        uint8_t pixels[4 * 8 * 8] = {};
        shape.DrawInto(pixels, 8, 8, -3, 5);
    }
    receiver::SourceMenu().Read(reply);
    return 0;
}

#include "PointerShapes.h"

#include <algorithm>

#include "Connection.h"
#include "Reply.h"
#include "z4CCCC.h"

namespace receiver {

namespace {

constexpr size_t kPixelBytes = 4;
constexpr uint32_t kBottomUpARGB =
    z4CCCC("bgra"); ///< As the server calls it: bytes a, r, g, b, lowest row first.

/// Of a premultiplied source over an opaque ground, one channel.
uint8_t blend(uint8_t source, uint8_t ground, uint8_t alpha) {
    const int sum = source + (ground * (255 - alpha) + 127) / 255;
    return static_cast<uint8_t>(std::min(sum, 255));
}

} // namespace

bool PointerShape::Read(const Reply& reply) {
    const zRecord& element = reply.Element();
    const int newWidth = element.AsInt32("width", 0);
    const int newHeight = element.AsInt32("height", 0);
    const int rowBytes = element.AsInt32("rowbytes", 0);
    const auto& sections = reply.Sections();
    if (newWidth < 1 || newWidth > kMaxSide || newHeight < 1 || newHeight > kMaxSide || sections.size() < 2 ||
        rowBytes < newWidth * static_cast<int>(kPixelBytes) || rowBytes > kMaxSide * 64 ||
        element.AsUInt32("colorspace", 0) != kBottomUpARGB)
        return false;
    const auto data = sections[1].data;
    if (data.size() < static_cast<size_t>(rowBytes) * static_cast<size_t>(newHeight))
        return false;
    width = newWidth;
    height = newHeight;
    pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * kPixelBytes);
    uint8_t* out = pixels.data();
    for (int y = height - 1; y >= 0; --y) {
        const uint8_t* in = data.data() + static_cast<size_t>(y) * static_cast<size_t>(rowBytes);
        for (int x = 0; x < width; ++x, in += kPixelBytes, out += kPixelBytes)
            std::reverse_copy(in, in + kPixelBytes, out);
    }
    return true;
}

void PointerShape::DrawInto(uint8_t* canvas, int canvasWidth, int canvasHeight, int x, int y) const {
    const int64_t left = x, top = y; // Anywhere, as the server says.
    const auto firstX = static_cast<int>(std::clamp<int64_t>(-left, 0, width));
    const auto endX = static_cast<int>(std::clamp<int64_t>(canvasWidth - left, 0, width));
    const auto firstY = static_cast<int>(std::clamp<int64_t>(-top, 0, height));
    const auto endY = static_cast<int>(std::clamp<int64_t>(canvasHeight - top, 0, height));
    for (int row = firstY; row < endY; ++row) {
        const uint8_t* in = pixels.data() + static_cast<size_t>(row * width + firstX) * kPixelBytes;
        uint8_t* out = canvas + static_cast<size_t>((top + row) * canvasWidth + left + firstX) * kPixelBytes;
        for (int column = firstX; column < endX; ++column, in += kPixelBytes, out += kPixelBytes)
            for (int channel = 0; channel < 3; ++channel)
                out[channel] = blend(in[channel], out[channel], in[3]);
    }
}

std::shared_ptr<const PointerShape> PointerShapes::Get(Connection& connection, uint32_t instance,
                                                       uint32_t id) {
    if (instance != fInstance || fEntries.size() > kMaxCount || fBytes > kMaxBytes) {
        fEntries.clear();
        fBytes = 0;
    }
    fInstance = instance;
    Entry& entry = fEntries[id];
    if (entry.shape || Clock::now() < entry.retry)
        return entry.shape;
    zRecord members;
    members.SetUInt32("mouse_id", id);
    std::string reason;
    Reply reply;
    auto shape = std::make_shared<PointerShape>();
    if (connection.Call("SnapshotMouse", members, reply, reason) && shape->Read(reply)) {
        fBytes += shape->pixels.size();
        entry.shape = std::move(shape);
    }
    entry.retry = Clock::now() + kRetry;
    return entry.shape;
}

} // namespace receiver

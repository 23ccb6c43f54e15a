#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace receiver {

class Connection;
class Reply;

/// A pointer's picture, upright: premultiplied b, g, r, a, top row first, rows without gaps.
struct PointerShape {
    static constexpr int kMaxSide = 1024;

    int width = 0;
    int height = 0;
    std::vector<uint8_t> pixels;

    /// Reads the reply to "SnapshotMouse". False for one that makes no sense.
    bool Read(const Reply& reply);

    /// Blends it into b, g, r, x pixels, with its left top corner at x, y; what lies outside is left out.
    void DrawInto(uint8_t* pixels, int canvasWidth, int canvasHeight, int x, int y) const;
};

/// The shapes that one run of the server has told, by their ids.
class PointerShapes {
  public:
    /// A server has tens of shapes of some kilobytes; beyond either bound all are fetched anew.
    static constexpr size_t kMaxCount = 256;
    static constexpr size_t kMaxBytes = size_t{16} << 20;
    /// A shape that could not be had is asked for again after so long.
    static constexpr std::chrono::seconds kRetry{5};

    /// The shape by that id, fetched over the connection if it isn't known; null if it can't be had.
    std::shared_ptr<const PointerShape> Get(Connection& connection, uint32_t instance, uint32_t id);

  private:
    using Clock = std::chrono::steady_clock;
    struct Entry {
        std::shared_ptr<const PointerShape> shape; ///< Null for what could not be had.
        Clock::time_point retry;
    };

    std::map<uint32_t, Entry> fEntries;
    size_t fBytes = 0; ///< Of all shapes.
    uint32_t fInstance = 0;
};

} // namespace receiver

#pragma once

#include <atomic>
#include <mutex>

#include "Jpeg.h"
#include "View.h"

namespace receiver {

/// Makes JPEGs of views. Each picture is encoded once, however many viewers ask for it, on the thread of the
/// first. Any thread.
class Encodings {
  public:
    enum class Kind {
        kEitherWayUp, ///< Without the pointer; a whole frame goes on as the server sent it.
        kUpright,     ///< Without the pointer.
        kWithPointer, ///< Upright, too.
    };
    /// What it takes now: pixels for an upright picture only where the server's can't be turned without loss.
    View::Need NeedFor(Kind kind) const;

    struct Encoded {
        uint64_t number = 0;
        Bytes jpeg = nullptr; ///< Null if it couldn't be encoded, for want of memory.
        bool isUpsideDown = false;
        bool lacksPixels = false; ///< It takes more than was needed so far: ask for that and try again.
    };

    /// \p quality, 1 to 100, is that of the pictures that have to be encoded.
    explicit Encodings(int quality) : fQuality(quality) {}

    /// The view, which has what the kind needed, or a newer one that has been encoded meanwhile.
    Encoded Get(Kind kind, const View& view);

    /// Pictures that were encoded so far, for tests: those that were just passed on don't count.
    uint64_t Count() const;

  private:
    /// The last encoding of a kind.
    struct Slot {
        std::mutex mutex; ///< For all that follows.
        JpegEncoder encoder;
        std::vector<uint8_t> pixels; ///< Into which the pointer is drawn.
        Encoded last;
        uint64_t count = 0;
    };

    bool turn(const View::Picture& picture, Slot& slot, std::vector<uint8_t>& jpeg);
    bool encode(const View::Picture& picture, Slot& slot, std::vector<uint8_t>& jpeg) const;
    bool encode_with_pointer(const View& view, Slot& slot, std::vector<uint8_t>& jpeg) const;

    const int fQuality;
    std::atomic<bool> fCanTurn = true; ///< The last whole frame that came upside down.
    mutable Slot fUpright;
    mutable Slot fWithPointer;
};

} // namespace receiver

#pragma once

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
    static View::Need NeedFor(Kind kind);

    struct Encoded {
        uint64_t number = 0;
        Bytes jpeg; ///< Null if it couldn't be encoded, for want of memory.
        bool isUpsideDown = false;
    };

    /// \p quality, 1 to 100, is that of the pictures that have to be encoded.
    explicit Encodings(int quality) : fQuality(quality) {}

    /// The view, which has what the kind needs, or a newer one that has been encoded meanwhile.
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

    bool encode_upright(const View& view, Slot& slot, std::vector<uint8_t>& jpeg) const;
    bool encode_with_pointer(const View& view, Slot& slot, std::vector<uint8_t>& jpeg) const;

    const int fQuality;
    mutable Slot fUpright;
    mutable Slot fWithPointer;
};

} // namespace receiver

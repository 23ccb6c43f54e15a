#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

#include "PointerShapes.h"
#include "zPoint.h"

namespace receiver {

using Bytes = std::shared_ptr<const std::vector<uint8_t>>;

/// What the source looked like after one poll. Never changes, so any number of threads may share it.
struct View {
    /// What somebody wants to make of it.
    enum class Need {
        kPicture,           ///< Either way up.
        kPixels,            ///< To encode them.
        kPixelsWithPointer, ///< And it is another view when just the pointer has moved.
    };
    static constexpr size_t kNeeds = 3;

    /// A copy, as far as somebody needs it, of the picture.
    struct Picture {
        uint64_t number = 0; ///< Of the stream; 0 for none yet.
        int width = 0;
        int height = 0;
        std::chrono::system_clock::time_point time; ///< When its reply had arrived.
        Bytes jpeg; ///< As the server sent it, bottom row first, if it was one whole frame; else null.
        std::vector<uint8_t> pixels; ///< b, g, r, x, top row first; empty while nobody needs them.
    };
    struct Pointer {
        zPoint corner;                             ///< Left top corner of its shape, on the picture.
        uint64_t id = 0;                           ///< Of the shape, among all that this gateway has seen.
        std::shared_ptr<const PointerShape> shape; ///< Null while none shows.

        bool operator==(const Pointer&) const = default;
    };

    uint64_t number = 0; ///< Counts up with each change of picture or pointer.
    std::shared_ptr<const Picture> picture = std::make_shared<Picture>();
    Pointer pointer;

    uint64_t NumberFor(Need need) const {
        return need == Need::kPixelsWithPointer ? number : picture->number;
    }
    /// Whether it holds what that takes.
    bool Has(Need need) const {
        return !picture->pixels.empty() || (need == Need::kPicture && picture->jpeg);
    }
};

} // namespace receiver

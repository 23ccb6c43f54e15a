#include "Encodings.h"

namespace receiver {

View::Need Encodings::NeedFor(Kind kind) const {
    switch (kind) {
    case Kind::kEitherWayUp:
        return View::Need::kPicture;
    case Kind::kUpright:
        return fCanTurn ? View::Need::kPicture : View::Need::kPixels;
    default:
        return View::Need::kPixelsWithPointer;
    }
}

Encodings::Encoded Encodings::Get(Kind kind, const View& view) {
    if (kind == Kind::kEitherWayUp && view.picture->jpeg)
        return {view.picture->number, view.picture->jpeg, true};
    const bool withPointer = kind == Kind::kWithPointer && view.pointer.shape;
    Slot& slot = withPointer ? fWithPointer : fUpright;
    const uint64_t number = withPointer ? view.number : view.picture->number;

    std::lock_guard lock(slot.mutex);
    if (slot.last.jpeg && slot.last.number >= number)
        return slot.last;
    std::vector<uint8_t> jpeg;
    const bool isTurned = !withPointer && turn(*view.picture, slot, jpeg);
    if (!isTurned && view.picture->pixels.empty())
        return {.lacksPixels = true};
    if (isTurned || (withPointer ? encode_with_pointer(view, slot, jpeg) : encode(*view.picture, slot, jpeg)))
        slot.last = {number, std::make_shared<std::vector<uint8_t>>(std::move(jpeg)), false};
    else
        slot.last = {};
    return slot.last;
}

uint64_t Encodings::Count() const {
    uint64_t count = 0;
    for (Slot* slot : {&fUpright, &fWithPointer}) {
        std::lock_guard lock(slot->mutex);
        count += slot->count;
    }
    return count;
}

bool Encodings::turn(const View::Picture& picture, Slot& slot, std::vector<uint8_t>& jpeg) {
    if (!picture.jpeg)
        return false;
    const bool isTurned = slot.encoder.Flip(*picture.jpeg, jpeg);
    fCanTurn = isTurned;
    return isTurned;
}

bool Encodings::encode(const View::Picture& picture, Slot& slot, std::vector<uint8_t>& jpeg) const {
    ++slot.count;
    return slot.encoder.Encode(picture.pixels.data(), picture.width, picture.height, picture.width * 4,
                               fQuality, jpeg);
}

bool Encodings::encode_with_pointer(const View& view, Slot& slot, std::vector<uint8_t>& jpeg) const {
    const View::Picture& picture = *view.picture;
    slot.pixels = picture.pixels;
    view.pointer.shape->DrawInto(slot.pixels.data(), picture.width, picture.height, view.pointer.corner.x,
                                 view.pointer.corner.y);
    ++slot.count;
    return slot.encoder.Encode(slot.pixels.data(), picture.width, picture.height, picture.width * 4, fQuality,
                               jpeg);
}

} // namespace receiver

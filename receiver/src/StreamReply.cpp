#include "StreamReply.h"

#include <algorithm>
#include <string>

#include "Reply.h"

namespace receiver {

namespace {

constexpr int kMostChannels = 8;
constexpr int kHighestRate = 192'000;

const zRect kNowhere(0, 0, -1, -1);

/// A clock in microseconds, within what can be added and subtracted.
int64_t read_clock(const zRecord& element, const char* name) {
    constexpr int64_t kLatest = int64_t{1} << 60;
    return std::clamp<int64_t>(element.AsInt64(name, 0), -kLatest, kLatest);
}

/// Edges in order, and a size that can be held.
bool is_sensible(const zRect& rect) {
    const int64_t width = int64_t{rect.right} - rect.left + 1;
    const int64_t height = int64_t{rect.bottom} - rect.top + 1;
    return width >= 1 && height >= 1 && width <= StreamReply::kMaxSide && height <= StreamReply::kMaxSide &&
           width * height <= StreamReply::kMaxPixels;
}

std::string numbered(const char* name, size_t section) {
    return name + std::to_string(section);
}

/// What a section's attributes say of it, by its number.
class SectionReader {
  public:
    SectionReader(const zRecord& element, StreamReply& out) : fElement(element), fOut(out) {}

    bool Read(size_t number, const Reply::Section& section, std::string& reason) {
        if (section.type == "audio/raw")
            return read_sound(number, section, reason);
        if (section.type == "image/jpg" || section.type == "image/jpeg")
            return read_picture(number, section, reason);
        return true; // Of some later kind.
    }

  private:
    bool read_picture(size_t number, const Reply::Section& section, std::string& reason) {
        // A single picture, as Snapshot sends it, fills the frame.
        const bool isSingle = fElement.ExistsName("picture") && !fElement.ExistsName("next_sequence_id");
        const zRect place =
            fElement.AsRect(numbered("section_rect_", number).c_str(), isSingle ? fOut.frame : kNowhere);
        if (!is_sensible(place) || !fOut.frame.Contains(place)) {
            reason = "picture " + std::to_string(number) + " of the reply has no place in the frame";
            return false;
        }
        fPixels += area(place);
        if (fOut.pictures.size() == StreamReply::kMaxPictures ||
            fPixels > StreamReply::kMaxCoverage * area(fOut.frame)) {
            reason = "the reply has too many pictures";
            return false;
        }
        fOut.pictures.push_back({place, section.data});
        return true;
    }

    bool read_sound(size_t number, const Reply::Section& section, std::string& reason) {
        const int channels = fElement.AsInt32(numbered("section_channels_", number).c_str(), 0);
        const int rate = fElement.AsInt32(numbered("section_rate_", number).c_str(), 0);
        if (channels < 1 || channels > kMostChannels || rate < 1 || rate > kHighestRate || fOut.sound) {
            reason = "the reply's sound tells no format";
            return false;
        }
        const size_t frameBytes = static_cast<size_t>(channels) * sizeof(int16_t);
        fOut.sound = {channels, rate, read_clock(fElement, "audiotimestamp"),
                      section.data.first(section.data.size() / frameBytes * frameBytes)};
        return true;
    }

    static int64_t area(const zRect& rect) { return int64_t{rect.Width()} * rect.Height(); }

    const zRecord& fElement;
    StreamReply& fOut;
    int64_t fPixels = 0; ///< Of all pictures.
};

} // namespace

bool StreamReply::Read(const Reply& reply, std::string& reason) {
    *this = {};
    const zRecord& element = reply.Element();
    if (std::string(element.AsCString(zRecord::kXMLTag, "")) != "response" ||
        element.AsInt32("error", -1) != 0) {
        reason = "the reply is none to a call for pictures";
        return false;
    }
    frame = element.AsRect("rect", kNowhere);
    isMuted = element.AsBool("muted", false);
    isScreenSaverActive = element.AsBool("screen_saver_active", false);
    if (isMuted || isScreenSaverActive)
        return true;
    if (!is_sensible(frame)) {
        reason = "the reply tells no frame that a picture could have";
        return false;
    }
    timestamp = read_clock(element, "timestamp");
    instance = element.AsUInt32("instance", 0);
    nextSequence = element.AsUInt32("next_sequence_id", 0);
    if (element.ExistsName("mouse_location"))
        pointer = Pointer{element.AsPoint("mouse_location", {}), element.AsUInt32("mouse_id", 0)};
    SectionReader reader(element, *this);
    const auto& sections = reply.Sections();
    for (size_t number = 1; number < sections.size(); ++number)
        if (!reader.Read(number, sections[number], reason))
            return false;
    return true;
}

} // namespace receiver

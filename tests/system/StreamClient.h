#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "Picture.h"
#include "Response.h"

/// A receiver of the stream, written against the protocol alone: it polls, sends back the number that it was
/// told, and puts every picture where the reply says.
class StreamClient {
  public:
    /// \p members of the request's struct besides the sequence id.
    explicit StreamClient(uint16_t port, std::string members = "", std::string method = "SnapshotByDiffs",
                          int timeoutMs = 30000)
        : fClient(port, timeoutMs), fMembers(std::move(members)), fMethod(std::move(method)) {}

    /// One call. False when there is no reply or it makes no sense.
    bool Poll() {
        const auto reply = fClient.Call(
            fMethod, "<params><param><value><struct><member><name>sequence_id</name><value><string>" +
                         std::to_string(fNext) +
                         "</string></value></member><member><name>quality</name><value><string>high"
                         "</string></value></member>" +
                         fMembers + "</struct></value></param></params>");
        ++fPolls;
        return reply && take(Response(*reply));
    }

    /// Claims to have got somewhere else.
    void Forget(uint32_t next) { fNext = next; }

    bool HadPictures() const { return fHadPictures; }
    int Polls() const { return fPolls; }
    /// Replies with changed regions.
    int DiffReplies() const { return fDiffReplies; }
    int WholeFrames() const { return fWholeFrames; }

    /// Where the canvas lies on the screen.
    int Left() const { return fOrigin.left; }
    int Top() const { return fOrigin.top; }
    int Width() const { return fCanvas.width; }
    int Height() const { return fCanvas.height; }
    /// An attribute of the last reply; empty without it.
    std::string Attribute(const std::string& name) const { return fLast.Attribute(name); }
    /// All sound so far.
    const std::vector<int16_t>& Sound() const { return fSound; }

    /// The largest difference of a channel between the canvas and 0xRRGGBB; 255 outside of the canvas.
    int Difference(int x, int y, uint32_t colour) const { return fCanvas.Difference(x, y, colour); }

  private:
    struct Rect {
        int left = 0, top = 0, right = -1, bottom = -1;
        int Width() const { return right - left + 1; }
        int Height() const { return bottom - top + 1; }
    };

    bool take(Response response) {
        fLast = std::move(response);
        fHadPictures = !Attribute("picture").empty();
        const std::string next = Attribute("next_sequence_id");
        if (next.empty()) // Muted: the canvas stays.
            return fLast.xml.starts_with("<response ");
        // One state further is what changed; a whole frame jumps.
        const auto told = static_cast<uint32_t>(std::stoul(next));
        if (fHadPictures)
            ++(told - fNext <= 1 ? fDiffReplies : fWholeFrames);
        fNext = told;
        fOrigin = rect(Attribute("rect"));
        for (size_t i = 1; i <= fLast.sections.size(); ++i) {
            const std::string number = std::to_string(i);
            const std::string& data = fLast.sections[i - 1].data;
            if (!Attribute("section_channels_" + number).empty())
                hear(data);
            else if (!apply(data, rect(Attribute("section_rect_" + number)), fOrigin))
                return false;
        }
        return true;
    }

    bool apply(const std::string& jpeg, const Rect& place, const Rect& whole) {
        if (whole.Width() != fCanvas.width || whole.Height() != fCanvas.height) {
            fCanvas.width = whole.Width();
            fCanvas.height = whole.Height();
            fCanvas.pixels.assign(static_cast<size_t>(whole.Width() * whole.Height() * 3), 0);
        }
        Picture part;
        if (!part.Decode(jpeg) || part.width != place.Width() || part.height != place.Height())
            return false;
        for (int y = 0; y < part.height; ++y)
            put_row(place.left - whole.left, place.top - whole.top + y, part.width, part.At(0, y));
        return true;
    }

    void put_row(int x, int y, int width, const uint8_t* row) {
        const int visible = std::min(width, fCanvas.width - x);
        if (y >= 0 && y < fCanvas.height && x >= 0 && visible > 0)
            std::copy_n(row, visible * 3, &fCanvas.pixels[static_cast<size_t>((y * fCanvas.width + x) * 3)]);
    }

    void hear(const std::string& samples) {
        const size_t before = fSound.size();
        fSound.resize(before + samples.size() / sizeof(int16_t));
        std::memcpy(fSound.data() + before, samples.data(), samples.size());
    }

    static Rect rect(const std::string& text) {
        Rect one;
        sscanf(text.c_str(), "%d,%d,%d,%d", &one.left, &one.top, &one.right, &one.bottom);
        return one;
    }

    TestClient fClient;
    std::string fMembers;
    std::string fMethod;
    uint32_t fNext = 0;
    Response fLast;
    bool fHadPictures = false;
    int fPolls = 0;
    int fDiffReplies = 0;
    int fWholeFrames = 0;
    Rect fOrigin;
    Picture fCanvas;
    std::vector<int16_t> fSound;
};

#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "Picture.h"
#include "TestClient.h"

/// A receiver of the stream, written against the protocol alone: it polls, sends back the number that it was
/// told, and puts every picture where the reply says.
class StreamClient {
  public:
    /// \p members of the request's struct besides the sequence id.
    explicit StreamClient(uint16_t port, std::string members = "", std::string method = "SnapshotByDiffs",
                          int timeoutMs = 5000)
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
        return reply && take(reply->head, reply->body);
    }

    /// Claims to have got somewhere else.
    void Forget(uint32_t next) { fNext = next; }

    bool HadPictures() const { return fHadPictures; }
    int Polls() const { return fPolls; }
    /// Replies with changed regions.
    int DiffReplies() const { return fDiffReplies; }
    int WholeFrames() const { return fWholeFrames; }
    const std::string& LastRect() const { return fLastRect; }

    /// Where the canvas lies on the screen.
    int Left() const { return fOrigin.left; }
    int Top() const { return fOrigin.top; }
    int Width() const { return fCanvas.width; }
    int Height() const { return fCanvas.height; }
    /// An attribute of the last reply; empty without it.
    std::string Attribute(const std::string& name) const { return attribute(name); }
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

    bool take(const std::string& head, const std::string& body) {
        fHadPictures = head.find("multipart/related") != std::string::npos;
        std::vector<std::string> sections{body};
        if (fHadPictures)
            sections = split(body);
        fXml = sections[0];
        fHadPictures = !attribute("picture").empty();
        const std::string next = attribute("next_sequence_id");
        if (next.empty()) // Muted: the canvas stays.
            return fXml.starts_with("<response ");
        // One state further is what changed; a whole frame jumps.
        const auto told = static_cast<uint32_t>(std::stoul(next));
        if (fHadPictures)
            ++(told - fNext <= 1 ? fDiffReplies : fWholeFrames);
        fNext = told;
        const Rect whole = rect(attribute("rect"));
        fOrigin = whole;
        for (size_t i = 1; i < sections.size(); ++i) {
            if (!attribute("section_channels_" + std::to_string(i)).empty()) {
                hear(sections[i]);
                continue;
            }
            fLastRect = attribute("section_rect_" + std::to_string(i));
            if (!apply(sections[i], rect(fLastRect), whole))
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

    /// The data of each section, by the delimiter between them.
    static std::vector<std::string> split(const std::string& body) {
        const std::string delimiter = "\r\n--MimeBoundary_8923gr836bidfb3i";
        std::vector<std::string> sections;
        size_t start = body.find("\r\n\r\n");
        while (start != std::string::npos) {
            const size_t end = body.find(delimiter, start + 4);
            sections.push_back(body.substr(start + 4, end - start - 4));
            start = body.find("\r\n\r\n", end);
        }
        return sections;
    }

    std::string attribute(const std::string& name) const {
        const size_t start = fXml.find(" " + name + "=\"");
        if (start == std::string::npos)
            return "";
        const size_t value = start + name.size() + 3;
        return fXml.substr(value, fXml.find('"', value) - value);
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
    std::string fXml;
    std::string fLastRect;
    bool fHadPictures = false;
    int fPolls = 0;
    int fDiffReplies = 0;
    int fWholeFrames = 0;
    Rect fOrigin;
    Picture fCanvas;
    std::vector<int16_t> fSound;
};

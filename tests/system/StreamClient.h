#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <turbojpeg.h>

#include "TestClient.h"

/// A receiver of the stream, written against the protocol alone: it polls, sends back the number that it was
/// told, and puts every picture where the reply says.
class StreamClient {
  public:
    /// \p members of the request's struct besides the sequence id.
    explicit StreamClient(uint16_t port, std::string members = "")
        : fClient(port), fMembers(std::move(members)), fDecoder(tjInitDecompress()) {}
    ~StreamClient() { tjDestroy(fDecoder); }
    StreamClient(const StreamClient&) = delete;
    StreamClient& operator=(const StreamClient&) = delete;

    /// One call. False when there is no reply or it makes no sense.
    bool Poll() {
        const auto reply =
            fClient.Call("SnapshotByDiffs",
                         "<params><param><value><struct><member><name>sequence_id</name><value><string>" +
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

    /// The largest difference of a channel between the canvas and 0xRRGGBB; 255 outside of the canvas.
    int Difference(int x, int y, uint32_t colour) const {
        if (x >= fWidth || y >= fHeight)
            return 255;
        int largest = 0;
        for (int i = 0; i < 3; ++i)
            largest = std::max(largest, std::abs(fCanvas[static_cast<size_t>((y * fWidth + x) * 3 + i)] -
                                                 static_cast<int>(colour >> (16 - 8 * i) & 0xFF)));
        return largest;
    }

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
        const std::string next = attribute("next_sequence_id");
        if (next.empty())
            return false;
        // One state further is what changed; a whole frame jumps.
        const auto told = static_cast<uint32_t>(std::stoul(next));
        if (fHadPictures)
            ++(told - fNext <= 1 ? fDiffReplies : fWholeFrames);
        fNext = told;
        const Rect whole = rect(attribute("rect"));
        for (size_t i = 1; i < sections.size(); ++i) {
            fLastRect = attribute("section_rect_" + std::to_string(i));
            if (!apply(sections[i], rect(fLastRect), whole))
                return false;
        }
        return true;
    }

    bool apply(const std::string& jpeg, const Rect& place, const Rect& whole) {
        if (whole.Width() != fWidth || whole.Height() != fHeight) {
            fWidth = whole.Width();
            fHeight = whole.Height();
            fOrigin = whole;
            fCanvas.assign(static_cast<size_t>(fWidth * fHeight * 3), 0);
        }
        const auto* bytes = reinterpret_cast<const unsigned char*>(jpeg.data());
        int width = 0, height = 0, subsampling = 0, space = 0;
        if (tjDecompressHeader3(fDecoder, bytes, jpeg.size(), &width, &height, &subsampling, &space) != 0 ||
            width != place.Width() || height != place.Height())
            return false;
        std::vector<uint8_t> pixels(static_cast<size_t>(width * height * 3));
        // Pictures travel upside down.
        if (tjDecompress2(fDecoder, bytes, jpeg.size(), pixels.data(), 0, 0, 0, TJPF_RGB, TJFLAG_BOTTOMUP) !=
            0)
            return false;
        for (int y = 0; y < height; ++y)
            put_row(place.left - fOrigin.left, place.top - fOrigin.top + y, width,
                    &pixels[static_cast<size_t>(y * width * 3)]);
        return true;
    }

    void put_row(int x, int y, int width, const uint8_t* row) {
        if (y < 0 || y >= fHeight || x < 0)
            return;
        const int visible = std::min(width, fWidth - x);
        if (visible > 0)
            std::copy_n(row, visible * 3, &fCanvas[static_cast<size_t>((y * fWidth + x) * 3)]);
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
    tjhandle fDecoder;
    uint32_t fNext = 0;
    std::string fXml;
    std::string fLastRect;
    bool fHadPictures = false;
    int fPolls = 0;
    int fDiffReplies = 0;
    int fWholeFrames = 0;
    Rect fOrigin;
    int fWidth = 0;
    int fHeight = 0;
    std::vector<uint8_t> fCanvas; ///< r, g, b; top row first.
};

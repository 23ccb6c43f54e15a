#include "JpegExporter.h"

#include <cstddef>
#include <new>
#include <utility>

#include <turbojpeg.h>

namespace host {
namespace {

/// The format counts rows and columns in 16 bits; the library stops a little before.
constexpr int kMaximumExtent = 65500;

/// The exporter's three qualities on the encoder's scale, see docs/quality.md.
struct Level {
    int compressionQuality; ///< The port's number.
    int jpegQuality;        ///< 1 to 100, as in the IJG's scaling of the standard's tables.
    int subsampling;
};
constexpr Level kLow{256, 50, TJSAMP_420};
constexpr Level kNormal{512, 80, TJSAMP_420};
constexpr Level kHigh{768, 90, TJSAMP_444};

/// Bytes that are not cleared first: pages that nothing was written to take no memory.
using Bytes = std::unique_ptr<uint8_t[]>;

Bytes new_bytes(size_t count) {
    return Bytes(new (std::nothrow) uint8_t[count]);
}

class JpegBlock : public PictureBlock {
  public:
    const uint8_t* Data() const override { return fSize ? fBytes.get() : nullptr; }
    size_t Size() const override { return fSize; }

    uint8_t* Room() { return fBytes.get(); }
    size_t Capacity() const { return fCapacity; }
    void SetRoom(Bytes bytes, size_t capacity) {
        fBytes = std::move(bytes);
        fCapacity = capacity;
    }
    void SetSize(size_t size) { fSize = size; }

  private:
    Bytes fBytes;
    size_t fCapacity = 0;
    size_t fSize = 0;
};

struct CompressorDeleter {
    void operator()(void* compressor) const { tjDestroy(compressor); }
};
using Compressor = std::unique_ptr<void, CompressorDeleter>;

class JpegExporter : public PictureExporter {
  public:
    JpegExporter(Compressor compressor, int width, int height, int rowBytes)
        : fCompressor(std::move(compressor)), fWidth(width), fHeight(height), fRowBytes(rowBytes) {}

    void SetInputPixels(const void* pixels) override { fPixels = static_cast<const uint8_t*>(pixels); }

    int SetCompressionQuality(int quality) override {
        for (const Level& level : {kLow, kNormal, kHigh}) {
            if (level.compressionQuality == quality) {
                fLevel = level;
                return 0;
            }
        }
        return -1;
    }

    int SetOutput(PictureBlock& block) override {
        fOutput = dynamic_cast<JpegBlock*>(&block);
        return fOutput ? 0 : -1;
    }

    int Export() override;

  private:
    Compressor fCompressor;
    int fWidth;
    int fHeight;
    int fRowBytes;
    Level fLevel = kNormal;
    const uint8_t* fPixels = nullptr;
    JpegBlock* fOutput = nullptr;
};

/// The encoder writes into the block's own room, which has to hold the worst case. It can only fail for its
/// arguments, which were looked at when the exporter was made, or for its working memory, which it takes
/// before it writes the first byte: a failure leaves the block's picture whole.
int JpegExporter::Export() {
    if (!fPixels || !fOutput)
        return -1;
    unsigned long size = tjBufSize(fWidth, fHeight, fLevel.subsampling);
    const size_t capacity = size;
    Bytes grown = capacity > fOutput->Capacity() ? new_bytes(capacity) : nullptr;
    uint8_t* target = grown ? grown.get() : fOutput->Room();
    if (!grown && capacity > fOutput->Capacity())
        return -1;
    if (tjCompress2(fCompressor.get(), fPixels, fWidth, fRowBytes, fHeight, TJPF_BGRX, &target, &size,
                    fLevel.subsampling, fLevel.jpegQuality, TJFLAG_NOREALLOC | TJFLAG_ACCURATEDCT) != 0)
        return -1;
    if (grown)
        fOutput->SetRoom(std::move(grown), capacity);
    fOutput->SetSize(size);
    return 0;
}

} // namespace

std::unique_ptr<PictureExporter> NewJpegExporter(int width, int height, int rowBytes) {
    if (width < 1 || width > kMaximumExtent || height < 1 || height > kMaximumExtent || rowBytes / 4 < width)
        return nullptr;
    Compressor compressor(tjInitCompress());
    if (!compressor)
        return nullptr;
    return std::make_unique<JpegExporter>(std::move(compressor), width, height, rowBytes);
}

std::unique_ptr<PictureBlock> NewJpegBlock() {
    return std::make_unique<JpegBlock>();
}

} // namespace host

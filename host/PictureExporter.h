#pragma once

#include <cstddef>
#include <cstdint>

namespace host {

/// A block of bytes that an exporter fills and grows. Its memory is kept from one picture to the next, so
/// that a stream of pictures of one size settles without allocations. Owned by one thread at a time.
class PictureBlock {
  public:
    PictureBlock() = default;
    virtual ~PictureBlock() = default;
    PictureBlock(const PictureBlock&) = delete;
    PictureBlock& operator=(const PictureBlock&) = delete;

    /// The picture's bytes; null while nothing was ever exported.
    virtual const uint8_t* Data() const = 0;

    /// The picture's length in bytes; 0 while nothing was ever exported.
    virtual size_t Size() const = 0;
};

/// Compresses 32-bit pixels into pictures of one fixed size. One thread at a time.
///
/// Settings stay until they are set again. An exporter only fills blocks that came from the same host.
class PictureExporter {
  public:
    virtual ~PictureExporter() = default;

    /// The pixels that Export will read, in place: bytes b, g, r, and one that plays no part, in the geometry
    /// that the exporter was made for. They must stay readable during Export.
    virtual void SetInputPixels(const void* pixels) = 0;

    /// Compression quality: 256 is low, 512 normal, 768 high. 0, or -1 for any other value.
    virtual int SetCompressionQuality(int quality) = 0;

    /// The block that Export fills; not owned.
    virtual int SetOutput(PictureBlock& block) = 0;

    /// Replaces the block's contents by a baseline JPEG of the pixels, rows in memory order. 0, or -1 with
    /// the block as it was.
    virtual int Export() = 0;
};

} // namespace host

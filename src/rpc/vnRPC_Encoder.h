#pragma once

#include <cstdint>
#include <memory>

#include "cBuffer.h"

namespace host {
class PictureBlock;
}

/// A compressed picture that hangs on a reply. The exporter writes straight into its block, and the socket
/// sends from there. It outlives its encoder without harm.
class vnEncoderBuffer : public cBuffer {
  public:
    vnEncoderBuffer();
    ~vnEncoderBuffer() override;

    /// The JPEG; null and 0 while nothing was encoded.
    uint8_t* Data() override;
    int Size() override;

    host::PictureBlock& Block() { return *fBlock; }

  private:
    std::unique_ptr<host::PictureBlock> fBlock;
};

/// Turns frames of one width, height and row pitch into JPEGs, reading the pixels in place. Rows are taken in
/// memory order; since frames are stored bottom row first, the picture stands upside down on the wire, and
/// clients count on it.
///
/// Users hold the application's shared lock around every call.
class vnRPC_Encoder {
  public:
    /// Quality tags, as four characters each.
    static constexpr uint32_t kQualityLow = 0x6C6F772E;
    static constexpr uint32_t kQualityNormal = 0x6E6F726D;
    static constexpr uint32_t kQualityHigh = 0x68696768;

    virtual ~vnRPC_Encoder() = default;

    /// A new, empty buffer with one reference, which the caller releases.
    virtual vnEncoderBuffer* NewBuffer() = 0;

    /// Encodes \p pixels into \p out. \p size is not needed: the geometry is the constructor's. 0, or -1 with
    /// \p out as it was.
    virtual int EncodeJPEG(vnEncoderBuffer& out, const void* pixels, int size, uint32_t quality) = 0;

    /// Never null. An encoder whose set-up failed says so at each EncodeJPEG.
    static vnRPC_Encoder* Factory(int width, int height, int rowBytes);

    /// "low" and "high" in any case; all else is normal.
    static uint32_t QualityFromString(const char* word);
};

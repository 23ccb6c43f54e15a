#pragma once

#include <cstdint>
#include <memory>

#include "zRect.h"

class vnEncoderBuffer;
class vnRPC_Encoder;
class vnSnapshotBuffer;

/// The encoder of a service's whole frames, with the picture it makes: both are kept while the size stays.
/// The services' lock guards it.
class vnRPC_FrameEncoder {
  public:
    vnRPC_FrameEncoder();
    ~vnRPC_FrameEncoder();
    vnRPC_FrameEncoder(const vnRPC_FrameEncoder&) = delete;
    vnRPC_FrameEncoder& operator=(const vnRPC_FrameEncoder&) = delete;

    /// Makes encoder and picture anew if \p captured has another size than the last one. True if it did.
    bool CheckAndResize(const zRect& captured, vnSnapshotBuffer& frame);

    /// Encodes a frame, unless it is empty or of another size than the encoder, as after a Grab that failed.
    /// The picture holds what it held then.
    void Encode(vnSnapshotBuffer& frame, uint32_t quality);

    /// The picture with a reference of the caller's. Only after CheckAndResize.
    vnEncoderBuffer* AddRefToPicture();

  private:
    std::unique_ptr<vnRPC_Encoder> fEncoder;
    zRect fEncoderRect;
    vnEncoderBuffer* fEncoded = nullptr; ///< One reference; reused for every reply.
};

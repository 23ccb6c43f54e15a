#pragma once

#include <optional>

#include "vnRPC_Encoder.h"

namespace host {
class PictureExporter;
}

/// The encoder on the host's picture exporter. It talks to the exporter only when a setting changes: a frame
/// of the same store, quality and output as the last one costs the export alone.
class vnRPC_Encoder_mac : public vnRPC_Encoder {
  public:
    vnRPC_Encoder_mac(int width, int height, int rowBytes);
    ~vnRPC_Encoder_mac() override;

    vnEncoderBuffer* NewBuffer() override;
    int EncodeJPEG(vnEncoderBuffer& out, const void* pixels, int size, uint32_t quality) override;

  private:
    int set_quality(uint32_t quality);
    int set_output(vnEncoderBuffer& out);

    std::unique_ptr<host::PictureExporter> fExporter; ///< Null when the set-up failed.
    std::optional<uint32_t> fLastQuality; ///< None before the first picture, which always sets one.
    const void* fLastPixels = nullptr;
    host::PictureBlock* fLastOutput = nullptr;
};

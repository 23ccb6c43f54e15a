#pragma once

#include <cstdlib>

#include "cBuffer.h"

/// Sound that hangs on a reply.
class vnAudioBuffer : public cBuffer {
  public:
    /// With \p ownsData the block is given back with free() at the end.
    vnAudioBuffer(unsigned char* data, int size, bool ownsData)
        : fData(data), fSize(size), fOwnsData(ownsData) {}
    ~vnAudioBuffer() override {
        if (fOwnsData)
            std::free(fData);
    }

    uint8_t* Data() override { return fData; }
    int Size() override { return fSize; }

  private:
    uint8_t* fData;
    int fSize;
    bool fOwnsData;
};

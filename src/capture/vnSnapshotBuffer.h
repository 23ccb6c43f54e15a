#pragma once

#include <cstdint>

#include "cBuffer.h"
#include "zBuffer.h"

/// Pixel layouts: the tag's bytes in memory, lowest address first, spell the order of a pixel's channels.
enum vnColorSpace : uint32_t {
    kColorSpace_bgra = 0x61726762, ///< Frames.
    kColorSpace_argb = 0x62677261, ///< Pointer shapes, premultiplied.
};

/// A frame: 32-bit pixels, bottom row first, with as many references as users. The type tag tells a device
/// whether a buffer is of its own kind.
class vnSnapshotBuffer : public cBuffer {
  public:
    virtual int Width() { return fWidth; }
    virtual int Height() { return fHeight; }
    virtual int RowBytes() { return fRowBytes; }
    virtual uint32_t ColorSpace() { return fColorSpace; }

    /// Sets the geometry; kinds with a store of their own fit it, too. 0, or a negative code.
    virtual int Configure(int width, int height, int rowBytes, uint32_t colorSpace);

    /// There are pixels, and the store has all that the geometry speaks of. A Grab that failed half-way may
    /// leave it otherwise.
    bool HoldsItsPixels();

    uint32_t TypeTag() const { return fTypeTag; }

  protected:
    explicit vnSnapshotBuffer(uint32_t typeTag) : fTypeTag(typeTag) {}

  private:
    int fWidth = 0;
    int fHeight = 0;
    int fRowBytes = 0;
    uint32_t fColorSpace = 0;
    const uint32_t fTypeTag;
};

/// A frame of vnSnapshot_ogl, in memory of its own.
class vnSnapBuff_ogl : public vnSnapshotBuffer {
  public:
    static constexpr uint32_t kTypeTag = 0x766E4F62;

    vnSnapBuff_ogl() : vnSnapshotBuffer(kTypeTag) {}
    uint8_t* Data() override { return reinterpret_cast<uint8_t*>(fStore.Data()); }
    int Size() override { return static_cast<int>(fStore.Size()); }

    using vnSnapshotBuffer::Configure;

    /// Deliberate: an operation beside the inherited one, not in its place. The device calls this one, which
    /// fits the store; whoever knows the buffer by its base sets the geometry alone.
    virtual int Configure(int width, int height, int rowBytes, int colorSpace);

    zBuffer& Store() { return fStore; }

  private:
    zBuffer fStore;
};

/// A frame of vnSnapshot_cg, in memory of its own.
class vnSnapBuff_cg : public vnSnapshotBuffer {
  public:
    static constexpr uint32_t kTypeTag = 0x766E4347;

    vnSnapBuff_cg() : vnSnapshotBuffer(kTypeTag) {}
    uint8_t* Data() override { return reinterpret_cast<uint8_t*>(fStore.Data()); }
    int Size() override { return static_cast<int>(fStore.Size()); }
    int Configure(int width, int height, int rowBytes, uint32_t colorSpace) override;

    zBuffer& Store() { return fStore; }

  private:
    zBuffer fStore;
};

/// A pointer shape. Once in the catalogue its pixels don't change any more.
class vnSnapBuff_mouse : public vnSnapshotBuffer {
  public:
    static constexpr uint32_t kTypeTag = 0x766E4D73;

    vnSnapBuff_mouse() : vnSnapshotBuffer(kTypeTag) {}
    uint8_t* Data() override { return reinterpret_cast<uint8_t*>(fStore.Data()); }
    int Size() override { return static_cast<int>(fStore.Size()); }

    /// Sets the geometry and grows the store if it is too small; the pixels in it stay.
    int Configure(int width, int height, int rowBytes, uint32_t colorSpace) override;

    /// The shape's number, from 1; 0 until it is in the catalogue.
    uint32_t MouseId() const { return fMouseId; }
    void SetMouseId(uint32_t id) { fMouseId = id; }
    zBuffer& Store() { return fStore; }

  private:
    uint32_t fMouseId = 0;
    zBuffer fStore;
};

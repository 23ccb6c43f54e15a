#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <turbojpeg.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>

/// Rows of 32-bit pixels, top row first.
struct BarePixels {
    const uint8_t* first;
    int rowBytes;
};

/// Where a bare loop takes its pixels from.
using BareSource = std::function<BarePixels()>;

/// The least that a picture costs on this machine: grab, flip, encode, with nothing around them. What the
/// server is measured against.
class BareLoop {
  public:
    struct Times {
        double grab = 0; ///< Milliseconds, and so below.
        double flip = 0;
        double encode = 0;
        double Sum() const { return grab + flip + encode; }
    };

    BareLoop(BareSource source, int width, int height, int quality, int subsampling);
    ~BareLoop();
    BareLoop(const BareLoop&) = delete;
    BareLoop& operator=(const BareLoop&) = delete;

    Times Run();
    unsigned long JpegSize() const { return fJpegSize; }

  private:
    BareSource fSource;
    int fWidth;
    int fHeight;
    int fQuality;
    int fSubsampling;
    std::vector<uint8_t> fFlipped;
    tjhandle fCompressor;
    unsigned char* fJpeg;
    unsigned long fJpegSize = 0;
};

/// The root window of an X server through MIT-SHM, with no more than the protocol asks for.
class BareX11 {
  public:
    /// Ends the program when the display can't be used: it is a benchmark.
    explicit BareX11(const char* display);
    ~BareX11();
    BareX11(const BareX11&) = delete;
    BareX11& operator=(const BareX11&) = delete;

    BarePixels Grab() { return Grab(0, 0, fWidth, fHeight); }
    BarePixels Grab(int x, int y, int width, int height);
    int Width() const { return fWidth; }
    int Height() const { return fHeight; }

  private:
    xcb_connection_t* fConnection;
    xcb_window_t fRoot;
    int fWidth;
    int fHeight;
    xcb_shm_seg_t fSegment;
    uint8_t* fPixels;
};

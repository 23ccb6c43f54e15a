#include "BareGrabber.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/ipc.h>
#include <sys/shm.h>

namespace {

constexpr int kBytesPerPixel = 4;

double milliseconds_since(std::chrono::steady_clock::time_point& mark) {
    const auto now = std::chrono::steady_clock::now();
    const double passed = std::chrono::duration<double, std::milli>(now - mark).count();
    mark = now;
    return passed;
}

} // namespace

BareLoop::BareLoop(BareSource source, int width, int height, int quality, int subsampling)
    : fSource(std::move(source)),
      fWidth(width),
      fHeight(height),
      fQuality(quality),
      fSubsampling(subsampling),
      fFlipped(static_cast<size_t>(width) * static_cast<size_t>(height) * kBytesPerPixel),
      fCompressor(tjInitCompress()),
      fJpeg(tjAlloc(static_cast<int>(tjBufSize(width, height, subsampling)))) {}

BareLoop::~BareLoop() {
    tjFree(fJpeg);
    tjDestroy(fCompressor);
}

BareLoop::Times BareLoop::Run() {
    Times times;
    auto mark = std::chrono::steady_clock::now();
    const BarePixels pixels = fSource();
    times.grab = milliseconds_since(mark);
    const size_t rowBytes = static_cast<size_t>(fWidth) * kBytesPerPixel;
    for (int y = 0; y < fHeight; ++y)
        memcpy(fFlipped.data() + static_cast<size_t>(fHeight - 1 - y) * rowBytes,
               pixels.first + static_cast<ptrdiff_t>(y) * pixels.rowBytes, rowBytes);
    times.flip = milliseconds_since(mark);
    fJpegSize = tjBufSize(fWidth, fHeight, fSubsampling);
    tjCompress2(fCompressor, fFlipped.data(), fWidth, 0, fHeight, TJPF_BGRX, &fJpeg, &fJpegSize, fSubsampling,
                fQuality, TJFLAG_NOREALLOC | TJFLAG_ACCURATEDCT);
    times.encode = milliseconds_since(mark);
    return times;
}

BareX11::BareX11(const char* display) : fConnection(xcb_connect(display, nullptr)) {
    if (xcb_connection_has_error(fConnection)) {
        fprintf(stderr, "bench: no X display\n");
        exit(1);
    }
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(fConnection)).data;
    fRoot = screen->root;
    fWidth = screen->width_in_pixels;
    fHeight = screen->height_in_pixels;
    const size_t bytes = static_cast<size_t>(fWidth) * static_cast<size_t>(fHeight) * kBytesPerPixel;
    const int id = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    fPixels = static_cast<uint8_t*>(shmat(id, nullptr, 0));
    fSegment = xcb_generate_id(fConnection);
    free(xcb_request_check(fConnection,
                           xcb_shm_attach_checked(fConnection, fSegment, static_cast<uint32_t>(id), 0)));
    shmctl(id, IPC_RMID, nullptr);
}

BareX11::~BareX11() {
    xcb_disconnect(fConnection);
    shmdt(fPixels);
}

BarePixels BareX11::Grab(int x, int y, int width, int height) {
    const auto cookie = xcb_shm_get_image(
        fConnection, fRoot, static_cast<int16_t>(x), static_cast<int16_t>(y), static_cast<uint16_t>(width),
        static_cast<uint16_t>(height), ~0U, XCB_IMAGE_FORMAT_Z_PIXMAP, fSegment, 0);
    free(xcb_shm_get_image_reply(fConnection, cookie, nullptr));
    return {fPixels, width * kBytesPerPixel};
}

#include "BusyScreen.h"

#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

namespace {

constexpr int kLineHeight = 14;
constexpr int kLetterHeight = 8;
constexpr uint32_t kPaper = 0xFFFFF0;
constexpr uint32_t kInk = 0x202030;

/// Upright strokes in words and lines: as busy as text of ten points.
std::vector<xcb_rectangle_t> strokes(int width, int height, unsigned seed) {
    std::minstd_rand random(seed);
    std::vector<xcb_rectangle_t> all;
    for (int y = 3; y + kLetterHeight < height; y += kLineHeight) {
        for (int x = 4; x < width; x += 3 + static_cast<int>(random() % 4)) {
            if (random() % 6 == 0)
                x += 5; // Between words.
            const auto length = static_cast<uint16_t>(4 + random() % (kLetterHeight - 3));
            all.push_back(
                {static_cast<int16_t>(x), static_cast<int16_t>(y + kLetterHeight - length), 1, length});
        }
    }
    return all;
}

} // namespace

BusyScreen::BusyScreen(const char* display) : fXcb(xcb_connect(display, nullptr)) {
    if (xcb_connection_has_error(fXcb)) {
        fprintf(stderr, "bench: no X display\n");
        exit(1);
    }
    fScreen = xcb_setup_roots_iterator(xcb_get_setup(fXcb)).data;
    fWidth = fScreen->width_in_pixels;
    fHeight = fScreen->height_in_pixels;
    fPen = xcb_generate_id(fXcb);
    const uint32_t noExposures = 0;
    xcb_create_gc(fXcb, fPen, fScreen->root, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
    fPictures[0] = prepare(1);
    fPictures[1] = prepare(2);
    Change(0, 0, fWidth, fHeight);
}

BusyScreen::~BusyScreen() {
    xcb_disconnect(fXcb);
}

void BusyScreen::Change(int x, int y, int width, int height) {
    const auto left = static_cast<int16_t>(x);
    const auto top = static_cast<int16_t>(y);
    xcb_copy_area(fXcb, fPictures[fNext], fScreen->root, fPen, left, top, left, top,
                  static_cast<uint16_t>(width), static_cast<uint16_t>(height));
    fNext = 1 - fNext;
    sync();
}

xcb_pixmap_t BusyScreen::prepare(unsigned seed) {
    const auto width = static_cast<uint16_t>(fWidth);
    const auto height = static_cast<uint16_t>(fHeight);
    const xcb_pixmap_t picture = xcb_generate_id(fXcb);
    xcb_create_pixmap(fXcb, fScreen->root_depth, picture, fScreen->root, width, height);
    const xcb_rectangle_t whole{0, 0, width, height};
    xcb_change_gc(fXcb, fPen, XCB_GC_FOREGROUND, &kPaper);
    xcb_poly_fill_rectangle(fXcb, picture, fPen, 1, &whole);
    xcb_change_gc(fXcb, fPen, XCB_GC_FOREGROUND, &kInk);
    const auto all = strokes(fWidth, fHeight, seed);
    constexpr size_t kAtOnce = 10'000; // A request has a largest length.
    for (size_t at = 0; at < all.size(); at += kAtOnce) {
        const size_t count = std::min(kAtOnce, all.size() - at);
        xcb_poly_fill_rectangle(fXcb, picture, fPen, static_cast<uint32_t>(count), &all[at]);
    }
    return picture;
}

/// A reply comes after everything that was asked for before.
void BusyScreen::sync() {
    free(xcb_get_input_focus_reply(fXcb, xcb_get_input_focus(fXcb), nullptr));
}

#include "XPainter.h"

#include <bit>
#include <cstdlib>

static constexpr int kPointerSize = 32;

XPainter::XPainter(const std::string& display)

    : fDisplay(display),
      fXcb(xcb_connect(display.c_str(), nullptr)),
      fScreen(xcb_setup_roots_iterator(xcb_get_setup(fXcb)).data),
      fPen(xcb_generate_id(fXcb)) {
    const uint32_t drawOverWindows = XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS;
    xcb_create_gc(fXcb, fPen, fScreen->root, XCB_GC_SUBWINDOW_MODE, &drawOverWindows);
}

XPainter::~XPainter() {
    xcb_disconnect(fXcb);
}

void XPainter::Fill(int x, int y, int width, int height, uint32_t colour) {
    Draw(x, y, width, height, colour);
    Sync();
}

void XPainter::Draw(int x, int y, int width, int height, uint32_t colour) {
    const uint32_t value = pixel(colour);
    const xcb_rectangle_t area{static_cast<int16_t>(x), static_cast<int16_t>(y), static_cast<uint16_t>(width),
                               static_cast<uint16_t>(height)};
    xcb_change_gc(fXcb, fPen, XCB_GC_FOREGROUND, &value);
    xcb_poly_fill_rectangle(fXcb, fScreen->root, fPen, 1, &area);
}

std::vector<uint32_t> XPainter::Screenshot(int x, int y, int width, int height) {
    const auto cookie = xcb_get_image(fXcb, XCB_IMAGE_FORMAT_Z_PIXMAP, fScreen->root, static_cast<int16_t>(x),
                                      static_cast<int16_t>(y), static_cast<uint16_t>(width),
                                      static_cast<uint16_t>(height), ~0U);
    xcb_get_image_reply_t* image = xcb_get_image_reply(fXcb, cookie, nullptr);
    std::vector<uint32_t> pixels;
    if (image) {
        const auto* first = reinterpret_cast<const uint32_t*>(xcb_get_image_data(image));
        pixels.assign(first, first + width * height);
        for (uint32_t& pixel : pixels)
            pixel &= 0xFFFFFF;
    }
    std::free(image);
    return pixels;
}

int XPainter::Xrandr(const std::string& arguments) {
    return std::system(("xrandr --display " + fDisplay + " " + arguments).c_str());
}

bool XPainter::SetMode(int width, int height) {
    const std::string w = std::to_string(width);
    const std::string h = std::to_string(height);
    const std::string mode = w + "x" + h;
    Xrandr("--newmode " + mode + " 0 " + w + " 0 0 " + w + " " + h + " 0 0 " + h);
    Xrandr("--addmode screen " + mode + " >/dev/null");
    return Xrandr("--output screen --mode " + mode + " >/dev/null") == 0;
}

bool XPainter::SetMonitor(const std::string& name, const std::string& place) {
    return Xrandr("--setmonitor '" + name + "' " + place + " none") == 0;
}

void XPainter::SetPointer(int extent, int hotX, int hotY, uint32_t colour) {
    const xcb_pixmap_t shape = square(extent, kPointerSize);
    const xcb_cursor_t cursor = xcb_generate_id(fXcb);
    const auto channel = [&](int shift) { return static_cast<uint16_t>((colour >> shift & 0xFF) * 0x101); };
    xcb_create_cursor(fXcb, cursor, shape, shape, channel(16), channel(8), channel(0), 0, 0, 0,
                      static_cast<uint16_t>(hotX), static_cast<uint16_t>(hotY));
    xcb_change_window_attributes(fXcb, fScreen->root, XCB_CW_CURSOR, &cursor);
    xcb_free_pixmap(fXcb, shape);
    Sync();
}

void XPainter::MovePointer(int x, int y) {
    xcb_warp_pointer(fXcb, XCB_NONE, fScreen->root, 0, 0, 0, 0, static_cast<int16_t>(x),
                     static_cast<int16_t>(y));
    Sync();
}

void XPainter::ChangeKeyboardMap() {
    const uint32_t symbols[2] = {0x61, 0x41};
    xcb_change_keyboard_mapping(fXcb, 1, 200, 2, symbols);
    Sync();
}

/// The colour in the bits of the screen's visual, which is its depth's first.
uint32_t XPainter::pixel(uint32_t colour) const {
    for (auto depths = xcb_screen_allowed_depths_iterator(fScreen); depths.rem; xcb_depth_next(&depths)) {
        for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem;
             xcb_visualtype_next(&visuals)) {
            const auto& visual = *visuals.data;
            if (visual.visual_id != fScreen->root_visual)
                continue;
            const auto placed = [](uint32_t value, uint32_t mask) {
                const uint64_t limit = mask >> std::countr_zero(mask);
                return static_cast<uint32_t>((value * limit + 127) / 255) << std::countr_zero(mask);
            };
            return placed(colour >> 16 & 0xFF, visual.red_mask) |
                   placed(colour >> 8 & 0xFF, visual.green_mask) | placed(colour & 0xFF, visual.blue_mask);
        }
    }
    return 0;
}

/// A bitmap of \p size pixels each way with a square of ones in its left top corner.
xcb_pixmap_t XPainter::square(int extent, int size) {
    const xcb_pixmap_t bitmap = xcb_generate_id(fXcb);
    const xcb_gcontext_t pen = xcb_generate_id(fXcb);
    xcb_create_pixmap(fXcb, 1, bitmap, fScreen->root, static_cast<uint16_t>(size),
                      static_cast<uint16_t>(size));
    uint32_t bit = 0;
    xcb_create_gc(fXcb, pen, bitmap, XCB_GC_FOREGROUND, &bit);
    const xcb_rectangle_t all{0, 0, static_cast<uint16_t>(size), static_cast<uint16_t>(size)};
    xcb_poly_fill_rectangle(fXcb, bitmap, pen, 1, &all);
    bit = 1;
    xcb_change_gc(fXcb, pen, XCB_GC_FOREGROUND, &bit);
    const xcb_rectangle_t ones{0, 0, static_cast<uint16_t>(extent), static_cast<uint16_t>(extent)};
    xcb_poly_fill_rectangle(fXcb, bitmap, pen, 1, &ones);
    xcb_free_gc(fXcb, pen);
    return bitmap;
}

/// A reply comes after everything that was asked for before.
void XPainter::Sync() {
    std::free(xcb_get_input_focus_reply(fXcb, xcb_get_input_focus(fXcb), nullptr));
}

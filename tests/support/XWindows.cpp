#include "XWindows.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace {

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, Free>;

constexpr uint32_t kIconicState = 3;

} // namespace

XWindows::XWindows(const std::string& display)
    : fXcb(xcb_connect(display.c_str(), nullptr)),
      fRoot(xcb_setup_roots_iterator(xcb_get_setup(fXcb)).data->root) {}

XWindows::~XWindows() {
    xcb_disconnect(fXcb);
}

xcb_window_t XWindows::Open(int x, int y, int width, int height, int border) {
    const xcb_window_t window = xcb_generate_id(fXcb);
    xcb_create_window(fXcb, XCB_COPY_FROM_PARENT, window, fRoot, static_cast<int16_t>(x),
                      static_cast<int16_t>(y), static_cast<uint16_t>(width), static_cast<uint16_t>(height),
                      static_cast<uint16_t>(border), XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0,
                      nullptr);
    sync();
    return window;
}

void XWindows::Show(xcb_window_t window) {
    xcb_map_window(fXcb, window);
    sync();
}

void XWindows::Close(xcb_window_t window) {
    xcb_destroy_window(fXcb, window);
    sync();
}

void XWindows::Place(xcb_window_t window, int x, int y, int width, int height) {
    const uint32_t values[] = {static_cast<uint32_t>(x), static_cast<uint32_t>(y),
                               static_cast<uint32_t>(width), static_cast<uint32_t>(height)};
    xcb_configure_window(fXcb, window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values);
    sync();
}

void XWindows::Minimise(xcb_window_t window) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = Atom("WM_CHANGE_STATE");
    message.data.data32[0] = kIconicState;
    xcb_send_event(fXcb, false, fRoot,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    sync();
}

void XWindows::FocusKeyboard(xcb_window_t window) {
    xcb_set_input_focus(fXcb, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    sync();
}

void XWindows::SetText(xcb_window_t window, const std::string& property, const std::string& type,
                       const std::string& text) {
    xcb_change_property(fXcb, XCB_PROP_MODE_REPLACE, window, Atom(property), Atom(type), 8,
                        static_cast<uint32_t>(text.size()), text.data());
    sync();
}

void XWindows::SetNumbers(xcb_window_t window, const std::string& property, const std::string& type,
                          const std::vector<uint32_t>& numbers) {
    xcb_change_property(fXcb, XCB_PROP_MODE_REPLACE, window, Atom(property), Atom(type), 32,
                        static_cast<uint32_t>(numbers.size()), numbers.data());
    sync();
}

xcb_window_t XWindows::TopLevel(xcb_window_t window) {
    for (;;) {
        const Reply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(fXcb, xcb_query_tree(fXcb, window), nullptr));
        if (!tree || tree->parent == fRoot)
            return window;
        window = tree->parent;
    }
}

bool XWindows::IsAbove(xcb_window_t upper, xcb_window_t lower) {
    const std::vector<xcb_window_t> stack = children();
    return std::find(stack.begin(), stack.end(), upper) > std::find(stack.begin(), stack.end(), lower);
}

xcb_rectangle_t XWindows::Outline(xcb_window_t topLevel) {
    const Reply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(fXcb, xcb_get_geometry(fXcb, topLevel), nullptr));
    if (!geometry)
        return {};
    const int borders = 2 * geometry->border_width;
    return {geometry->x, geometry->y, static_cast<uint16_t>(geometry->width + borders),
            static_cast<uint16_t>(geometry->height + borders)};
}

xcb_atom_t XWindows::Atom(const std::string& name) {
    const auto cookie = xcb_intern_atom(fXcb, false, static_cast<uint16_t>(name.size()), name.data());
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(fXcb, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_NONE);
}

std::vector<xcb_window_t> XWindows::children() {
    const Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(fXcb, xcb_query_tree(fXcb, fRoot), nullptr));
    if (!tree)
        return {};
    const xcb_window_t* first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

/// A reply comes after everything that was asked for before. Events and errors are nobody's business.
void XWindows::sync() {
    std::free(xcb_get_input_focus_reply(fXcb, xcb_get_input_focus(fXcb), nullptr));
    while (Reply<xcb_generic_event_t>(xcb_poll_for_event(fXcb)))
        ;
}

#include "X11Properties.h"

#include <cstring>

#include <xcb/xcb.h>

#include "X11Reply.h"
#include "X11Text.h"

namespace host {
namespace {

constexpr std::string_view kX11AtomNames[] = {
    "_NET_ACTIVE_WINDOW",
    "_NET_CLIENT_LIST",
    "_NET_CLIENT_LIST_STACKING",
    "_NET_SUPPORTING_WM_CHECK",
    "_NET_WM_NAME",
    "_NET_WM_PID",
    "_NET_WM_WINDOW_TYPE",
    "_NET_WM_WINDOW_TYPE_DESKTOP",
    "_NET_WM_WINDOW_TYPE_DOCK",
    "_NET_WM_WINDOW_TYPE_NOTIFICATION",
    "_NET_WM_WINDOW_TYPE_DND",
    "_NET_FRAME_EXTENTS",
    "_GTK_FRAME_EXTENTS",
    "_GTK_APPLICATION_ID",
    "_KDE_NET_WM_DESKTOP_FILE",
    "WM_CLIENT_LEADER",
    "WM_CLASS",
    "WM_CLIENT_MACHINE",
    "WM_HINTS",
    "WM_NAME",
};
static_assert(std::size(kX11AtomNames) == static_cast<size_t>(X11Atom::kCount));

/// How much of a property is read, in units of four bytes: a list of 4096 windows.
constexpr uint32_t kMaximumLength = 4096;

/// How much of a text is used, in bytes.
constexpr size_t kMaximumText = 1024;

using Reply = X11Reply<xcb_get_property_reply_t>;

/// Null without an answer and without such a property.
Reply reply_to(xcb_connection_t* xcb, X11Properties::Question question) {
    Reply reply(xcb_get_property_reply(xcb, {question.sequence}, nullptr));
    return reply && reply->type != XCB_NONE ? std::move(reply) : nullptr;
}

/// Cuts a text that is too long, in front of a character.
void limit(std::string& text) {
    if (text.size() <= kMaximumText)
        return;
    size_t end = kMaximumText;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    text.resize(end);
}

} // namespace

X11Properties::X11Properties(const X11Connection& connection) : fXcb(connection.Xcb()) {
    std::array<xcb_intern_atom_cookie_t, static_cast<size_t>(X11Atom::kCount)> cookies;
    for (size_t i = 0; i < cookies.size(); ++i)
        cookies[i] = xcb_intern_atom(fXcb, false, static_cast<uint16_t>(kX11AtomNames[i].size()),
                                     kX11AtomNames[i].data());
    for (size_t i = 0; i < cookies.size(); ++i) {
        const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(fXcb, cookies[i], nullptr));
        fAtoms[i] = reply ? reply->atom : 0;
    }
}

X11Properties::Question X11Properties::Ask(uint32_t window, X11Atom name) const {
    return {xcb_get_property(fXcb, false, window, Atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, kMaximumLength)
                .sequence};
}

std::optional<std::string> X11Properties::Bytes(Question question) const {
    const Reply reply = reply_to(fXcb, question);
    if (!reply || reply->format != 8)
        return std::nullopt;
    return std::string(static_cast<const char*>(xcb_get_property_value(reply.get())),
                       static_cast<size_t>(xcb_get_property_value_length(reply.get())));
}

std::optional<std::string> X11Properties::Text(Question question) const {
    const std::optional<std::string> bytes = Bytes(question);
    if (!bytes)
        return std::nullopt;
    std::string text = TextFromX11(*bytes);
    limit(text);
    return text;
}

std::optional<std::vector<uint32_t>> X11Properties::Numbers(Question question) const {
    const Reply reply = reply_to(fXcb, question);
    if (!reply || reply->format != 32)
        return std::nullopt;
    std::vector<uint32_t> numbers(reply->value_len);
    if (!numbers.empty())
        std::memcpy(numbers.data(), xcb_get_property_value(reply.get()), numbers.size() * 4);
    return numbers;
}

uint32_t X11Properties::Number(Question question, size_t index) const {
    const auto numbers = Numbers(question);
    return numbers && index < numbers->size() ? (*numbers)[index] : 0;
}

} // namespace host

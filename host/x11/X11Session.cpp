#include "X11Session.h"

#include <utility>

#include <xcb/xcb.h>

#include "X11Reply.h"

namespace host {

std::shared_ptr<X11Session> X11Session::Open(const std::string& displayName, X11Transport transport,
                                             std::string& whyNot) {
    auto connection = X11Connection::Open(displayName.c_str(), whyNot);
    if (!connection)
        return nullptr;
    return std::shared_ptr<X11Session>(new X11Session(std::move(connection), transport));
}

X11Session::X11Session(std::unique_ptr<X11Connection> connection, X11Transport transport)
    : fConnection(std::move(connection)), fScreen(*fConnection, transport), fWindows(*fConnection) {}

bool X11Session::IsAnswered() const {
    xcb_connection_t* xcb = fConnection->Xcb();
    const auto cookie = xcb_get_input_focus(xcb); // Anything that has an answer.
    return X11Reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus_reply(xcb, cookie, nullptr)) != nullptr;
}

} // namespace host

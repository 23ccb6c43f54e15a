#include "BuiltinWindowServer.h"

#include "BuiltinWindow.h"

namespace host {
namespace {

/// Ids count from 1, in the order of the windows.
const BuiltinWindow* window_of(WindowId id) {
    return id >= 1 && id <= kBuiltinWindows.size() ? &kBuiltinWindows[id - 1] : nullptr;
}

/// An application's second number is its window's id.
const BuiltinWindow* window_of(const ProcessSerialNumber& process) {
    return process.high == 0 ? window_of(static_cast<WindowId>(process.low)) : nullptr;
}

} // namespace

int BuiltinWindowServer::NextProcess(ProcessSerialNumber& process) {
    if (process != ProcessSerialNumber{} && !window_of(process))
        return -1;
    const ProcessSerialNumber next{0, process.low + 1};
    if (!window_of(next))
        return -1;
    process = next;
    return 0;
}

int BuiltinWindowServer::FrontProcess(ProcessSerialNumber& process) {
    process = fFront;
    return 0;
}

int BuiltinWindowServer::SetFrontProcess(const ProcessSerialNumber& process) {
    if (!window_of(process))
        return -1;
    fFront = process;
    return 0;
}

int BuiltinWindowServer::ProcessInformation(const ProcessSerialNumber& process, ProcessInfo& info) {
    const BuiltinWindow* window = window_of(process);
    if (!window)
        return -1;
    info = {window->application, window->identifier};
    return 0;
}

int BuiltinWindowServer::OnScreenWindowList(const ProcessSerialNumber& process,
                                            std::vector<WindowId>& windows) {
    if (!window_of(process))
        return -1;
    windows = {static_cast<WindowId>(process.low)};
    return 0;
}

int BuiltinWindowServer::WindowTitle(WindowId id, std::string& title) {
    const BuiltinWindow* window = window_of(id);
    if (!window)
        return -1;
    title = window->title;
    return 0;
}

int BuiltinWindowServer::ScreenRectForWindow(WindowId id, Rect& rect) {
    const BuiltinWindow* window = window_of(id);
    if (!window)
        return -1;
    const PixelRect place = window->Place(fClock.MicrosecondsSinceBoot());
    rect = {static_cast<double>(place.x), static_cast<double>(place.y), static_cast<double>(place.width),
            static_cast<double>(place.height)};
    return 0;
}

} // namespace host

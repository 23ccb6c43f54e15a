#include "vnRegionSelector.h"

#include <algorithm>
#include <utility>

#include "Host.h"
#include "vnLog.h"
#include "vnUserInterface.h"

namespace {

constexpr int kFadeTicks = 30;        // Of a whole fade.
constexpr int kFadeMilliseconds = 16; // Of a tick: about a sixtieth of a second.

void log_rect(const char* what, const host::Rect& rect) {
    vnLog("%s - {{%g, %g}, {%g, %g}}\n", what, rect.x, rect.y, rect.width, rect.height);
}

} // namespace

vnRegionSelector::vnRegionSelector(vnUserInterface& interface, std::string message)
    : fInterface(interface), fSelectScreenRegionMessage(std::move(message)) {}

vnRegionSelector::~vnRegionSelector() {
    stop_fade();
}

void vnRegionSelector::SetSelection(const host::Rect& selection) {
    log_rect("setSelection", selection);
    _selection = selection;
    if (_view.IsInWindow())
        _view.SetSelection({selection.x - frame().x, selection.y, selection.width, selection.height});
}

host::Rect vnRegionSelector::Selection() const {
    host::Rect selection = _view.Selection();
    selection.x += frame().x;
    log_rect("selection", selection);
    return selection;
}

void vnRegionSelector::Show() {
    stop_fade();
    _view.SetWindow(nullptr);
    _overlayWindow.reset();
    _view.SetSize(frame().width, frame().height);
    fFade = 0;
    fIsEditing = true;
    _overlayWindow = fInterface.NewRegionSelectorWindow(_view);
    _view.SetWindow(_overlayWindow.get());
    _view.SetSelection({_selection.x - frame().x, _selection.y, _selection.width, _selection.height});
    _overlayWindow->SetAlpha(0);
    _overlayWindow->Open(frame());
    start_fade(+1);
}

void vnRegionSelector::Hide() {
    if (!_overlayWindow)
        return;
    fFade = kFadeTicks;
    start_fade(-1);
}

void vnRegionSelector::editingDone(bool cancelled) {
    if (!std::exchange(fIsEditing, false)) // It fades out already.
        return;
    fSelectionWasCancelled = cancelled;
    Hide();
    if (_delegate)
        _delegate->selectionComplete(cancelled ? host::Rect{} : Selection());
}

void vnRegionSelector::start_fade(int step) {
    stop_fade();
    fTimer = host::Host::Current().RunLoopPort().AddTimer(kFadeMilliseconds,
                                                          [this, step] { run_animation_step(step); });
}

void vnRegionSelector::stop_fade() {
    if (fTimer != 0)
        host::Host::Current().RunLoopPort().RemoveTimer(std::exchange(fTimer, 0));
}

void vnRegionSelector::run_animation_step(int step) {
    fFade = std::clamp(fFade + step, 0, kFadeTicks);
    if (fFade == 0) {
        stop_fade();
        _view.SetWindow(nullptr);
        _overlayWindow.reset();
        return;
    }
    _overlayWindow->SetAlpha(static_cast<double>(fFade) / kFadeTicks);
    if (fFade == kFadeTicks)
        stop_fade();
}

#include "vnScreenDiffs_cg.h"

#include "Host.h"

static constexpr host::DisplayId kMainDisplay = 0;

bool vnScreenDiffs_cg::CanDoDiffs() {
    return !host::Host::Current().DisplaysPort().IsCaptured(kMainDisplay);
}

void vnScreenDiffs_cg::Start() {
    host::Host::Current().DisplaysPort().RegisterRefreshListener(*this);
}

void vnScreenDiffs_cg::Stop() {
    host::Host::Current().DisplaysPort().UnregisterRefreshListener(*this);
}

void vnScreenDiffs_cg::ScreenRefreshed(std::span<const host::Rect> areas) {
    for (const host::Rect& area : areas)
        add_rect(zRect::FromOriginAndSize(area.x, area.y, area.width, area.height), false);
}

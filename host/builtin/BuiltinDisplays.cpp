#include "BuiltinDisplays.h"

#include "Host.h"
#include "PictureFramebuffer.h"

namespace host {
namespace {

constexpr std::array<PixelRect, 2> kPlaces{{{0, 0, 1280, 720}, {1280, 0, 1024, 768}}};
constexpr PixelRect kDesktop{0, 0, 1280 + 1024, 768};
constexpr int kRowBytes = kDesktop.width * 4;
constexpr int kReportPeriod = 16; // Milliseconds: nearly 60 times a second, like a screen.

/// The ids count from 1, in the order of the places.
const PixelRect* place_of(DisplayId id) {
    return id >= 1 && id <= kPlaces.size() ? &kPlaces[id - 1] : nullptr;
}

TestCard card(std::vector<uint8_t>& desktop, DisplayId id) {
    const PixelPen whole(desktop.data(), kDesktop.width, kDesktop.height, kRowBytes);
    return TestCard(whole.Part(*place_of(id)), static_cast<int>(id));
}

BuiltinWindowPainter painter(std::vector<uint8_t>& desktop, size_t index) {
    return BuiltinWindowPainter(kBuiltinWindows[index], desktop.data(), kDesktop, kRowBytes);
}

Rect rect_of(const PixelRect& area) {
    return {static_cast<double>(area.x), static_cast<double>(area.y), static_cast<double>(area.width),
            static_cast<double>(area.height)};
}

} // namespace

BuiltinDisplays::BuiltinDisplays(Clock& clock)
    : fClock(clock),
      fDesktop(kDesktop.Bytes()),
      fCards{card(fDesktop, 1), card(fDesktop, 2)},
      fWindows{painter(fDesktop, 0), painter(fDesktop, 1)} {}

BuiltinDisplays::~BuiltinDisplays() {
    if (fTimer)
        fLoop->RemoveTimer(fTimer);
}

int BuiltinDisplays::ActiveDisplays(std::vector<DisplayId>& ids) {
    ids = {1, 2};
    return 0;
}

DisplayId BuiltinDisplays::MainDisplay() {
    return 1;
}

Rect BuiltinDisplays::Bounds(DisplayId id) {
    const PixelRect* place = place_of(id);
    return place ? rect_of(*place) : Rect{};
}

std::string BuiltinDisplays::ProductName(DisplayId id) {
    return place_of(id) ? "Test Card " + std::to_string(id) : "";
}

int BuiltinDisplays::Picture(const Rect& area, Image& image) {
    PixelRect wanted;
    if (TruncateToPixels(area, wanted) != 0)
        return -1;
    const int64_t now = fClock.MicrosecondsSinceBoot();
    for (size_t i = 0; i < fCards.size(); ++i) {
        PixelRect shown = wanted.Intersection(kPlaces[i]);
        shown.x -= kPlaces[i].x;
        shown.y -= kPlaces[i].y;
        fCards[i].Update(now, shown);
    }
    for (BuiltinWindowPainter& window : fWindows)
        window.Update(now, wanted);
    const PixelRect visible = wanted.Intersection(kDesktop);
    image = visible == wanted ? view(wanted) : fComposed.Compose(wanted, visible, view(visible));
    return 0;
}

std::unique_ptr<Framebuffer> BuiltinDisplays::OpenFramebuffer(DisplayId id) {
    return place_of(id) ? std::make_unique<PictureFramebuffer>(*this, Bounds(id)) : nullptr;
}

void BuiltinDisplays::RegisterRefreshListener(RefreshListener& listener) {
    fListeners.push_back(&listener);
    if (fTimer)
        return;
    fReported = fClock.MicrosecondsSinceBoot();
    fLoop = &Host::Current().RunLoopPort();
    fTimer = fLoop->AddTimer(kReportPeriod, [this] { report_changes(); });
}

void BuiltinDisplays::UnregisterRefreshListener(RefreshListener& listener) {
    std::erase(fListeners, &listener);
    if (!fListeners.empty() || !fTimer)
        return;
    fLoop->RemoveTimer(fTimer);
    fTimer = 0;
}

void BuiltinDisplays::report_changes() {
    const int64_t now = fClock.MicrosecondsSinceBoot();
    std::vector<Rect> areas;
    for (size_t i = 0; i < fCards.size(); ++i) {
        for (const PixelRect& area : fCards[i].ChangedAreas(fReported, now))
            areas.push_back(rect_of({kPlaces[i].x + area.x, kPlaces[i].y + area.y, area.width, area.height}));
    }
    for (const BuiltinWindow& window : kBuiltinWindows) {
        if (now != fReported)
            areas.push_back(rect_of(window.ChangedArea(fReported, now)));
    }
    fReported = now;
    if (areas.empty())
        return;
    for (RefreshListener* listener : fListeners)
        listener->ScreenRefreshed(areas);
}

Image BuiltinDisplays::view(const PixelRect& area) const {
    if (area.IsEmpty())
        return {};
    const size_t offset = static_cast<size_t>(area.y) * kRowBytes + static_cast<size_t>(area.x) * 4;
    return {fDesktop.data() + offset, area.width, area.height, kRowBytes};
}

} // namespace host

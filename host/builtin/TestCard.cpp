#include "TestCard.h"

#include <cstdio>

namespace host {
namespace {

constexpr uint32_t kBlack = 0x000000;
constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kRed = 0xE03030;
constexpr uint32_t kGreen = 0x30B040;
constexpr uint32_t kBlue = 0x3060E0;
constexpr uint32_t kYellow = 0xE8C020;
constexpr uint32_t kGround = 0x2B2F36;
constexpr uint32_t kGridLine = 0x565C66;
constexpr uint32_t kTrack = 0x101418;

/// Full-strength bars in the order of falling brightness.
constexpr uint32_t kBars[] = {0xFFFFFF, 0xFFFF00, 0x00FFFF, 0x00FF00, 0xFF00FF, 0xFF0000, 0x0000FF, 0x000000};
constexpr int kBarCount = 8;
constexpr int kGreySteps = 11;
constexpr int kPatterns = 6;

// Places in half units, from the top of the card.
constexpr int kUnits = 18;
constexpr int kPanelUnits = 13; ///< The panel's width; it fits into the circle.
constexpr int kTitleRow = 8;
constexpr int kBarsRow = 11;
constexpr int kRampRow = 17;
constexpr int kStepsRow = 19;
constexpr int kPatternsRow = 21;
constexpr int kFlashRow = 24;
constexpr int kClockRow = 25;
constexpr int kPanelEnd = 28;
constexpr int kTrackRow = 31;
constexpr int kTrackEnd = 33;

constexpr int64_t kSecond = 1'000'000;
constexpr int64_t kFramesPerSecond = 60;
constexpr int64_t kLap = 4 * kSecond; ///< The block's time from the left to the right end.

uint32_t grey(int level) {
    return static_cast<uint32_t>(level) * 0x010101;
}

} // namespace

TestCard::TestCard(const PixelPen& pen, int number) : fPen(pen), fUnit(pen.Height() / kUnits) {
    fPen.Fill({0, 0, fPen.Width(), fPen.Height()}, kGround);
    paint_grid();
    paint_edges();
    paint_corners();
    paint_labels();
    paint_panel(number);
    Update(0, {0, 0, fPen.Width(), fPen.Height()});
}

void TestCard::Update(int64_t microseconds, const PixelRect& area) {
    if (!area.Intersection(ClockArea()).IsEmpty())
        paint_clock(microseconds);
    if (!area.Intersection(TrackArea()).IsEmpty())
        paint_track(microseconds);
    if (!area.Intersection(FlashArea()).IsEmpty())
        paint_flash(microseconds);
}

std::vector<PixelRect> TestCard::ChangedAreas(int64_t before, int64_t after) const {
    std::vector<PixelRect> areas;
    if (before != after)
        areas = {ClockArea(), TrackArea()};
    if (IsFlashing(before) != IsFlashing(after))
        areas.push_back(FlashArea());
    return areas;
}

bool TestCard::IsFlashing(int64_t microseconds) {
    return microseconds % kSecond < kFlash;
}

PixelRect TestCard::ClockArea() const {
    return panel(kClockRow, kPanelEnd);
}

PixelRect TestCard::TrackArea() const {
    return {fUnit, kTrackRow * fUnit / 2, fPen.Width() - 2 * fUnit, (kTrackEnd - kTrackRow) * fUnit / 2};
}

PixelRect TestCard::FlashArea() const {
    return {3 * fUnit / 2, kFlashRow * fUnit / 2, 2 * fUnit, 2 * fUnit};
}

PixelRect TestCard::panel(int rowStart, int rowEnd) const {
    const int width = kPanelUnits * fUnit;
    return {(fPen.Width() - width) / 2, rowStart * fUnit / 2, width, (rowEnd - rowStart) * fUnit / 2};
}

/// Squares that meet in the centre, and the circle that shows whether they are squares.
void TestCard::paint_grid() {
    const int centreX = fPen.Width() / 2;
    const int centreY = fPen.Height() / 2;
    for (int x = centreX % fUnit; x < fPen.Width(); x += fUnit)
        fPen.Fill({x, 0, 1, fPen.Height()}, kGridLine);
    for (int y = centreY % fUnit; y < fPen.Height(); y += fUnit)
        fPen.Fill({0, y, fPen.Width(), 1}, kGridLine);
    fPen.Ring(centreX, centreY, 8.5 * fUnit, 3, kWhite);
}

/// Battlements along all edges and a line of one pixel around them: what is cut off shows at once.
void TestCard::paint_edges() {
    const int depth = fUnit / 3;
    const int width = fPen.Width();
    const int height = fPen.Height();
    for (int x = 0; x < width; x += fUnit) {
        const uint32_t colour = x / fUnit % 2 ? kWhite : kBlack;
        fPen.Fill({x, 0, fUnit, depth}, colour);
        fPen.Fill({x, height - depth, fUnit, depth}, colour);
    }
    for (int y = 0; y < height; y += fUnit) {
        const uint32_t colour = y / fUnit % 2 ? kWhite : kBlack;
        fPen.Fill({0, y, depth, fUnit}, colour);
        fPen.Fill({width - depth, y, depth, fUnit}, colour);
    }
    fPen.Frame({0, 0, width, height}, 1, kWhite);
}

void TestCard::paint_corners() {
    const int length = 2 * fUnit;
    const int thickness = fUnit / 2;
    const int right = fPen.Width();
    const int bottom = fPen.Height();
    const auto mark = [&](int x, int y, int inwardX, int inwardY, uint32_t colour) {
        fPen.Fill({x - inwardX * length, y - inwardY * thickness, length, thickness}, colour);
        fPen.Fill({x - inwardX * thickness, y - inwardY * length, thickness, length}, colour);
    };
    mark(0, 0, 0, 0, kRed);
    mark(right, 0, 1, 0, kGreen);
    mark(0, bottom, 0, 1, kBlue);
    mark(right, bottom, 1, 1, kYellow);
}

void TestCard::paint_labels() {
    const int middle = fPen.Height() / 2 - fUnit / 2;
    const int side = (fPen.Width() / 2 - 9 * fUnit);
    paint_centred("LEFT", {fUnit / 2, middle, side, fUnit}, kWhite);
    paint_centred("RIGHT", {fPen.Width() - fUnit / 2 - side, middle, side, fUnit}, kWhite);

    // An arrow that points up, with its word under it.
    const int centre = fPen.Width() / 2;
    for (int row = 0; row < fUnit; ++row)
        fPen.Fill({centre - row, fUnit + row, 2 * row + 1, 1}, kWhite);
    paint_centred("TOP", {centre - 2 * fUnit, 2 * fUnit + fUnit / 4, 4 * fUnit, fUnit}, kWhite);
}

void TestCard::paint_panel(int number) {
    fPen.Fill(panel(kTitleRow, kPanelEnd), kBlack);
    paint_centred("GLASSPANE DISPLAY " + std::to_string(number), panel(kTitleRow, kBarsRow), kWhite);
    paint_colour_bars(panel(kBarsRow, kRampRow));
    paint_grey_ramp(panel(kRampRow, kStepsRow));
    paint_grey_steps(panel(kStepsRow, kPatternsRow));
    paint_fine_patterns(panel(kPatternsRow, kClockRow));
}

void TestCard::paint_colour_bars(const PixelRect& area) {
    for (int i = 0; i < kBarCount; ++i) {
        const int left = area.width * i / kBarCount;
        const int right = area.width * (i + 1) / kBarCount;
        fPen.Fill({area.x + left, area.y, right - left, area.height}, kBars[i]);
    }
}

void TestCard::paint_grey_ramp(const PixelRect& area) {
    for (int x = 0; x < area.width; ++x)
        fPen.Fill({area.x + x, area.y, 1, area.height}, grey(x * 255 / (area.width - 1)));
}

void TestCard::paint_grey_steps(const PixelRect& area) {
    for (int i = 0; i < kGreySteps; ++i) {
        const int left = area.width * i / kGreySteps;
        const int right = area.width * (i + 1) / kGreySteps;
        fPen.Fill({area.x + left, area.y, right - left, area.height}, grey(i * 255 / (kGreySteps - 1)));
    }
}

/// Lines of 1, 2 and 3 pixels across and of 1 and 2 along, and a chequerboard: what scaling and colour
/// subsampling spoil first.
void TestCard::paint_fine_patterns(const PixelRect& area) {
    const int periods[kPatterns][2] = {{2, 0}, {4, 0}, {6, 0}, {0, 2}, {0, 4}, {2, 2}};
    for (int i = 0; i < kPatterns; ++i) {
        const int left = area.width * i / kPatterns;
        const int right = area.width * (i + 1) / kPatterns;
        paint_stripes({area.x + left + 2, area.y + 2, right - left - 4, area.height - 4}, periods[i][0],
                      periods[i][1]);
    }
}

/// White in the first half of each period; 0 means no change in that direction.
void TestCard::paint_stripes(const PixelRect& area, int columnPeriod, int rowPeriod) {
    for (int y = 0; y < area.height; ++y) {
        for (int x = 0; x < area.width; ++x) {
            const bool column = columnPeriod && x % columnPeriod >= columnPeriod / 2;
            const bool row = rowPeriod && y % rowPeriod >= rowPeriod / 2;
            fPen.Fill({area.x + x, area.y + y, 1, 1}, column == row ? kWhite : kBlack);
        }
    }
}

void TestCard::paint_centred(const std::string& text, const PixelRect& area, uint32_t colour) {
    const int scale = std::max(fUnit / 10, 1);
    const PixelRect bounds = PixelPen::TextBounds(text, 0, 0, scale);
    fPen.Text(text, area.x + (area.width - bounds.width) / 2, area.y + (area.height - bounds.height) / 2,
              scale, colour);
}

void TestCard::paint_clock(int64_t microseconds) {
    const int64_t seconds = microseconds / kSecond;
    char text[64];
    std::snprintf(
        text, sizeof text, "%02d:%02d:%02d.%03d %07d", static_cast<int>(seconds / 3600 % 100),
        static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60),
        static_cast<int>(microseconds / 1000 % 1000),
        static_cast<int>((seconds * kFramesPerSecond + microseconds % kSecond * kFramesPerSecond / kSecond) %
                         10'000'000));
    fPen.Fill(ClockArea(), kBlack);
    paint_centred(text, ClockArea(), kYellow);
}

/// The block crosses the card from left to right; the track's ticks divide the lap into tenths.
void TestCard::paint_track(int64_t microseconds) {
    const PixelRect track = TrackArea();
    const int blockWidth = 2 * fUnit;
    const int travel = track.width - blockWidth;
    const int place = static_cast<int>(microseconds % kLap * travel / kLap);
    fPen.Fill(track, kTrack);
    for (int tick = 0; tick <= 10; ++tick)
        fPen.Fill({track.x + blockWidth / 2 + travel * tick / 10, track.y, 1, track.height}, kGridLine);
    fPen.Fill({track.x + place, track.y, blockWidth, track.height}, kYellow);
    fPen.Fill({track.x + place + blockWidth / 2, track.y, 1, track.height}, kBlack);
}

void TestCard::paint_flash(int64_t microseconds) {
    fPen.Fill(FlashArea(), IsFlashing(microseconds) ? kWhite : kBlack);
}

} // namespace host

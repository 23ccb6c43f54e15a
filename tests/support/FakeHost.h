#pragma once

#include <map>
#include <vector>

#include "Host.h"
#include "JpegExporter.h"

/// A machine that a test scripts: displays whose every pixel tells its own place, a pointer, a clock that the
/// test sets. JPEGs are real.
class FakeHost : public host::Host,
                 private host::Displays,
                 private host::Pointer,
                 private host::Clock,
                 private host::RunLoop {
  public:
    // What the test sets.
    std::vector<host::Rect> displays{{0, 0, 64, 48}};
    int pictureResult = 0;
    int scale = 1; ///< Pixels of a picture for one of the rectangle, each way.
    bool pointerVisible = true;
    host::Point pointerLocation{20, 10};
    host::Point hotSpot{2, 1};
    int pointerWidth = 4;
    int pointerHeight = 3;
    std::vector<uint8_t> pointerPixels = std::vector<uint8_t>(4 * 3 * 4, 7);
    uint32_t systemVersion = 0x1080;
    int64_t microseconds = 0;
    bool captured = false; ///< Nobody hears what changes.

    // What the test counts.
    int pictures = 0; ///< Reads of a framebuffer among them.
    int openFramebuffers = 0;
    std::vector<host::RefreshListener*> refreshListeners;
    std::vector<host::DisplaysListener*> displaysListeners;

    /// The bytes b, g and r at a place of the desktop, bottom to top bits; the fourth byte is garbage on
    /// purpose.
    static uint32_t PixelAt(int x, int y) {
        return static_cast<uint32_t>(x & 0xFF) | static_cast<uint32_t>(y & 0xFF) << 8 |
               static_cast<uint32_t>((x + y) & 0xFF) << 16 | 0x55000000U;
    }

    /// Tells whoever listens that these areas were drawn.
    void Refresh(const std::vector<host::Rect>& areas) {
        for (host::RefreshListener* listener : refreshListeners)
            listener->ScreenRefreshed(areas);
    }

    /// Gives the displays other places, and says so to whoever listens.
    void ChangeDisplays(std::vector<host::Rect> places) {
        displays = std::move(places);
        for (host::DisplaysListener* listener : displaysListeners)
            listener->DisplaysChanged();
    }

    const char* Name() const override { return "fake"; }
    uint32_t SystemVersion() const override { return systemVersion; }
    host::Displays& DisplaysPort() override { return *this; }
    host::Pointer& PointerPort() override { return *this; }
    host::Clock& ClockPort() override { return *this; }
    host::RunLoop& RunLoopPort() override { return *this; }
    std::unique_ptr<host::PictureExporter> NewPictureExporter(int width, int height, int rowBytes) override {
        return host::NewJpegExporter(width, height, rowBytes);
    }
    std::unique_ptr<host::PictureBlock> NewPictureBlock() override { return host::NewJpegBlock(); }

  private:
    class FakeFramebuffer : public host::Framebuffer {
      public:
        FakeFramebuffer(FakeHost& machine, const host::Rect& place) : fMachine(machine), fPlace(place) {}
        ~FakeFramebuffer() override { --fMachine.openFramebuffers; }
        int Read(int x, int y, int width, int height, void* pixels) override {
            ++fMachine.pictures;
            for (int row = 0; row < height; ++row) {
                for (int column = 0; column < width; ++column)
                    static_cast<uint32_t*>(pixels)[row * width + column] =
                        PixelAt(static_cast<int>(fPlace.x) + x + column,
                                static_cast<int>(fPlace.y + fPlace.height) - 1 - y - row) |
                        0xFF000000U;
            }
            return fMachine.pictureResult;
        }

      private:
        FakeHost& fMachine;
        host::Rect fPlace;
    };

    int ActiveDisplays(std::vector<host::DisplayId>& ids) override {
        for (size_t i = 0; i < displays.size(); ++i)
            ids.push_back(static_cast<host::DisplayId>(i + 1));
        return 0;
    }
    host::DisplayId MainDisplay() override { return 1; }
    host::Rect Bounds(host::DisplayId id) override {
        return id >= 1 && id <= displays.size() ? displays[id - 1] : host::Rect{};
    }
    std::string ProductName(host::DisplayId) override { return ""; }
    int Picture(const host::Rect& area, host::Image& image) override {
        ++pictures;
        if (pictureResult != 0 || area.width < 1 || area.height < 1)
            return -1;
        image.width = static_cast<int>(area.width) * scale;
        image.height = static_cast<int>(area.height) * scale;
        image.rowBytes = image.width * 4 + 16;
        fPixels.assign(static_cast<size_t>(image.rowBytes / 4) * static_cast<size_t>(image.height), 0);
        for (int y = 0; y < image.height; ++y) {
            for (int x = 0; x < image.width; ++x)
                fPixels[static_cast<size_t>(y) * static_cast<size_t>(image.rowBytes / 4) +
                        static_cast<size_t>(x)] =
                    PixelAt(static_cast<int>(area.x) + x / scale, static_cast<int>(area.y) + y / scale);
        }
        image.pixels = reinterpret_cast<const uint8_t*>(fPixels.data());
        return 0;
    }

    std::unique_ptr<host::Framebuffer> OpenFramebuffer(host::DisplayId id) override {
        if (id < 1 || id > displays.size())
            return nullptr;
        ++openFramebuffers;
        return std::make_unique<FakeFramebuffer>(*this, displays[id - 1]);
    }
    void RegisterRefreshListener(host::RefreshListener& listener) override {
        refreshListeners.push_back(&listener);
    }
    void UnregisterRefreshListener(host::RefreshListener& listener) override {
        std::erase(refreshListeners, &listener);
    }
    void RegisterDisplaysListener(host::DisplaysListener& listener) override {
        displaysListeners.push_back(&listener);
    }
    void UnregisterDisplaysListener(host::DisplaysListener& listener) override {
        std::erase(displaysListeners, &listener);
    }
    bool IsCaptured(host::DisplayId) override { return captured; }

    bool IsVisible() override { return pointerVisible; }
    bool IsDrawnInFramebuffer() override { return false; }
    int Location(host::Point& location) override {
        location = pointerLocation;
        return 0;
    }
    uint32_t Seed() override { return 1; }
    int Picture(host::PointerPicture& picture) override {
        picture = {pointerPixels.data(), pointerWidth, pointerHeight, hotSpot};
        return 0;
    }

    int64_t MicrosecondsSinceBoot() override { return microseconds; }

    void Run() override {}
    void Stop() override {}
    void AddDescriptor(int, std::function<void()>) override {}
    void RemoveDescriptor(int) override {}
    int AddTimer(int, std::function<void()>) override { return 1; }
    void RemoveTimer(int) override {}
    bool PerformOnMainThread(const std::function<void()>& work) override {
        work();
        return true;
    }
    void RefuseWork() override {}

    std::vector<uint32_t> fPixels;
};

// A whole Snapshot over a real socket, beside a bare loop of grab, flip and encode in the same run. The two
// take turns, so that both see the same noise. Round trips follow each other as a stream's do.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

#include "Allocations.h"
#include "BareGrabber.h"
#include "BenchClient.h"
#include "HostLoader.h"
#include "cHttpServer.h"
#include "vnController.h"
#include "vnUserInterface.h"
#include "zBoot.h"

namespace {

constexpr int kBatch = 20;
constexpr int kBatches = 15;
constexpr int kJpegQuality = 80; // What the service's "normal" means: docs/quality.md.
constexpr int kSubsampling = TJSAMP_420;

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<ptrdiff_t>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

long resident_kilobytes() {
    long pages = 0;
    if (FILE* file = fopen("/proc/self/statm", "r")) {
        if (fscanf(file, "%*d %ld", &pages) != 1)
            pages = 0;
        fclose(file);
    }
    return pages * (sysconf(_SC_PAGESIZE) / 1024);
}

/// The medians that one run prints, gathered in turns.
struct Samples {
    std::vector<double> trips;
    std::vector<double> sums;
    std::vector<double> grabs;
    std::vector<double> flips;
    std::vector<double> encodes;
    int64_t allocations = 0;
    size_t replyBytes = 0;
};

void stream(BenchClient& client, Samples& samples) {
    static const std::string kRequest = BenchClient::Request("Snapshot");
    const int64_t before = AllocationCount();
    for (int i = 0; i < kBatch; ++i) {
        const auto start = std::chrono::steady_clock::now();
        samples.replyBytes = client.RoundTrip(kRequest).size();
        const std::chrono::duration<double, std::milli> trip = std::chrono::steady_clock::now() - start;
        samples.trips.push_back(trip.count());
    }
    samples.allocations += AllocationCount() - before;
}

void loop_bare(BareLoop& bare, Samples& samples) {
    bare.Run(); // The server's worker may still be busy with the frame after the last one.
    for (int i = 0; i < kBatch; ++i) {
        const BareLoop::Times times = bare.Run();
        samples.sums.push_back(times.Sum());
        samples.grabs.push_back(times.grab);
        samples.flips.push_back(times.flip);
        samples.encodes.push_back(times.encode);
    }
}

void measure(const char* title, BareLoop& bare, int width, int height) {
    vnUserInterface interface;
    vnController controller(interface, {.port = 0, .bindAddress = "127.0.0.1"});
    controller.applicationDidFinishLaunching();
    controller.Server()->WaitUntilListening();
    BenchClient client(controller.Server()->Port());
    Samples warmUp;
    stream(client, warmUp);

    Samples samples;
    samples.trips.reserve(kBatch * kBatches);
    for (int batch = 0; batch < kBatches; ++batch) {
        stream(client, samples);
        loop_bare(bare, samples);
    }
    const double bareSum = median(samples.sums);
    const double trip = median(samples.trips);
    printf("%s, %d x %d, medians of %d\n", title, width, height, kBatch * kBatches);
    printf("  bare loop   %7.3f ms = grab %.3f + flip %.3f + encode %.3f (%lu bytes)\n", bareSum,
           median(samples.grabs), median(samples.flips), median(samples.encodes), bare.JpegSize());
    printf("  round trip  %7.3f ms (%zu bytes): %.2f times the bare loop\n", trip, samples.replyBytes,
           trip / bareSum);
    printf("  allocations %7.1f a request; resident %ld kB, the bench's own buffers included\n",
           static_cast<double>(samples.allocations) / (kBatch * kBatches), resident_kilobytes());
}

int run_x11(const char* display) {
    BareX11 screen(display);
    BareLoop bare([&screen] { return screen.Grab(); }, screen.Width(), screen.Height(), kJpegQuality,
                  kSubsampling);
    measure("X11", bare, screen.Width(), screen.Height());
    return 0;
}

int run_builtin() {
    // A card of its own: the server's worker draws on the other one at the same time.
    std::string reason;
    const auto ownHost = HostLoader::Load(HostLoader::Choice::kBuiltin, "", reason);
    host::Displays& displays = ownHost->DisplaysPort();
    const host::Rect bounds = displays.Bounds(displays.MainDisplay());
    const int width = static_cast<int>(bounds.width);
    const int height = static_cast<int>(bounds.height);
    BareLoop bare(
        [&displays, bounds] {
            host::Image image;
            displays.Picture(bounds, image);
            return BarePixels{image.pixels, image.rowBytes};
        },
        width, height, kJpegQuality, kSubsampling);
    measure("Built-in card", bare, width, height);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const bool x11 = argc == 3 && strcmp(argv[1], "--x11") == 0;
    if (!x11 && !(argc == 2 && strcmp(argv[1], "--builtin") == 0)) {
        fputs("usage: bench_roundtrip --x11 :N | --builtin\n", stderr);
        return 2;
    }
    std::string reason;
    const auto host = HostLoader::Load(x11 ? HostLoader::Choice::kX11 : HostLoader::Choice::kBuiltin,
                                       x11 ? argv[2] : "", reason);
    if (!host) {
        fprintf(stderr, "bench: %s\n", reason.c_str());
        return 1;
    }
    host::HostScope scope(*host);
    zBoot::Startup();
    const int status = x11 ? run_x11(argv[2]) : run_builtin();
    zBoot::Shutdown();
    return status;
}

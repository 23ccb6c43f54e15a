// A whole Snapshot over a real socket, beside a bare loop of grab, flip and encode in the same run. The two
// take turns, so that both see the same noise. Round trips follow each other as a stream's do.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Allocations.h"
#include "BareGrabber.h"
#include "HostLoader.h"
#include "vnCaptureServer.h"
#include "zBoot.h"

namespace {

constexpr int kBatch = 20;
constexpr int kBatches = 15;
constexpr int kJpegQuality = 80; // What the service's "normal" means: docs/quality.md.
constexpr int kSubsampling = TJSAMP_420;

/// A client that allocates nothing while it measures.
class Client {
  public:
    explicit Client(unsigned short port) : fSocket(socket(AF_INET, SOCK_STREAM, 0)), fReply(64 << 20) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (connect(fSocket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
            fail("cannot connect");
        const std::string body = "<methodCall><methodName>Snapshot</methodName></methodCall>";
        fRequest = "POST / HTTP/1.1\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    }
    ~Client() { close(fSocket); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    /// One Snapshot; the bytes of its reply's body.
    size_t RoundTrip() {
        if (send(fSocket, fRequest.data(), fRequest.size(), MSG_NOSIGNAL) !=
            static_cast<ssize_t>(fRequest.size()))
            fail("cannot send");
        size_t got = 0;
        size_t wanted = 0;
        while (wanted == 0 || got < wanted) {
            const ssize_t more = recv(fSocket, fReply.data() + got, fReply.size() - got, 0);
            if (more <= 0)
                fail("the reply broke off");
            got += static_cast<size_t>(more);
            if (wanted == 0)
                wanted = whole_length(got);
        }
        return wanted;
    }

  private:
    [[noreturn]] static void fail(const char* what) {
        fprintf(stderr, "bench: %s\n", what);
        exit(1);
    }

    size_t whole_length(size_t got) const {
        static constexpr char kName[] = "Content-Length: ";
        const char* end = static_cast<const char*>(memmem(fReply.data(), got, "\r\n\r\n", 4));
        const char* length = static_cast<const char*>(memmem(fReply.data(), got, kName, sizeof kName - 1));
        if (!end || !length)
            return 0;
        return static_cast<size_t>(end + 4 - fReply.data()) + strtoul(length + sizeof kName - 1, nullptr, 10);
    }

    int fSocket;
    std::string fRequest;
    std::vector<char> fReply;
};

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

void stream(Client& client, Samples& samples) {
    const int64_t before = AllocationCount();
    for (int i = 0; i < kBatch; ++i) {
        const auto start = std::chrono::steady_clock::now();
        samples.replyBytes = client.RoundTrip();
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
    vnCaptureServer server(0, "127.0.0.1");
    server.Server().WaitUntilListening();
    Client client(server.Server().Port());
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

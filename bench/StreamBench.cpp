// The live stream of a running glasspaned at 60 polls a second, beside a bare grab, flip and encode of what
// changed, at the same pace and in turns with it, so that both see the same noise. CPU is that of the
// server's process, and of the bare loop's thread.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "BareGrabber.h"
#include "BenchClient.h"
#include "BusyScreen.h"
#include "Daemon.h"
#include "Pace.h"

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int kJpegQuality = 80; // What the service's "normal" means: docs/quality.md.
constexpr int kSubsampling = TJSAMP_420;
constexpr int kBatches = 7;

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

double milliseconds_of(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// A receiver that looks at no more of a reply than it needs to go on.
class Stream {
  public:
    enum class Kind { kNothing, kDiff, kWholeFrame };

    explicit Stream(uint16_t port) : fClient(port) {}

    Kind Poll() {
        const std::string_view reply = fClient.RoundTrip(request());
        const std::string_view xml = reply.substr(0, std::min<size_t>(reply.size(), 2000));
        const size_t place = xml.find(kNext);
        if (place == std::string_view::npos) {
            fprintf(stderr, "bench: no stream\n");
            exit(1);
        }
        const auto told = static_cast<uint32_t>(strtoul(xml.data() + place + kNext.size(), nullptr, 10));
        const bool isWhole = told - fSequence > 1;
        fSequence = told;
        if (xml.find("picture=") == std::string_view::npos)
            return Kind::kNothing;
        return isWhole ? Kind::kWholeFrame : Kind::kDiff;
    }

  private:
    static constexpr std::string_view kNext = "next_sequence_id=\"";

    std::string request() const {
        return BenchClient::Request(
            "SnapshotByDiffs",
            "<params><param><value><struct><member><name>sequence_id</name><value><string>" +
                std::to_string(fSequence) + "</string></value></member></struct></value></param></params>");
    }

    BenchClient fClient;
    uint32_t fSequence = 0;
};

/// The server and what watches it.
class Bench {
  public:
    Bench(const char* display, Daemon& daemon)
        : fScreen(display), fBareScreen(display), fStream(daemon.Port()) {
        clock_getcpuclockid(daemon.Process().Pid(), &fServerClock);
    }

    void Idle();
    void OneCell();
    void Changes(const char* title, int x, int y, int width, int height, int pollsPerChange);

  private:
    double server_milliseconds() const { return milliseconds_of(fServerClock); }
    void settle();
    double bare_milliseconds(BareLoop& bare, int x, int y, int width, int height, int pollsPerChange,
                             int count);

    BusyScreen fScreen;
    BareX11 fBareScreen;
    Stream fStream;
    clockid_t fServerClock;
    Pace fPace;
};

/// Until a refresh has just been, and nothing is on its way.
void Bench::settle() {
    while (fStream.Poll() != Stream::Kind::kWholeFrame)
        ;
    for (int i = 0; i < 3; ++i) {
        fPace.Wait();
        fStream.Poll();
    }
}

void Bench::Idle() {
    constexpr int kPolls = 200; // Less than from one refresh to the next.
    std::vector<double> costs;
    int pictures = 0;
    for (int batch = 0; batch < kBatches; ++batch) {
        settle();
        const double before = server_milliseconds();
        for (int i = 0; i < kPolls; ++i) {
            fPace.Wait();
            pictures += fStream.Poll() != Stream::Kind::kNothing;
        }
        costs.push_back((server_milliseconds() - before) / kPolls);
    }
    BareLoop bare([this] { return fBareScreen.Grab(); }, fScreen.Width(), fScreen.Height(), kJpegQuality,
                  kSubsampling);
    const double frame = bare_milliseconds(bare, 0, 0, fScreen.Width(), fScreen.Height(), 1, 30);
    printf(
        "Idle screen\n  a poll      %7.3f ms of server CPU, %.3f of a bare frame; %d pictures in %d polls\n",
        median(costs), median(costs) / frame, pictures, kPolls * kBatches);
}

void Bench::OneCell() {
    constexpr int kSamples = 200;
    const double interval = Milliseconds(Pace::kInterval).count();
    std::minstd_rand random(7272);
    std::vector<double> delays;
    settle();
    while (delays.size() < kSamples) {
        fPace.Wait();
        fStream.Poll();
        fPace.WaitFor(static_cast<double>(random() % 100) / 100);
        const int column = static_cast<int>(random() % 100);
        const auto drawn = Clock::now();
        fScreen.Change(column * 16, 320, 16, 32);
        Stream::Kind kind = Stream::Kind::kNothing;
        while (kind == Stream::Kind::kNothing) {
            fPace.Wait();
            kind = fStream.Poll();
        }
        delays.push_back(Milliseconds(Clock::now() - drawn).count());
    }
    std::sort(delays.begin(), delays.end());
    const double middle = median(delays);
    printf(
        "One cell of 16 x 32\n  delay       %7.3f ms at the median, %.2f poll intervals: %.3f ms beyond 1.5; "
        "%.3f ms at 95 %%\n",
        middle, middle / interval, middle - 1.5 * interval, delays[delays.size() * 95 / 100]);
}

/// For each change, of the bare loop.
double Bench::bare_milliseconds(BareLoop& bare, int x, int y, int width, int height, int pollsPerChange,
                                int count) {
    double sum = 0;
    for (int i = 0; i < count; ++i) {
        for (int poll = 0; poll < pollsPerChange; ++poll)
            fPace.Wait();
        fScreen.Change(x, y, width, height);
        const double before = milliseconds_of(CLOCK_THREAD_CPUTIME_ID);
        bare.Run();
        sum += milliseconds_of(CLOCK_THREAD_CPUTIME_ID) - before;
    }
    return sum / count;
}

void Bench::Changes(const char* title, int x, int y, int width, int height, int pollsPerChange) {
    constexpr int kChanges = 60;
    BareLoop bare([&] { return fBareScreen.Grab(x, y, width, height); }, width, height, kJpegQuality,
                  kSubsampling);
    std::vector<double> ratios;
    std::vector<double> costs;
    std::vector<double> bareCosts;
    int delivered = 0;
    for (int batch = 0; batch < kBatches; ++batch) {
        settle();
        const double before = server_milliseconds();
        int pictures = 0;
        for (int i = 0; i < kChanges; ++i) {
            fScreen.Change(x, y, width, height);
            for (int poll = 0; poll < pollsPerChange; ++poll) {
                fPace.Wait();
                pictures += fStream.Poll() != Stream::Kind::kNothing;
            }
        }
        fPace.Wait();
        pictures += fStream.Poll() != Stream::Kind::kNothing; // The last one.
        costs.push_back((server_milliseconds() - before) / pictures);
        bareCosts.push_back(bare_milliseconds(bare, x, y, width, height, pollsPerChange, kChanges));
        ratios.push_back(costs.back() / bareCosts.back());
        delivered += pictures;
    }
    printf("%s\n  delivered   %d of %d changes\n  bare loop   %7.3f ms of CPU a change\n  server      %7.3f "
           "ms of "
           "CPU a change: %.2f times the bare loop\n",
           title, delivered, kChanges * kBatches, median(bareCosts), median(costs), median(ratios));
}

} // namespace

int main(int argc, char** argv) {
    const std::string only = argc == 3 ? argv[2] : "";
    if (argc < 2 || argc > 3) {
        fputs("usage: bench_stream :N [idle|cell|region|screen]\n", stderr);
        return 2;
    }
    Daemon daemon({"--host", "x11", "--display", argv[1]});
    if (daemon.Port() == 0) {
        fprintf(stderr, "bench: %s\n", daemon.ReadyLine().c_str());
        return 1;
    }
    Bench bench(argv[1], daemon);
    const auto isWanted = [&only](const char* name) { return only.empty() || only == name; };
    if (isWanted("idle"))
        bench.Idle();
    if (isWanted("cell"))
        bench.OneCell();
    if (isWanted("region"))
        bench.Changes("A region of 640 x 360, 30 times a second", 640, 352, 640, 360, 2);
    if (isWanted("screen"))
        bench.Changes("The whole screen at every poll", 0, 0, 1920, 1080, 1);
    return 0;
}

// The sound of a running glasspaned's stream, polled 60 times a second: how late it is, beside a bare
// recorder of the same sink in the same run, and whether its samples keep up with the clock.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "BareSound.h"
#include "BenchClient.h"
#include "Daemon.h"
#include "Pace.h"
#include "SoundServer.h"

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr const char* kSink = "bench";
constexpr int kSinkRate = 48000;
constexpr double kWireRate = 44100;
constexpr size_t kWireFrameBytes = 4;

/// A receiver that listens for clicks and counts samples.
class Listener {
  public:
    explicit Listener(uint16_t port) : fClient(port) {}

    void Poll() {
        const std::string_view sound = section(fClient.RoundTrip(fRequest));
        const auto now = Clock::now();
        if (sound.empty())
            return;
        if (fFirst == Clock::time_point{})
            fFirst = now;
        else
            fFrames += sound.size() / kWireFrameBytes; // What came first had waited for an unknown time.
        fLast = now;
        for (size_t at = 0; at + kWireFrameBytes <= sound.size(); at += kWireFrameBytes) {
            int16_t left = 0;
            memcpy(&left, sound.data() + at, sizeof left);
            if (fFinder.Take(static_cast<float>(left) / 32768))
                fHeard.push_back(now);
        }
    }

    const BareSound::Times& Heard() const { return fHeard; }
    double Seconds() const { return std::chrono::duration<double>(fLast - fFirst).count(); }
    double Frames() const { return static_cast<double>(fFrames); }

  private:
    /// The sound is the last section, and nothing follows the last delimiter.
    static std::string_view section(std::string_view reply) {
        constexpr std::string_view kHead = "Audio-Content-ID: <id_audio>\r\n\r\n";
        constexpr std::string_view kEnd = "\r\n--MimeBoundary_8923gr836bidfb3i--";
        const size_t head = reply.find(kHead);
        if (head == std::string_view::npos)
            return {};
        const size_t start = head + kHead.size();
        return reply.substr(start, reply.size() - kEnd.size() - start);
    }

    BenchClient fClient;
    // A number that is never behind: no whole frames.
    const std::string fRequest = BenchClient::Request(
        "SnapshotByDiffsWithAudio",
        "<params><param><value><struct><member><name>sequence_id</name><value>"
        "<string>4000000000</string></value></member></struct></value></param></params>");
    ClickFinder fFinder;
    BareSound::Times fHeard;
    Clock::time_point fFirst;
    Clock::time_point fLast;
    size_t fFrames = 0;
};

/// How long after a click was played it arrived, in milliseconds, for each that did within a second.
std::vector<double> delays(const BareSound::Times& played, const BareSound::Times& arrived) {
    constexpr auto kEarliest = std::chrono::milliseconds(-50); // The player's time is an estimate.
    constexpr auto kLatest = std::chrono::milliseconds(900);
    std::vector<double> all;
    for (const auto time : played) {
        const auto found = std::lower_bound(arrived.begin(), arrived.end(), time + kEarliest);
        if (found != arrived.end() && *found < time + kLatest)
            all.push_back(Milliseconds(*found - time).count());
    }
    std::sort(all.begin(), all.end());
    return all;
}

double at_part(const std::vector<double>& sorted, double part) {
    return sorted.empty() ? 0 : sorted[static_cast<size_t>(part * static_cast<double>(sorted.size() - 1))];
}

void measure(Daemon& daemon, int seconds) {
    BareSound bare(kSink);
    Listener listener(daemon.Port());
    Pace pace;
    for (const auto end = Clock::now() + std::chrono::seconds(seconds); Clock::now() < end;) {
        pace.Wait();
        listener.Poll();
    }
    const std::vector<double> bareDelays = delays(bare.Played(), bare.Recorded());
    const std::vector<double> ownDelays = delays(bare.Played(), listener.Heard());
    const double interval = Milliseconds(Pace::kInterval).count();
    printf("Sound for %d s, %zu clicks\n", seconds, bare.Played().size());
    printf("  bare        %7.1f ms from the sink to a recorder at the median, %.1f at 95 %%\n",
           at_part(bareDelays, 0.5), at_part(bareDelays, 0.95));
    printf(
        "  stream      %7.1f ms from the sink to the reply (%.1f beyond the poll interval), %.1f at 95 %%: "
        "%.2f times the bare recorder; %zu clicks came\n",
        at_part(ownDelays, 0.5), at_part(ownDelays, 0.5) - interval, at_part(ownDelays, 0.95),
        at_part(ownDelays, 0.5) / at_part(bareDelays, 0.5), ownDelays.size());
    printf("  samples     %.0f in %.3f s: %.4f %% off the clock\n", listener.Frames(), listener.Seconds(),
           (listener.Frames() / kWireRate / listener.Seconds() - 1) * 100);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        fputs("usage: bench_sound :N SECONDS\n", stderr);
        return 2;
    }
    SoundServer sound;
    if (!sound.Start() || !sound.AddSink(kSink, kSinkRate, 2)) {
        fprintf(stderr, "bench: %s\n", sound.WhyNot().c_str());
        return 1;
    }
    Daemon daemon({"--host", "x11", "--display", argv[1]});
    if (daemon.Port() == 0) {
        fprintf(stderr, "bench: %s\n", daemon.ReadyLine().c_str());
        return 1;
    }
    measure(daemon, atoi(argv[2]));
    return 0;
}

// What the receiver does to a reply, beside a bare decoding of the same JPEGs, in turns, on replies that a
// running glasspaned gave before. CPU is that of the thread.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

#include <turbojpeg.h>

#include "BuiltinHost.h"
#include "BusyScreen.h"
#include "Canvas.h"
#include "Connection.h"
#include "Daemon.h"
#include "zBoot.h"

namespace {

using receiver::Reply;
using receiver::StreamReply;

constexpr int kReplies = 40;
constexpr int kRounds = 9;

double milliseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

[[noreturn]] void give_up(const std::string& reason) {
    fprintf(stderr, "bench: %s\n", reason.c_str());
    exit(1);
}

/// Replies to keep: each with the bytes that it came as.
std::vector<Reply> gather(uint16_t port, BusyScreen& screen, int width, int height) {
    receiver::Connection connection({"127.0.0.1", port}, nullptr);
    std::vector<Reply> replies(kReplies);
    uint32_t sequence = 0;
    std::string reason;
    for (size_t i = 0; i < replies.size();) {
        screen.Change(640, 352, width, height);
        zRecord members;
        members.SetUInt32("sequence_id", sequence);
        StreamReply update;
        if (!connection.Call("SnapshotByDiffs", members, replies[i], reason) ||
            !update.Read(replies[i], reason))
            give_up(reason);
        sequence = update.nextSequence;
        const bool isFirst = i == 0;
        i += update.pictures.empty() || update.IsWholeFrame() != isFirst ? 0 : 1;
    }
    return replies;
}

/// All replies once, after the first, which is the whole frame.
double compose(std::vector<Reply>& replies, receiver::Canvas& canvas) {
    std::string reason;
    StreamReply update;
    if (!update.Read(replies[0], reason) || !canvas.Draw(update, reason))
        give_up(reason);
    const double begin = milliseconds();
    for (Reply& reply : replies) {
        if (!reply.Parse("multipart/related;boundary=MimeBoundary_8923gr836bidfb3i", reason) ||
            !update.Read(reply, reason) || !canvas.Draw(update, reason))
            give_up(reason);
    }
    return (milliseconds() - begin) / kReplies;
}

double decode(const std::vector<Reply>& replies, tjhandle decoder, std::vector<uint8_t>& pixels) {
    const double begin = milliseconds();
    for (const Reply& reply : replies) {
        for (size_t i = 1; i < reply.Sections().size(); ++i) {
            const auto jpeg = reply.Sections()[i].data;
            int width = 0, height = 0, subsampling = 0, colours = 0;
            tjDecompressHeader3(decoder, jpeg.data(), jpeg.size(), &width, &height, &subsampling, &colours);
            tjDecompress2(decoder, jpeg.data(), jpeg.size(), pixels.data(), width, 0, height, TJPF_BGRX, 0);
        }
    }
    return (milliseconds() - begin) / kReplies;
}

void compare(const char* name, std::vector<Reply> replies) {
    receiver::Canvas canvas;
    std::vector<uint8_t> pixels(1920 * 1080 * 4);
    tjhandle decoder = tjInitDecompress();
    std::vector<double> composing, bare, ratios;
    for (int round = 0; round < kRounds; ++round) {
        composing.push_back(compose(replies, canvas));
        bare.push_back(decode(replies, decoder, pixels));
        ratios.push_back(composing.back() / bare.back());
    }
    tjDestroy(decoder);
    printf("  %-28s %6.2f ms a reply, bare decoding %6.2f ms: %.2f times\n", name, median(composing),
           median(bare), median(ratios));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        fputs("usage: bench_receiver :N\n", stderr);
        return 2;
    }
    Daemon daemon({"--host", "x11", "--display", argv[1]});
    if (daemon.Port() == 0)
        give_up(daemon.ReadyLine());
    host::BuiltinHost host;
    host::HostScope scope(host);
    zBoot::Startup();
    BusyScreen screen(argv[1]);
    printf("Receiving: parsing, checking and composing\n");
    compare("a region of 640 x 360", gather(daemon.Port(), screen, 640, 360));
    compare("1920 x 1080", gather(daemon.Port(), screen, 1920, 1080));
    zBoot::Shutdown();
    return 0;
}

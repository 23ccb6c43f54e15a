#include "DiscoveryDaemon.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <net/if.h>
#include <poll.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr auto kLimit = std::chrono::seconds(20);

/// A network without interfaces has a loopback one that is down.
bool bring_loopback_up() {
    const int any = socket(AF_INET, SOCK_DGRAM, 0);
    ifreq request = {};
    std::strcpy(request.ifr_name, "lo");
    request.ifr_flags = IFF_UP | IFF_RUNNING;
    const bool up = ioctl(any, SIOCSIFFLAGS, &request) == 0;
    close(any);
    return up;
}

bool await_file(const std::filesystem::path& path) {
    const auto end = std::chrono::steady_clock::now() + kLimit;
    while (!std::filesystem::exists(path) && std::chrono::steady_clock::now() < end)
        poll(nullptr, 0, 10);
    return std::filesystem::exists(path);
}

std::unique_ptr<Program> launch(const std::string& command) {
    return std::make_unique<Program>(
        std::vector<std::string>{"setpriv", "--pdeathsig", "KILL", "sh", "-c", "exec " + command});
}

} // namespace

DiscoveryDaemon::~DiscoveryDaemon() {
    fDaemon.reset();
    fBus.reset();
    std::error_code ignored;
    if (!fFolder.empty())
        std::filesystem::remove_all(fFolder, ignored);
}

bool DiscoveryDaemon::Start() {
    if (!enter_private_network()) {
        fWhyNot = "no private network: this needs root";
        return false;
    }
    std::string pattern = (std::filesystem::temp_directory_path() / "glasspane-discovery-XXXXXX").string();
    fFolder = mkdtemp(pattern.data());
    const std::string folder = fFolder.string();
    setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + folder + "/bus").c_str(), 1);
    write_configuration();

    fBus = launch("dbus-daemon --nofork --nopidfile --config-file=" + folder + "/bus.conf");
    if (await_file(fFolder / "bus")) {
        fDaemon = launch("avahi-daemon --no-drop-root --no-chroot --no-rlimits -f " + folder + "/avahi.conf");
        std::string line;
        do
            line = fDaemon->ReadLine();
        while (!line.empty() && line.find("startup complete") == std::string::npos);
        if (!line.empty())
            return true;
    }
    fWhyNot = "no discovery daemon: are dbus-daemon and avahi-daemon installed?";
    return false;
}

/// With file systems of its own, too, so that the daemon's run-time folder meets no other daemon's.
bool DiscoveryDaemon::enter_private_network() {
    if (unshare(CLONE_NEWNET | CLONE_NEWNS) != 0)
        return false;
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", "/run", "tmpfs", 0, nullptr) == 0 &&
           std::filesystem::create_directory("/run/avahi-daemon") && bring_loopback_up();
}

void DiscoveryDaemon::write_configuration() const {
    std::ofstream(fFolder / "bus.conf")
        << "<busconfig><type>system</type><listen>unix:path=" << fFolder.string()
        << "/bus</listen><policy context=\"default\"><allow user=\"*\"/><allow own=\"*\"/>"
           "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/></policy></busconfig>";
    std::ofstream(fFolder / "avahi.conf") << "[server]\nhost-name=glasspanetest\nuse-ipv6=no\n"
                                             "allow-interfaces=lo\n[wide-area]\nenable-wide-area=no\n"
                                             "[publish]\npublish-hinfo=no\npublish-workstation=no\n";
}

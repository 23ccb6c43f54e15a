#include "DiscoveryDaemon.h"

#include <cstdlib>
#include <cstring>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Await.h"

namespace {

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

} // namespace

bool DiscoveryDaemon::Start() {
    if (!enter_private_network()) {
        fWhyNot = "no private network: this needs root";
        return false;
    }
    const std::string folder = fFolder.Path().string();
    setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + folder + "/bus").c_str(), 1);
    write_configuration();

    fBus = std::make_unique<Program>(
        ServerCommand("dbus-daemon --nofork --nopidfile --config-file=" + folder + "/bus.conf"));
    if (Await([&] { return std::filesystem::exists(fFolder / "bus"); })) {
        fDaemon = std::make_unique<Program>(ServerCommand(
            "avahi-daemon --no-drop-root --no-chroot --no-rlimits -f " + folder + "/avahi.conf"));
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
    fFolder.Write("bus.conf",
                  "<busconfig><type>system</type><listen>unix:path=" + fFolder.Path().string() +
                      "/bus</listen><policy context=\"default\"><allow user=\"*\"/><allow own=\"*\"/>"
                      "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/></policy></busconfig>");
    fFolder.Write("avahi.conf", "[server]\nhost-name=glasspanetest\nuse-ipv6=no\nallow-interfaces=lo\n"
                                "[wide-area]\nenable-wide-area=no\n"
                                "[publish]\npublish-hinfo=no\npublish-workstation=no\n");
}

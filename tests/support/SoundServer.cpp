#include "SoundServer.h"

#include <csignal>
#include <cstdlib>

#include "Await.h"

namespace {

/// What leads sound programs to a server, or away from a test's.
constexpr const char* kForeign[] = {"PULSE_SERVER", "PULSE_SINK", "PULSE_RUNTIME_PATH", "PIPEWIRE_REMOTE",
                                    "DISPLAY"};

} // namespace

SoundServer::SoundServer() {
    for (const char* name : kForeign)
        unsetenv(name);
    const std::string folder = fFolder.Path().string();
    for (const char* name : {"XDG_RUNTIME_DIR", "XDG_STATE_HOME", "XDG_CONFIG_HOME", "HOME"})
        setenv(name, folder.c_str(), 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + folder + "/bus").c_str(), 1);
    // Wireless headsets would have the session manager ask for logins, and give up where nobody keeps any: in
    // a container. An empty file of this name stands before the system's.
    fFolder.Write("wireplumber/bluetooth.lua.d/90-enable-all.lua", "");
}

bool SoundServer::Start() {
    fServers.push_back(
        launch("dbus-daemon --session --nofork --nopidfile --address=$DBUS_SESSION_BUS_ADDRESS"));
    const bool hasBus = await("test -S $XDG_RUNTIME_DIR/bus");
    fServers.push_back(launch("pipewire"));
    const bool hasPipe = hasBus && await("test -S $XDG_RUNTIME_DIR/pipewire-0");
    fServers.push_back(launch("wireplumber"));
    fServers.push_back(launch("pipewire-pulse"));
    // On a busy machine short cycles run late, and then the server puts silence into what plays.
    if (hasPipe && await("pactl info") && run("pw-metadata -n settings 0 clock.force-quantum 2048"))
        return true;
    fWhyNot = "no sound server: are pipewire, pipewire-pulse, wireplumber, pulseaudio-utils and dbus-daemon "
              "installed?";
    return false;
}

void SoundServer::Kill() {
    fServers.clear();
    for (const char* name : {"bus", "pipewire-0", "pipewire-0.lock", "pulse"})
        std::filesystem::remove_all(fFolder / name);
}

void SoundServer::Freeze(bool frozen) {
    for (const auto& server : fServers)
        server->Signal(frozen ? SIGSTOP : SIGCONT);
}

bool SoundServer::AddSink(const std::string& name, int rate, int channels) {
    return run("pactl load-module module-null-sink sink_name=" + name + " rate=" + std::to_string(rate) +
               " channels=" + std::to_string(channels) +
               " format=float32le sink_properties=device.description=Loudspeaker") &&
           await("pactl list short sinks | grep -qw " + name) && run("pactl set-default-sink " + name) &&
           await("test \"$(pactl get-default-sink)\" = " + name);
}

std::unique_ptr<Program> SoundServer::PlayTone(const std::string& sink) {
    const std::string file = (fFolder / "tone.wav").string();
    if (!std::filesystem::exists(file) &&
        !run("sox -n -r 48000 -c 2 -b 16 " + file + " synth 60 sine 1000 sine 500 gain -6.0206"))
        return nullptr;
    return launch("paplay --device=" + sink + " " + file);
}

std::unique_ptr<Program> SoundServer::launch(const std::string& command) {
    return std::make_unique<Program>(ServerCommand(command + " >/dev/null 2>&1"));
}

bool SoundServer::run(const std::string& command) {
    return Program({"sh", "-c", "{ " + command + "; } >/dev/null 2>&1"}).WaitForExit() == 0;
}

bool SoundServer::await(const std::string& command) {
    return Await([&] { return run(command); });
}

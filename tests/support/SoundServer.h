#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Program.h"
#include "TestFolder.h"

/// A sound server of its own for a test: PipeWire, with everything that it needs, in a fresh folder. This
/// process's environment leads to no other one from then on. It ends with the test program however that
/// ends.
class SoundServer {
  public:
    SoundServer();
    ~SoundServer() { Kill(); }
    SoundServer(const SoundServer&) = delete;
    SoundServer& operator=(const SoundServer&) = delete;

    /// Starts the server; false, with a reason, when it doesn't come up.
    bool Start();
    const std::string& WhyNot() const { return fWhyNot; }

    /// Ends all of it without a warning, as a crash would.
    void Kill();

    /// Freezes the server, or lets it go on.
    void Freeze(bool frozen);

    /// Adds a sink that nobody hears and makes it the default one.
    bool AddSink(const std::string& name, int rate, int channels);

    /// Plays sines of 1000 Hz on the left and 500 Hz on the right at half the full level, a minute long, for
    /// as long as the result lives. Null when it can't.
    std::unique_ptr<Program> PlayTone(const std::string& sink);

  private:
    std::unique_ptr<Program> launch(const std::string& command);
    bool run(const std::string& command);
    bool await(const std::string& command);

    TestFolder fFolder;
    std::vector<std::unique_ptr<Program>> fServers;
    std::string fWhyNot;
};

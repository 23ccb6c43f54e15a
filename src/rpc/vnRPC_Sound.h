#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "zThread.h"

class vnAudio;
struct vnRPC_Call;

/// The sound of the stream: the audio source, from the first call that wants it until one finds sound
/// disabled, and the clock that stamps its samples.
///
/// A source starts on a thread of its own, since a sound server that hangs takes a second to say nothing and
/// all clients would wait for it. Until it has started there is no sound. Callers serialise all operations.
class vnRPC_Sound : private zThreadMain {
  public:
    vnRPC_Sound();
    /// Waits for a source that is just starting.
    ~vnRPC_Sound() override;

    /// Adds a section with all that was heard since the last call, if anything was, and what the reply says
    /// about it.
    void AddTo(vnRPC_Call& call);

    /// Gives the source up. One that is just starting has to wait for the next Stop.
    void Stop();

  private:
    int Main(int argc, const char** argv) override;
    void start();
    bool add_section(vnRPC_Call& call);

    std::unique_ptr<vnAudio> fAudio;   ///< Null while no one listens. The thread's until it has started.
    std::unique_ptr<zThread> fStarter; ///< Null when the source was started without one.
    std::atomic<bool> fStarted{false};
    int64_t fClock = 0; ///< Microseconds: counts samples while sound flows.
};

#pragma once

#include <memory>
#include <vector>

#include "RunLoop.h"

namespace host {

/// A loop over poll(). Stop() writes a byte to a pipe that the loop watches: that is all a signal handler may
/// do.
class PosixRunLoop : public RunLoop {
  public:
    PosixRunLoop();
    ~PosixRunLoop() override;
    PosixRunLoop(const PosixRunLoop&) = delete;
    PosixRunLoop& operator=(const PosixRunLoop&) = delete;

    void Run() override;
    void Stop() override;
    void AddDescriptor(int descriptor, std::function<void()> ready) override;
    void RemoveDescriptor(int descriptor) override;

  private:
    /// Shared with the round that calls it, so that a call may remove its own source.
    struct Source {
        int descriptor;
        std::function<void()> ready;
        bool removed = false;
    };
    using SourceList = std::vector<std::shared_ptr<Source>>;

    bool take_stop();
    bool wait(SourceList& readySources);

    int fStopReader = -1;
    int fStopWriter = -1;
    SourceList fSources;
};

} // namespace host

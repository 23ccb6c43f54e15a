#pragma once

#include <map>
#include <memory>

#include <QSocketNotifier>
#include <QTimer>

#include "MainThreadQueue.h"
#include "RunLoop.h"

namespace host {

/// The main loop of Qt's application object, which must exist. Dialogs that run a loop of their own serve the
/// same sources.
class QtRunLoop : public RunLoop {
  public:
    QtRunLoop();
    ~QtRunLoop() override;

    void Run() override;
    void Stop() override;
    void AddDescriptor(int descriptor, std::function<void()> ready) override;
    void RemoveDescriptor(int descriptor) override;
    int AddTimer(int milliseconds, std::function<void()> fire) override;
    void RemoveTimer(int timer) override;
    bool PerformOnMainThread(const std::function<void()>& work) override { return fQueue.Perform(work); }
    void RefuseWork() override { fQueue.Close(); }

  private:
    /// Deletes later, so that a call may remove its own source.
    struct DeleteLater {
        void operator()(QObject* object) const { object->deleteLater(); }
    };

    bool fIsStopped = false;
    int fStop; ///< An event descriptor: all that a signal handler may touch.
    MainThreadQueue fQueue;
    std::map<int, std::unique_ptr<QSocketNotifier, DeleteLater>> fSources;
    std::map<int, std::unique_ptr<QTimer, DeleteLater>> fTimers;
    int fLastTimer = 0;
};

} // namespace host

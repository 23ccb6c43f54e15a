#include "vnSignalThread.h"

/// The worker's body. Its running flag is cleared by the stopping thread, which then signals.
class vnSignalThreadMain : public zThreadMain {
  public:
    vnSignalThreadMain(vnSignalThread& owner, zSignal& signal) : fOwner(owner), fSignal(signal) {}

    int Main(int, const char**) override {
        while (fRunning) {
            fSignal.Wait();
            if (fRunning)
                fOwner.SignalThread_Tick();
            else
                fOwner.fStopSignalTaken = true;
        }
        return 0;
    }

    void AskToStop() { fRunning = false; }

  private:
    vnSignalThread& fOwner;
    zSignal& fSignal;
    std::atomic<bool> fRunning{true};
};

vnSignalThread::vnSignalThread() : fSignal(zSignal::Factory()) {}

vnSignalThread::~vnSignalThread() {
    SignalThread_Stop();
}

zThread* vnSignalThread::SignalThread_Start() {
    SignalThread_Stop();
    fStopSignalTaken = false;
    fMain = new vnSignalThreadMain(*this, *fSignal);
    fThread.reset(zThread::Factory("rpc renderer", fMain, zThread::kDeleteMain, zThread::kNormalPriority));
    return fThread.get();
}

void vnSignalThread::SignalThread_Signal() {
    fSignal->Signal();
}

void vnSignalThread::SignalThread_Stop() {
    if (fThread) {
        fMain->AskToStop();
        fSignal->Signal();
        fThread->WaitForExit();
        fThread.reset();
        // A worker that was busy has left without a look at the signal: a later start must not tick for it.
        if (!fStopSignalTaken)
            fSignal->TakeBack();
    }
    fMain = nullptr;
}

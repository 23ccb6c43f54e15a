#include "X11Refresh.h"

#include "Host.h"

namespace host {

void X11Refresh::Register(RefreshListener& listener) {
    fListeners.push_back(&listener);
    if (fListeners.size() == 1)
        start();
}

void X11Refresh::Unregister(RefreshListener& listener) {
    std::erase(fListeners, &listener);
    if (fListeners.empty())
        stop();
}

void X11Refresh::start() {
    fDamage = X11Damage::Watch(fDisplayName.c_str());
    if (!fDamage)
        return;
    fLoop = &Host::Current().RunLoopPort();
    fLoop->AddDescriptor(fDamage->Descriptor(), [this] { report(); });
    fIsHeard = true;
    report(); // What came with the set-up is in memory already, where the loop doesn't look.
}

void X11Refresh::stop() {
    fIsHeard = false;
    if (fDamage)
        fLoop->RemoveDescriptor(fDamage->Descriptor());
    fDamage.reset();
}

void X11Refresh::report() {
    fAreas.clear();
    const bool lives = fDamage->Take(fAreas);
    if (!lives)
        stop();
    if (fAreas.empty())
        return;
    for (RefreshListener* listener : fListeners)
        listener->ScreenRefreshed(fAreas);
}

} // namespace host

#include "vnDisplayWatch.h"

#include "Host.h"
#include "vnConfigurableSnapshot.h"
#include "vnFocusManager.h"
#include "vnFocusRect.h"
#include "zCritical.h"

vnDisplayWatch::vnDisplayWatch(zCritical& lock, vnConfigurableSnapshot& front, vnFocusManager* focus)
    : fLock(lock), fFront(front), fFocus(focus) {
    host::Host::Current().DisplaysPort().RegisterDisplaysListener(*this);
}

vnDisplayWatch::~vnDisplayWatch() {
    host::Host::Current().DisplaysPort().UnregisterDisplaysListener(*this);
}

void vnDisplayWatch::DisplaysChanged() {
    zAutoCritical lock(&fLock);
    fFront.FollowDisplay();
    vnSnapshot* current = fFront.CurrentDeviceSnapshot();
    if (fFocus && current)
        fFocus->FocusRect()->SetMaximumRect(current->MaximumRect());
}

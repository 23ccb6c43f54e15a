#pragma once

#include "Displays.h"

class vnConfigurableSnapshot;
class vnFocusManager;
class zCritical;

/// Keeps the capture front in step with the machine's displays. When one has changed its place or size, its
/// device is opened anew, and a focus on a rectangle learns the bounds of the current display. A display that
/// has gone fails its grabs until it is back; a new one gets no device before the next start.
///
/// Main thread only.
class vnDisplayWatch : private host::DisplaysListener {
  public:
    /// The three outlive it; \p focus may be null. Changes are made under \p lock.
    vnDisplayWatch(zCritical& lock, vnConfigurableSnapshot& front, vnFocusManager* focus);
    ~vnDisplayWatch() override;
    vnDisplayWatch(const vnDisplayWatch&) = delete;
    vnDisplayWatch& operator=(const vnDisplayWatch&) = delete;

  private:
    void DisplaysChanged() override;

    zCritical& fLock;
    vnConfigurableSnapshot& fFront;
    vnFocusManager* fFocus;
};

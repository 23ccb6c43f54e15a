#pragma once

#include "zRefCount.h"

class zRecord;

/// What lets a client read the menu of everything that can be shown, and choose from it. An implementation
/// may carry the call to another thread and wait there: callers hold no lock.
class vnRemoteControlInterface : public zRefCount {
  public:
    /// Fills \p out with one child for each screen and application. 0 or a negative code.
    virtual int GetMenus(zRecord& out) = 0;

    /// Makes \p item, a record of that same tree, the source. 0 or a negative code.
    virtual int SetSourceFromMenuItem(zRecord& item) = 0;
};

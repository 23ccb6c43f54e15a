#pragma once

#include "cBonjourLib.h"
#include "z4CCCC.h"
#include "zList.h"
#include "zString.h"

/// One DNS-SD operation: a registration, a browse or a resolve. While it runs, the main thread's loop lets it
/// take in what comes for it. Main thread.
class cBonjourService {
  public:
    using Ref = cBonjourLib::Ref;

    /// Notifications of what a browse found carry one of these.
    static constexpr uint32_t kAdded = z4CCCC("+add");
    static constexpr uint32_t kDeleted = z4CCCC("-del");

    /// The port is in host order.
    cBonjourService(const char* type, int port) : fType(type), fPort(port) {}
    /// Leaves the loop. Deliberate: what still runs is not ended; whoever started it calls Stop first.
    ~cBonjourService() { leave_loop(); }
    cBonjourService(const cBonjourService&) = delete;
    cBonjourService& operator=(const cBonjourService&) = delete;

    // These start the operation, and put it into the loop but for a resolve. 0, or -1 with nothing running.

    /// `text` is one text of DNS-SD: a byte with its length and so many characters; null for none.
    int Register(cBonjourLib& lib, const char* text);
    int Browse(cBonjourLib& lib, uint32_t interface, host::Discovery::BrowseReply reply, void* context);
    int Resolve(cBonjourLib& lib, uint32_t interface, host::Discovery::ResolveReply reply, void* context);

    /// Ends the operation, if it runs.
    void Stop(cBonjourLib& lib);

    /// Lets the loop of this thread serve the operation's descriptor. -1 if it doesn't run.
    int RegisterWithSelectLoop(cBonjourLib& lib);
    int UnregisterWithSelectLoop();

    zString fDomain; ///< Empty for the default domain.
    zString fName;   ///< Empty for the computer's name.
    const zString fType;
    const int fPort;
    zList<int> fObservers;    ///< Of a browse.
    uint32_t fAction = 0;     ///< Of a resolve: kAdded or kDeleted.
    Ref fRef = nullptr;       ///< Null while it doesn't run.
    Ref fBrowseRef = nullptr; ///< Of a resolve: the browse that it belongs to.
    bool fIsAnswered = false; ///< Of a resolve.

  private:
    int start(int error);
    void leave_loop();

    int fWatched = -1; ///< The descriptor that the loop watches.
};

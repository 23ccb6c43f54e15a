#pragma once

#include "cRPCExecutor.h"
#include "vnRPC_Call.h"
#include "vnRPC_FrameEncoder.h"
#include "vnSignalThread.h"

class vnRemoteControlInterface;
class vnRPC_SnapshotMouse;
class vnSnapshot;
class vnSnapshotBuffer;
class zCritical;

/// The plain picture service, one whole JPEG for a call, with the small control methods beside it.
///
/// A reply is encoded from the frame that was captured after the reply before it, and each request wakes the
/// worker for the next frame: capture overlaps the network, and the client sets the pace. Only a first
/// request and a change of size capture on the spot. Methods run on the server's thread, ticks on the worker.
class vnRPC_Snapshot : public cRPCExecutor, public vnSignalThread {
  public:
    /// \p lock (may be null) and \p device stay the caller's and outlive this service, which opens the device
    /// and takes a reference on \p mouse and on \p remoteControl (null means no remote menus).
    vnRPC_Snapshot(zCritical* lock, vnSnapshot* device, vnRPC_SnapshotMouse* mouse,
                   vnRemoteControlInterface* remoteControl);
    ~vnRPC_Snapshot() override;

    bool RPC_ImplementsMethod(const char* method) override;
    int RPC_ExecuteMethod(const char* method, const zRecord& request, zRecord& reply, zRecord& multipart,
                          zList<cBuffer*>& attachments) override;

    /// Looks at the pointer and captures the next frame.
    void SignalThread_Tick() override;

  private:
    using Method = int (vnRPC_Snapshot::*)(vnRPC_Call& call);
    struct MethodEntry {
        const char* name;
        Method run;
    };

    static const MethodEntry kMethods[];
    static const MethodEntry* find_method(const char* name);

    int snapshot(vnRPC_Call& call);
    int snapshot_maximum_rect(vnRPC_Call& call);
    int check_connection(vnRPC_Call& call);
    int get_menus(vnRPC_Call& call);
    int set_source_from_menu_item(vnRPC_Call& call);
    int enable_or_disable_audio_or_video(vnRPC_Call& call);

    void fill_reply(const vnRPC_TickState& tick, const zRect& rect, vnRPC_Call& call);

    vnSnapshot* fDevice;
    zCritical* fLock;
    vnRPC_SnapshotMouse* fMouse;
    vnRemoteControlInterface* fRemoteControl;
    vnRPC_FrameEncoder fEncoder;
    vnSnapshotBuffer* fFrame; ///< One reference; Grab may put another in its place.
    zRect fCrop;              ///< Four insets: those of the last request.
    vnRPC_TickState fTick;
};

#pragma once

#include <cstdint>
#include <memory>

#include "cRPCExecutor.h"
#include "vnSignalThread.h"
#include "zPoint.h"
#include "zRect.h"

class vnEncoderBuffer;
class vnRemoteControlInterface;
class vnRPC_Encoder;
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
    /// One call's records, as the executor contract hands them over.
    struct Call {
        const zRecord& request;
        zRecord& reply;
        zRecord& multipart;
        zList<cBuffer*>& attachments;
    };
    using Method = int (vnRPC_Snapshot::*)(Call& call);
    struct MethodEntry {
        const char* name;
        Method run;
    };

    /// What a tick leaves for the next reply. Guarded by the lock.
    struct Tick {
        static constexpr int kNoGrabYet = 0x6E6F4762; // n, o, G, b

        int grabResult = kNoGrabYet;
        zRect captured; ///< In screen coordinates.
        bool mouseValid = false;
        zPoint mouseLocation;
        uint32_t mouseId = 0;
    };

    static const MethodEntry kMethods[];
    static const MethodEntry* find_method(const char* name);

    int snapshot(Call& call);
    int snapshot_maximum_rect(Call& call);
    int check_connection(Call& call);
    int get_menus(Call& call);
    int set_source_from_menu_item(Call& call);
    int enable_or_disable_audio_or_video(Call& call);

    zRect cropped_rect(const zRect& crop);
    void encode_frame(uint32_t quality);
    void check_and_resize_encoder();
    void fill_reply(const Tick& tick, const zRect& rect, Call& call);

    vnSnapshot* fDevice;
    zCritical* fLock;
    vnRPC_SnapshotMouse* fMouse;
    vnRemoteControlInterface* fRemoteControl;
    std::unique_ptr<vnRPC_Encoder> fEncoder; ///< Made for frames of the encoder rectangle's size.
    zRect fEncoderRect;
    vnEncoderBuffer* fEncoded = nullptr; ///< One reference; reused for every reply.
    vnSnapshotBuffer* fFrame;            ///< One reference; Grab may put another in its place.
    zRect fCrop;                         ///< Four insets: those of the last request.
    Tick fTick;
};

#pragma once

#include <cstdint>
#include <memory>

#include "cRPCExecutor.h"
#include "vnRPC_Call.h"
#include "vnRPC_FrameEncoder.h"
#include "vnRPC_Sound.h"
#include "vnSignalThread.h"

class vnRPC_SnapshotMouse;
class vnScreenDiffs;
class vnSnapshot;
class vnSnapshotBuffer;
class zCritical;

/// Pixels of the screen, and which state of the picture they belong to.
struct vnDiffBuffer {
    explicit vnDiffBuffer(vnSnapshotBuffer* frame) : buffer(frame) {}
    ~vnDiffBuffer();
    vnDiffBuffer(const vnDiffBuffer&) = delete;
    vnDiffBuffer& operator=(const vnDiffBuffer&) = delete;

    uint32_t sequenceId = 0;  ///< 0 while the pixels are of no use: then the buffer may be filled anew.
    vnSnapshotBuffer* buffer; ///< One reference; Grab may put another in its place. May be null.
    zRect rect;               ///< In screen coordinates.
};

/// The streaming service: a client says how far it has got and receives what changed since, or a whole frame
/// when it has to start over, and always the pointer's place. A second method adds the sound since the last
/// call.
///
/// Nothing is kept for a client: its sequence id is all there is. Diffs raise the sequence by 1, whole frames
/// by 2, and a reply tells the sequence + 1; so the number that comes back is below the sequence if and only
/// if a whole frame has been captured in between. Each reply that has left wakes the worker for one tick.
/// Methods run on the server's thread, ticks on the worker; made and deleted on the main thread.
class vnRPC_SnapshotByDiffs : public cRPCExecutor, public vnSignalThread {
  public:
    /// \p lock (may be null) and \p device stay the caller's and outlive this service, which opens the device
    /// and takes a reference on \p mouse.
    vnRPC_SnapshotByDiffs(zCritical* lock, vnSnapshot* device, vnRPC_SnapshotMouse* mouse);
    ~vnRPC_SnapshotByDiffs() override;

    bool RPC_ImplementsMethod(const char* method) override;
    int RPC_ExecuteMethod(const char* method, const zRecord& request, zRecord& reply, zRecord& multipart,
                          zList<cBuffer*>& attachments) override;
    void RPC_DataSent() override;

    /// Looks at the pointer and captures what changed, or the whole frame where that is needed.
    void SignalThread_Tick() override;

  private:
    int snapshot_by_diffs(vnRPC_Call& call, bool withAudio);
    bool is_muted() const;
    void reply_muted(vnRPC_Call& call);
    bool capture_if_needed(const vnRPC_PictureRequest& request);
    void check_and_resize_encoder(bool captured);
    bool add_diffs(const vnRPC_PictureRequest& request, vnRPC_Call& call);
    bool can_send(const vnDiffBuffer& diff, uint32_t clientSequence) const;
    void add_diff(const vnDiffBuffer& diff, uint32_t quality, vnRPC_Call& call);
    bool add_frame(uint32_t quality, vnRPC_Call& call);
    void fill_reply(bool hasPicture, vnRPC_Call& call);

    bool can_capture_diffs();
    void capture_diffs();
    void capture_diff(const zRect& changed, bool isFirst);
    void capture_frame();
    vnDiffBuffer* get_buffer();
    void reset_buffers(uint32_t limit);

    vnSnapshot* fDevice;
    zCritical* fLock;
    vnRPC_SnapshotMouse* fMouse;

    // From here on guarded by the lock.
    vnRPC_FrameEncoder fEncoder;
    bool fForceFull = true;  ///< The next tick captures the whole frame.
    int fRefreshCounter = 0; ///< Ticks since a refresh was forced.
    bool fMuted = false;     ///< The last request was answered as muted. Server's thread only.
    std::unique_ptr<vnScreenDiffs> fDiffer;
    vnRPC_Sound fSound;
    uint32_t fSequence = 0; ///< The newest state of the picture.
    zList<vnDiffBuffer*> fPool;
    std::unique_ptr<vnDiffBuffer> fFrame;
    zRect fCrop; ///< Four insets: those of the last request.
    vnRPC_TickState fTick;
};

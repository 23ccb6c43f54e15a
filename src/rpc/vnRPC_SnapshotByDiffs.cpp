#include "vnRPC_SnapshotByDiffs.h"

#include <utility>

#include "cMultipartRecord.h"
#include "vnRPC_Encoder.h"
#include "vnRPC_SnapshotMouse.h"
#include "vnScreenDiffs.h"
#include "vnSnapshot.h"
#include "vnSnapshotBuffer.h"
#include "zCritical.h"
#include "zRecord.h"
#include "zString.h"
#include "zTime.h"

namespace {

constexpr const char* kMethod = "SnapshotByDiffs";
constexpr const char* kMethodWithAudio = "SnapshotByDiffsWithAudio";

/// The largest extent, each way, of a frame that is sent by diffs.
constexpr int kMaximumExtent = 2048;

/// Insets of diffs are multiples of so many pixels, so that the blocks of their JPEGs lie on one grid.
constexpr int kAlignment = 16;

/// How many states back diffs are kept.
constexpr uint32_t kKeptStates = 10;

constexpr uint32_t kDiffStep = 1;
constexpr uint32_t kFrameStep = 2;

/// The refresh counter at which a whole frame is forced, so that an error in a client's picture can't last.
constexpr int kRefreshTicks = 241;

zRect limited(zRect rect) {
    if (rect.Width() > kMaximumExtent)
        rect.right = zRect::Add(rect.left, kMaximumExtent - 1);
    if (rect.Height() > kMaximumExtent)
        rect.bottom = zRect::Add(rect.top, kMaximumExtent - 1);
    return rect;
}

bool is_method(const char* name, const char* method) {
    return name && zString::strcasecmp(name, method) == 0;
}

int aligned_inset(int from, int to) {
    return zRect::Subtract(to, from) & ~(kAlignment - 1);
}

} // namespace

vnDiffBuffer::~vnDiffBuffer() {
    if (buffer)
        buffer->Release();
}

vnRPC_SnapshotByDiffs::vnRPC_SnapshotByDiffs(zCritical* lock, vnSnapshot* device, vnRPC_SnapshotMouse* mouse)
    : fDevice(device), fLock(lock), fMouse(mouse), fDiffer(vnScreenDiffs::Factory()) {
    fDevice->Open();
    fFrame = std::make_unique<vnDiffBuffer>(fDevice->NewBuffer());
    SignalThread_Start();
    fDiffer->Start();
    fMouse->AddRef();
}

vnRPC_SnapshotByDiffs::~vnRPC_SnapshotByDiffs() {
    fDiffer->Stop();
    SignalThread_Stop();
    fDevice->Close();
    fPool.RemoveAndDeleteAll();
    fMouse->Release();
}

bool vnRPC_SnapshotByDiffs::RPC_ImplementsMethod(const char* method) {
    return is_method(method, kMethod) || is_method(method, kMethodWithAudio);
}

int vnRPC_SnapshotByDiffs::RPC_ExecuteMethod(const char* method, const zRecord& request, zRecord& reply,
                                             zRecord& multipart, zList<cBuffer*>& attachments) {
    vnRPC_Call call{request, reply, multipart, attachments};
    return RPC_ImplementsMethod(method) ? snapshot_by_diffs(call, is_method(method, kMethodWithAudio)) : -1;
}

void vnRPC_SnapshotByDiffs::RPC_DataSent() {
    if (!fMuted)
        SignalThread_Signal();
}

int vnRPC_SnapshotByDiffs::snapshot_by_diffs(vnRPC_Call& call, bool withAudio) {
    const vnRPC_PictureRequest request(call.request);
    call.multipart.SetCString(cMultipartRecord::kContentTypeName, cMultipartRecord::kContentType);

    zAutoCritical lock(fLock);
    if (is_muted()) {
        reply_muted(call);
        return 0;
    }
    const bool captured = capture_if_needed(request);
    if (fTick.grabResult != 0)
        return -1;
    call.reply.SetInt64("timestamp", zTime::MicroNow());
    check_and_resize_encoder(captured);
    bool hasPicture = add_diffs(request, call);
    if (!hasPicture && request.sequenceId < fSequence)
        hasPicture = add_frame(request.quality, call);
    const bool isAudioEnabled = fDevice->AudioIsEnabled();
    if (isAudioEnabled && withAudio)
        fSound.AddTo(call);
    if (!isAudioEnabled)
        fSound.Stop();
    fill_reply(hasPicture, call);
    return 0;
}

bool vnRPC_SnapshotByDiffs::is_muted() const {
    return fDevice->IsPaused() || fDevice->IsScreenSaverActive();
}

/// A client keeps showing what it has. Nothing is captured until it can go on, with a whole frame.
void vnRPC_SnapshotByDiffs::reply_muted(vnRPC_Call& call) {
    fMuted = true;
    reset_buffers(0);
    call.reply.SetCString(zRecord::kXMLTag, "response");
    call.reply.SetInt32("error", 0);
    call.reply.SetRect("rect", fTick.captured);
    if (fDevice->IsPaused())
        call.reply.SetInt32("muted", 1);
    if (fDevice->IsScreenSaverActive())
        call.reply.SetInt32("screen_saver_active", 1);
}

/// The first request, the first one after a mute, and a change of size have to wait for a whole frame. True
/// if one was captured.
bool vnRPC_SnapshotByDiffs::capture_if_needed(const vnRPC_PictureRequest& request) {
    const bool isOtherCrop = request.crop != std::exchange(fCrop, request.crop);
    const zRect wanted = limited(request.Cropped(fDevice->MaximumRect()));
    if (!fMuted && !fTick.NeedsGrab(wanted, isOtherCrop))
        return false;
    fMuted = false;
    fForceFull = true;
    SignalThread_Tick();
    return true;
}

/// A new encoder is for frames of a new size: diffs of the old one are void, and a whole frame of the new one
/// has to come next, unless it has just been captured.
void vnRPC_SnapshotByDiffs::check_and_resize_encoder(bool captured) {
    if (!fFrame->buffer || !fEncoder.CheckAndResize(fTick.captured, *fFrame->buffer))
        return;
    if (!captured)
        fForceFull = true;
    fPool.RemoveAndDeleteAll();
}

bool vnRPC_SnapshotByDiffs::add_diffs(const vnRPC_PictureRequest& request, vnRPC_Call& call) {
    bool added = false;
    for (const vnDiffBuffer* diff : fPool) {
        if (!can_send(*diff, request.sequenceId))
            continue;
        add_diff(*diff, request.quality, call);
        added = true;
    }
    return added;
}

bool vnRPC_SnapshotByDiffs::can_send(const vnDiffBuffer& diff, uint32_t clientSequence) const {
    if (clientSequence == 0 || diff.sequenceId < clientSequence)
        return false;
    const zRect together = fTick.captured.Union(diff.rect);
    return together.Width() <= kMaximumExtent && together.Height() <= kMaximumExtent && diff.buffer &&
           diff.buffer->Data() && diff.buffer->HoldsItsPixels();
}

/// Diffs are of all sizes, so each has an encoder of its own.
void vnRPC_SnapshotByDiffs::add_diff(const vnDiffBuffer& diff, uint32_t quality, vnRPC_Call& call) {
    vnSnapshotBuffer& frame = *diff.buffer;
    const std::unique_ptr<vnRPC_Encoder> encoder(
        vnRPC_Encoder::Factory(frame.Width(), frame.Height(), frame.RowBytes()));
    vnEncoderBuffer* picture = encoder->NewBuffer();
    encoder->EncodeJPEG(*picture, frame.Data(), frame.Size(), quality);

    call.reply.SetRect(vnRPC_Call::SectionName("rect", call.AddPicture(picture)), diff.rect);
    fTick.captured = fTick.captured.Union(diff.rect);
}

bool vnRPC_SnapshotByDiffs::add_frame(uint32_t quality, vnRPC_Call& call) {
    if (!fFrame->buffer || !fFrame->buffer->Data() || !fFrame->buffer->HoldsItsPixels())
        return false;
    fEncoder.Encode(*fFrame->buffer, quality);
    call.AddPicture(fEncoder.AddRefToPicture());
    call.reply.SetRect("section_rect_1", fTick.captured);
    return true;
}

void vnRPC_SnapshotByDiffs::fill_reply(bool hasPicture, vnRPC_Call& call) {
    call.reply.SetCString(zRecord::kXMLTag, "response");
    call.reply.SetInt32("error", 0);
    call.reply.SetUInt32("instance", fMouse->InstanceId());
    if (hasPicture)
        call.SetPicture();
    call.reply.SetRect("rect", fTick.captured);
    call.reply.SetUInt32("next_sequence_id", fSequence + 1);
    fTick.AddMouse(call.reply);
}

void vnRPC_SnapshotByDiffs::SignalThread_Tick() {
    zAutoCritical lock(fLock);
    fTick.LookAtMouse(*fMouse);
    if (can_capture_diffs())
        capture_diffs();
    else
        capture_frame();
    if (fRefreshCounter++ >= kRefreshTicks) {
        fRefreshCounter = 0;
        fForceFull = true;
    }
}

bool vnRPC_SnapshotByDiffs::can_capture_diffs() {
    return !fForceFull && fSequence != 0 && fDiffer->CanDoDiffs() && !fDevice->IgnoreScreenDiffs();
}

void vnRPC_SnapshotByDiffs::capture_diffs() {
    int count = 0;
    const zRect* rects = fDiffer->RectList_Borrow(count);
    bool isFirst = true;
    for (int i = 0; i < count; ++i) {
        const zRect changed = rects[i].Intersection(fTick.captured);
        if (changed.Width() <= 0 || changed.Height() <= 0)
            continue;
        capture_diff(changed, isFirst);
        isFirst = false;
    }
    fDiffer->RectList_Return();
    if (fSequence > kKeptStates)
        reset_buffers(fSequence - kKeptStates);
}

/// All diffs of a tick belong to one state.
void vnRPC_SnapshotByDiffs::capture_diff(const zRect& changed, bool isFirst) {
    // Deliberate: the client's crop isn't added, so that with one a diff shows another place than the one
    // that changed. Its rectangle says which; clients that crop count on that and on the refresh.
    const zRect& frame = fTick.captured;
    const zRect insets(aligned_inset(frame.left, changed.left), aligned_inset(frame.top, changed.top),
                       aligned_inset(changed.right, frame.right),
                       aligned_inset(changed.bottom, frame.bottom));
    vnDiffBuffer* diff = get_buffer();
    zRect rect;
    fTick.grabResult = fDevice->Grab(&diff->buffer, insets, &rect);
    if (isFirst)
        fSequence += kDiffStep;
    diff->sequenceId = fSequence;
    diff->rect = rect;
}

void vnRPC_SnapshotByDiffs::capture_frame() {
    fTick.grabResult = fDevice->Grab(&fFrame->buffer, fCrop, &fTick.captured);
    fSequence += kFrameStep;
    fFrame->sequenceId = fSequence;
    fForceFull = false;
    reset_buffers(0);
}

/// A free entry of the pool, which grows if there is none.
vnDiffBuffer* vnRPC_SnapshotByDiffs::get_buffer() {
    for (vnDiffBuffer* diff : fPool) {
        if (diff->sequenceId == 0)
            return diff;
    }
    auto* diff = new vnDiffBuffer(fDevice->NewBuffer());
    fPool.Append(diff);
    return diff;
}

/// Frees all entries of the pool, or with a limit those of earlier states.
void vnRPC_SnapshotByDiffs::reset_buffers(uint32_t limit) {
    for (vnDiffBuffer* diff : fPool) {
        if (limit == 0 || diff->sequenceId < limit)
            diff->sequenceId = 0;
    }
}
